#include "library/ZTWindowDisplay.h"
#include "store/ZTPropertyList.h"
#include "support/ZTTestMain.h"

#include <QtTest>

class TestWindowDisplay : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void readsWhatIsSaneAndDefaultsTheRest_data()
    {
        QTest::addColumn<QVariantMap>("stored");
        QTest::addColumn<QStringList>("columns");
        QTest::addColumn<double>("firstWidth");
        QTest::addColumn<double>("rowHeight");
        QTest::addColumn<double>("fontSize");
        const QVariantList two{QVariantMap{{"identifier", "title"}, {"width", 300.0}},
                               QVariantMap{{"identifier", "rating"}, {"width", 80}}};
        QTest::newRow("kept") << QVariantMap{{"columns", two}, {"rowHeight", 40.0}, {"fontSize", 13.0}}
                              << QStringList{"title", "rating"} << 300.0 << 40.0 << 13.0;
        QTest::newRow("nothing stored")
            << QVariantMap{} << QStringList{"cover", "title"} << 52.0 << 62.0 << 0.0;
        QTest::newRow("absurd sizes") << QVariantMap{{"columns", two}, {"rowHeight", -5}, {"fontSize", 4000}}
                                      << QStringList{"title", "rating"} << 300.0 << 62.0 << 0.0;
        QTest::newRow("columns of the wrong type") << QVariantMap{{"columns", QString("title")}}
                                                   << QStringList{"cover", "title"} << 52.0 << 62.0 << 0.0;
        QTest::newRow("rows without identifier or width")
            << QVariantMap{{"columns",
                            QVariantList{QVariantMap{{"width", 10}}, QVariantMap{{"identifier", "genre"}}}}}
            << QStringList{"genre"} << 100.0 << 62.0 << 0.0;
    }
    void readsWhatIsSaneAndDefaultsTheRest()
    {
        QFETCH(QVariantMap, stored);
        QFETCH(QStringList, columns);
        QFETCH(double, firstWidth);
        QFETCH(double, rowHeight);
        QFETCH(double, fontSize);
        QTemporaryDir dir;
        if (!stored.isEmpty())
            QVERIFY(ZTPropertyList::writeFile(dir.filePath("display.plist"), stored,
                                              ZTPropertyList::Format::Binary));
        const ZTWindowDisplay display = ZTWindowDisplay::load(dir.path(), {{"cover", 52}, {"title", 260}});
        QStringList identifiers;
        for (const auto &column : display.columns)
            identifiers.append(column.identifier);
        QCOMPARE(identifiers, columns);
        QCOMPARE(display.columns.first().width, firstWidth);
        QCOMPARE(display.rowHeight, rowHeight);
        QCOMPARE(display.fontSize, fontSize);
    }

    void savingKeepsKeysItDoesNotUse()
    {
        QTemporaryDir dir;
        QVERIFY(
            ZTPropertyList::writeFile(dir.filePath("display.plist"),
                                      QVariantMap{{"frameString", "0 0 800 600"}, {"splitViewWidth", 210}},
                                      ZTPropertyList::Format::Binary));
        ZTWindowDisplay display = ZTWindowDisplay::load(dir.path(), {{"title", 200}});
        display.isDetailPanelOpen = true;
        display.columns.append({"genre", 90});
        QVERIFY(display.save(dir.path()));
        const QVariantMap back = ZTPropertyList::readFile(dir.filePath("display.plist")).toMap();
        QCOMPARE(back.value("frameString").toString(), QStringLiteral("0 0 800 600"));
        QCOMPARE(back.value("columns").toList().size(), 2);
        QVERIFY(back.value("isDetailPanelOpen").toBool());
        const ZTWindowDisplay again = ZTWindowDisplay::load(dir.path(), {});
        QCOMPARE(again.columns.last().identifier, QStringLiteral("genre"));
        QCOMPARE(again.columns.last().width, 90.0);
    }

    void unwritableFolderFailsQuietly()
    {
        ZTWindowDisplay display;
        QVERIFY(!display.save(QStringLiteral("/nonexistent/folder/lib.ztbooklib")));
    }
};

ZT_TEST_MAIN(TestWindowDisplay)
#include "tst_windowdisplay.moc"
