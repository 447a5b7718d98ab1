#include "base/ZTCalendarExtras.h"
#include "base/ZTHTMLFlattener.h"
#include "base/ZTStringExtras.h"
#include "model/ZTCodeFormatter.h"
#include "support/ZTTestMain.h"

#include <QTest>

#include <atomic>
#include <thread>
#include <vector>

// The shared tables are built on first use; fetch threads may arrive
// together. This program's first calls come from many threads at once.
class TestTextThreads : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void firstUseFromManyThreads();
};

void TestTextThreads::firstUseFromManyThreads()
{
    std::atomic<int> pages{0};
    ZTCodeFormatter::setPageGetter([&pages](const QUrl &) {
        ++pages;
        return QByteArray("<strong>ISBN: </strong>8535902775</li>");
    });
    std::atomic<bool> go{false};
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&, t] {
            while (!go.load())
                std::this_thread::yield();
            const auto expect = [&wrong](const QString &actual, const QString &expected) {
                if (actual != expected)
                    ++wrong;
            };
            for (int i = 0; i < 50; ++i) {
                expect(ZTText::decodeHTML(QStringLiteral("caf&eacute; &lt;")), QStringLiteral("caf\u00E9 &"));
                expect(ZTText::flattenHTML(QStringLiteral("<p>&euro;%1</p>").arg(t)),
                       QStringLiteral("\u20AC%1\n").arg(t));
                expect(ZTText::convertHTMLToRegularText(QStringLiteral("a&#130;<br>")),
                       QStringLiteral("a\u00C7\n"));
                expect(ZTText::flattenHTML(QStringLiteral("\u00C7<b")), QStringLiteral("\u00C7"));
                expect(ZTCodeFormatter::isbnFromSubmarinoURL(
                           QStringLiteral("http://img.submarino.com.br/images/books/cover/img1/%1.jpg")
                               .arg(i % 5)),
                       QStringLiteral("8535902775"));
                if (ZTHTMLFlattener::entityDict().size() != 240 ||
                    ZTCalendar::dateInMiddleOfYear(2000).date() != QDate(2000, 6, 15))
                    ++wrong;
            }
        });
    }
    go = true;
    for (std::thread &thread : threads)
        thread.join();
    ZTCodeFormatter::setPageGetter(nullptr);
    QCOMPARE(wrong.load(), 0);
    // Five products; threads that race past the cache before the first
    // answer is stored may read a page again, at most once per thread.
    QVERIFY(pages.load() >= 5 && pages.load() <= 5 * 8);
}

ZT_TEST_MAIN(TestTextThreads)
#include "tst_textthreads.moc"
