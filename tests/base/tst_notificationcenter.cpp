#include "base/ZTNotificationCenter.h"
#include "support/ZTTestMain.h"

#include <QtTest>

class TestNotificationCenter : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void deliversByNameAndObject()
    {
        int a = 0, b = 0, any = 0;
        int senderA = 1, senderB = 2;
        ZTObservation oa(QStringLiteral("N"), &senderA, [&](const ZTNotification &) { ++a; });
        ZTObservation ob(QStringLiteral("N"), &senderB, [&](const ZTNotification &) { ++b; });
        ZTObservation on(QStringLiteral("N"), nullptr, [&](const ZTNotification &n) {
            ++any;
            QCOMPARE(n.userInfo.value(QStringLiteral("k")).toInt(), 7);
        });
        ZTNotificationCenter::defaultCenter().post(QStringLiteral("N"), &senderA, {{QStringLiteral("k"), 7}});
        ZTNotificationCenter::defaultCenter().post(QStringLiteral("Other"), &senderA,
                                                   {{QStringLiteral("k"), 7}});
        QCOMPARE(a, 1);
        QCOMPARE(b, 0);
        QCOMPARE(any, 1);
    }

    void observerRemovedDuringPostIsNotCalled()
    {
        int second = 0;
        ZTObservation *later = nullptr;
        ZTObservation first(QStringLiteral("R"), nullptr, [&](const ZTNotification &) {
            delete later;
            later = nullptr;
        });
        later = new ZTObservation(QStringLiteral("R"), nullptr, [&](const ZTNotification &) { ++second; });
        ZTNotificationCenter::defaultCenter().post(QStringLiteral("R"));
        QCOMPARE(second, 0);
        delete later;
    }
};

ZT_TEST_MAIN(TestNotificationCenter)
#include "tst_notificationcenter.moc"
