// Dates come back from a saved library exactly as they went in, on either
// side of 2001, the store's reference date, and of 1970.
#include "library/ZTDocument.h"
#include "model/ZTItem.h"
#include "support/ZTTestLibrary.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QTemporaryDir>
#include <QTest>

class TestStoreDates : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void datesSurviveSaveAndReopen_data()
    {
        QTest::addColumn<QDateTime>("date");
        QTest::newRow("before 2001, after 1970") << QDateTime(QDate(1999, 5, 17), QTime(0, 0), Qt::UTC);
        QTest::newRow("a millisecond before 2001")
            << QDateTime(QDate(2000, 12, 31), QTime(23, 59, 59, 999), Qt::UTC);
        QTest::newRow("the reference date") << QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
        QTest::newRow("after 2001") << QDateTime(QDate(2024, 2, 29), QTime(12, 30, 0, 1), Qt::UTC);
        QTest::newRow("before 1970") << QDateTime(QDate(1950, 1, 1), QTime(0, 0), Qt::UTC);
    }

    void datesSurviveSaveAndReopen()
    {
        QFETCH(QDateTime, date);
        QTemporaryDir dir;
        ZTTestSupport::useTemporarySettings(dir);
        QString oid;
        QString path;
        {
            auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
            ZTItem *item = document->addItemFromDictionary({{"title", "t"}, {"dateObtained", date}});
            oid = item->oid();
            path = document->documentPath();
            QVERIFY(document->saveDocument());
        }
        auto reopened = ZTDocument::create(ZTMediaKind::Book);
        QVERIFY(reopened->readFromURL(path));
        ZTItem *item = reopened->itemForOid(oid);
        QVERIFY(item);
        QCOMPARE(item->valueForKey("dateObtained").toDateTime().toMSecsSinceEpoch(),
                 date.toMSecsSinceEpoch());
    }
};

ZT_TEST_MAIN(TestStoreDates)
#include "tst_storedates.moc"
