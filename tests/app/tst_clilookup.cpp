#include "base/ZTSettings.h"
#include "library/ZTDocument.h"
#include "lookup/sites/ZTSiteRegistry.h"
#include "model/ZTItem.h"
#include "support/ZTTestHttpServer.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QBuffer>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

// The lookup command end to end: the CLI in its own process, the real network
// stack, and a server on 127.0.0.1 standing in for the shops.
class TestCliLookup : public QObject {
    Q_OBJECT

private slots:
    void init();
    void printsTheMergedItem();
    void addsTheItemWithItsCover();
    void refusesBadArguments_data();
    void refusesBadArguments();

private:
    struct Run {
        int exitCode = -1;
        QByteArray out;
        QByteArray err;
    };
    Run cli(const QStringList &arguments);

    QTemporaryDir m_dir;
    std::unique_ptr<ZTTestHttpServer> m_server;
    QString m_library;
};

void TestCliLookup::init()
{
    ZTTestSupport::useTemporarySettings(m_dir);
    // The US shop does not know the book (its 404 page has no heading), so
    // the British one, next in the list, answers.
    ZTSettings::setValue(ZTSiteRegistry::localeArrayKey(ZTMediaKind::Book),
                         QVariantList{ZTSiteRegistry::siteRow("Books_US_Amazon", true),
                                      ZTSiteRegistry::siteRow("Books_FR_Amazon", false),
                                      ZTSiteRegistry::siteRow("Books_UK_Amazon", true),
                                      ZTSiteRegistry::siteRow("Books_UK_BritishLibrary", true)});
    ZTSettings::synchronize();

    m_server = std::make_unique<ZTTestHttpServer>();
    QFile page(ZTTestSupport::fixturePath("lookup/amazon_book_uk_intitle.html"));
    QVERIFY(page.open(QIODevice::ReadOnly));
    m_server->page("/uk/gp/product/0141439580", page.readAll());
    QImage cover(30, 40, QImage::Format_RGB32);
    cover.fill(Qt::darkGreen);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    cover.save(&buffer, "PNG");
    m_server->page("/images/I/1pixel.jpg", png);

    static int s_count = 0;
    m_library = m_dir.filePath(QString("Books%1.ztbooklib").arg(++s_count));
    QString error;
    QVERIFY2(ZTDocument::createPackage(m_library, ZTMediaKind::Book, &error), qPrintable(error));
}

TestCliLookup::Run TestCliLookup::cli(const QStringList &arguments)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("ZETTARY_SETTINGS_FILE", ZTSettings::filePath());
    env.insert("ZETTARY_FETCH_PAUSE_MS", "0");
    const QString base = m_server->baseURL();
    env.insert("ZETTARY_SITE_OVERRIDE",
               QString("www.amazon.com=%1,www.amazon.co.uk=%1/uk,m.media-amazon.com=%1").arg(base));
    process.setProcessEnvironment(env);
    QSignalSpy finished(&process, &QProcess::finished);
    process.start(ZTTestSupport::cliPath(), arguments);
    // The server lives in this process, so the event loop must turn while waiting.
    if (!finished.wait(30000))
        process.kill();
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

void TestCliLookup::printsTheMergedItem()
{
    const Run run = cli({"lookup", m_library, "978-0-14-143958-7"});
    QVERIFY2(run.exitCode == 0, run.err.constData());
    const QJsonArray items = QJsonDocument::fromJson(run.out).array();
    QCOMPARE(items.size(), 1);
    const QJsonObject item = items.first().toObject();
    QCOMPARE(item.value("title").toString(), QString("Emma"));
    QCOMPARE(item.value("format").toString(), QString("Hardcover"));
    QCOMPARE(item.value("locale").toString(), QString("GB"));
    QCOMPARE(item.value("priceLocale").toString(), QString("GBP"));
    QVERIFY(item.value("image").toString().endsWith(" bytes"));
    QCOMPARE(m_server->requestedPaths,
             QStringList({"/gp/product/0141439580", "/uk/gp/product/0141439580", "/images/I/1pixel.jpg"}));
    // Nothing was added.
    std::unique_ptr<ZTDocument> document = ZTDocument::create(ZTMediaKind::Book);
    QVERIFY(document->readFromURL(m_library));
    QVERIFY(document->allItems().isEmpty());
}

void TestCliLookup::addsTheItemWithItsCover()
{
    const Run run = cli({"lookup", m_library, "0141439580", "--add"});
    QVERIFY2(run.exitCode == 0, run.err.constData());
    const QJsonObject printed = QJsonDocument::fromJson(run.out).array().first().toObject();
    QVERIFY(!printed.value("oid").toString().isEmpty());

    std::unique_ptr<ZTDocument> document = ZTDocument::create(ZTMediaKind::Book);
    QVERIFY(document->readFromURL(m_library));
    QCOMPARE(document->allItems().size(), 1);
    ZTItem *item = document->allItems().first();
    QCOMPARE(item->oid(), printed.value("oid").toString());
    QCOMPARE(item->valueForKey("title").toString(), QString("Emma"));
    QCOMPARE(item->valueForKey("pages").toInt(), 474);
    QCOMPARE(item->image().size(), QSize(30, 40));
}

void TestCliLookup::refusesBadArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("no code") << QStringList({"lookup", "LIB"});
    QTest::newRow("not a code") << QStringList({"lookup", "LIB", "hello"});
    QTest::newRow("no library") << QStringList({"lookup", "/nonexistent/x.ztbooklib", "0141439580"});
}

void TestCliLookup::refusesBadArguments()
{
    QFETCH(QStringList, arguments);
    arguments.replaceInStrings("LIB", m_library);
    const Run run = cli(arguments);
    QCOMPARE(run.exitCode, 2);
    QVERIFY(run.err.startsWith("zettary-cli: "));
    QVERIFY(m_server->requestedPaths.isEmpty());
}

ZT_TEST_MAIN(TestCliLookup)
#include "tst_clilookup.moc"
