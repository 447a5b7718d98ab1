#include "base/ZTLog.h"
#include "support/ZTTestMain.h"

#include <QtTest>

class TestLog : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void sinksSeeLinesUntilRemoved()
    {
        QList<ZTLog::Line> first;
        QList<ZTLog::Line> second;
        const ZTLog::Token a = ZTLog::addSink([&](const ZTLog::Line &line) { first.append(line); });
        const ZTLog::Token b = ZTLog::addSink([&](const ZTLog::Line &line) { second.append(line); });
        QTest::ignoreMessage(QtWarningMsg, "[80 warning] one");
        ZTLog::warning(80, QStringLiteral("one"));
        ZTLog::removeSink(a);
        QTest::ignoreMessage(QtInfoMsg, "[7 info] two");
        ZTLog::write(7, ZTLog::Level::Info, QStringLiteral("two"));
        ZTLog::removeSink(b);
        QTest::ignoreMessage(QtWarningMsg, "[1 error] three");
        ZTLog::write(1, ZTLog::Level::Error, QStringLiteral("three"));

        QCOMPARE(first.size(), 1);
        QCOMPARE(first[0].context, 80);
        QCOMPARE(first[0].level, ZTLog::Level::Warning);
        QCOMPARE(first[0].message, QStringLiteral("one"));
        QCOMPARE(second.size(), 2);
        QCOMPARE(second[1].context, 7);
        QCOMPARE(second[1].level, ZTLog::Level::Info);
    }

    void sinkMayRemoveItselfWhileCalled()
    {
        int calls = 0;
        ZTLog::Token token = 0;
        token = ZTLog::addSink([&](const ZTLog::Line &) {
            ++calls;
            ZTLog::removeSink(token);
        });
        QTest::ignoreMessage(QtWarningMsg, "[2 warning] x");
        ZTLog::warning(2, QStringLiteral("x"));
        QTest::ignoreMessage(QtWarningMsg, "[2 warning] y");
        ZTLog::warning(2, QStringLiteral("y"));
        QCOMPARE(calls, 1);
    }
};

ZT_TEST_MAIN(TestLog)
#include "tst_log.moc"
