#include "model/ZTItemStatus.h"
#include "support/ZTTestMain.h"

#include <QtTest>

class TestItemStatus : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void isOverdue_data()
    {
        QTest::addColumn<QDateTime>("due");
        QTest::addColumn<bool>("overdue");
        const QDate today(2024, 3, 1);
        QTest::newRow("due yesterday") << QDateTime(today.addDays(-1), QTime(12, 0)) << true;
        QTest::newRow("due last year") << QDateTime(QDate(2023, 12, 31), QTime(23, 59)) << true;
        QTest::newRow("due today at midnight") << QDateTime(today, QTime(0, 0)) << false;
        QTest::newRow("due today late") << QDateTime(today, QTime(23, 59, 59)) << false;
        QTest::newRow("due tomorrow") << QDateTime(today.addDays(1), QTime(0, 0)) << false;
        QTest::newRow("leap day before") << QDateTime(QDate(2024, 2, 29), QTime(23, 59, 59)) << true;
        QTest::newRow("no due date") << QDateTime() << false;
    }

    void isOverdue()
    {
        QFETCH(QDateTime, due);
        QFETCH(bool, overdue);
        QCOMPARE(ZTItemStatus::isOverdue(due, QDate(2024, 3, 1)), overdue);
    }

    void dueTodayIsNotOverdueByDefault()
    {
        QVERIFY(!ZTItemStatus::isOverdue(QDate::currentDate()));
        QVERIFY(!ZTItemStatus::isOverdue(QDateTime::currentDateTime()));
        QVERIFY(ZTItemStatus::isOverdue(QDate::currentDate().addDays(-1)));
    }

    void invalidTodayIsNeverOverdue() { QVERIFY(!ZTItemStatus::isOverdue(QDate(2000, 1, 1), QDate())); }
};

ZT_TEST_MAIN(TestItemStatus)
#include "tst_itemstatus.moc"
