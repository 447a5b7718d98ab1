// The helper thread that long passes split their work with.
#include "base/ZTHelperThread.h"
#include "support/ZTTestMain.h"

#include <QThread>
#include <QtTest>

#include <atomic>

class TestHelperThread : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void runsBothHalvesOnTwoThreadsAndWaits();
    void theSameHelperServesEveryPass();
    void aPassStartedOnTheHelperRunsInTurn();
};

void TestHelperThread::runsBothHalvesOnTwoThreadsAndWaits()
{
    QThread *here = nullptr;
    QThread *there = nullptr;
    std::atomic<bool> thereDone = false;
    ZTHelperThread::runSideBySide([&] { here = QThread::currentThread(); },
                                  [&] {
                                      there = QThread::currentThread();
                                      QThread::msleep(50);
                                      thereDone = true;
                                  });
    // Returned only after the slower half had finished.
    QVERIFY(thereDone);
    QCOMPARE(here, QThread::currentThread());
    QVERIFY(there && there != here);
}

void TestHelperThread::theSameHelperServesEveryPass()
{
    QThread *first = nullptr;
    QThread *second = nullptr;
    ZTHelperThread::runSideBySide([] {}, [&] { first = QThread::currentThread(); });
    ZTHelperThread::runSideBySide([] {}, [&] { second = QThread::currentThread(); });
    QVERIFY(first);
    QCOMPARE(second, first);
}

void TestHelperThread::aPassStartedOnTheHelperRunsInTurn()
{
    // A pass within a pass would wait for the helper forever if it queued there.
    QList<QThread *> threads;
    QThread *helper = nullptr;
    ZTHelperThread::runSideBySide([] {},
                                  [&] {
                                      helper = QThread::currentThread();
                                      ZTHelperThread::runSideBySide(
                                          [&] { threads << QThread::currentThread(); },
                                          [&] { threads << QThread::currentThread(); });
                                  });
    QCOMPARE(threads, (QList<QThread *>{helper, helper}));
}

ZT_TEST_MAIN(TestHelperThread)
#include "tst_helperthread.moc"
