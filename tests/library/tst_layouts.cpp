#include "library/ZTLayout.h"
#include "library/ZTWindowDisplay.h"
#include "support/ZTTestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

// Layouts as a library keeps them in "layouts.plist", and the stepping,
// adding and removing the window's menu and options panel rely on.
class TestLayouts : public QObject {
    Q_OBJECT
private:
    static ZTWindowDisplay display(double rowHeight, const QStringList &columns)
    {
        ZTWindowDisplay result;
        result.rowHeight = rowHeight;
        for (const QString &column : columns)
            result.columns.append({column, 80});
        return result;
    }

private Q_SLOTS:
    void roundTripThroughTheFile()
    {
        QTemporaryDir dir;
        ZTLayouts layouts;
        QVERIFY(layouts.ensureOne(display(62, {"cover", "title"})));
        QVERIFY(!layouts.ensureOne(display(30, {"title"}))); // only a library without any
        QCOMPARE(layouts.addLayout(display(40, {"title", "isbn"})), 1);
        QVERIFY(layouts.renameLayout(1, QStringLiteral("  Compact  ")));
        QVERIFY(layouts.setCurrentIndex(1));
        QVERIFY(layouts.save(dir.path()));

        const ZTLayouts read = ZTLayouts::load(dir.path());
        QCOMPARE(read.layouts().size(), 2);
        QCOMPARE(read.layouts().at(0).name, QStringLiteral("Layout"));
        QCOMPARE(read.layouts().at(1).name, QStringLiteral("Compact"));
        QCOMPARE(read.layouts().at(1).rowHeight, 40.0);
        QCOMPARE(read.layouts().at(1).fontSize, 0.0);
        QCOMPARE(read.layouts().at(1).columns.size(), 2);
        QCOMPARE(read.layouts().at(1).columns.at(1).identifier, QStringLiteral("isbn"));
        QCOMPARE(read.layouts().at(1).columns.at(1).width, 80.0);
        // Which layout is in use is the window's to remember, not the file's.
        QCOMPARE(read.currentIndex(), 0);
    }

    void badFilesGiveNoLayouts_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("garbage") << QByteArray("bplist00\xff\xff\xff", 11);
        QTest::newRow("xml of a map")
            << QByteArray("<?xml version=\"1.0\"?><plist "
                          "version=\"1.0\"><dict><key>a</key><string>b</string></dict></plist>");
    }
    void badFilesGiveNoLayouts()
    {
        QFETCH(QByteArray, bytes);
        QTemporaryDir dir;
        QFile file(QDir(dir.path()).filePath(ZTLayouts::fileName()));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        QVERIFY(ZTLayouts::load(dir.path()).layouts().isEmpty());
        QVERIFY(ZTLayouts::load(dir.filePath("missing")).layouts().isEmpty());
    }

    void entriesAreReadWithCare()
    {
        const QList<ZTLayout> layouts = ZTLayouts::layoutsFromArray(
            {QVariantMap{{"name", "A"},
                         {"rowHeight", 2000},
                         {"fontSize", "big"},
                         {"columns", QVariantList{QVariantMap{{"identifier", "title"}, {"width", -5}},
                                                  QVariantMap{{"width", 50}}}}},
             QStringLiteral("not a layout")});
        QCOMPARE(layouts.size(), 1);
        QCOMPARE(layouts.first().rowHeight, ZTWindowDisplay::s_defaultRowHeight);
        QCOMPARE(layouts.first().fontSize, 0.0);
        // A column without an identifier is dropped; a bad width gets a usable one.
        QCOMPARE(layouts.first().columns.size(), 1);
        QCOMPARE(layouts.first().columns.first().width, 100.0);
    }

    void switchingWrapsAndRemovingKeepsTheCurrentOne()
    {
        ZTLayouts layouts;
        QCOMPARE(layouts.switchLayout(), -1); // nothing to step through
        layouts.ensureOne(display(62, {"title"}));
        layouts.addLayout(display(40, {"title"}));
        layouts.addLayout(display(30, {"title"}));
        QCOMPARE(layouts.switchLayout(), 1);
        QCOMPARE(layouts.switchLayout(), 2);
        QCOMPARE(layouts.switchLayout(), 0); // from the last to the first

        QVERIFY(layouts.setCurrentIndex(2));
        QVERIFY(!layouts.setCurrentIndex(3));
        QVERIFY(layouts.removeLayout(0));
        QCOMPARE(layouts.currentIndex(), 1); // still the 30-pixel one
        QCOMPARE(layouts.current()->rowHeight, 30.0);
        QVERIFY(!layouts.removeLayout(5));
        QVERIFY(!layouts.renameLayout(0, QStringLiteral("   ")));
        QVERIFY(layouts.removeLayout(1));
        QCOMPARE(layouts.current()->rowHeight, 40.0);
        QVERIFY(layouts.removeLayout(0));
        QVERIFY(layouts.layouts().isEmpty());
        QVERIFY(!layouts.current());
    }

    void aLayoutWithoutColumnsLeavesTheTable()
    {
        ZTWindowDisplay shown = display(62, {"cover", "title"});
        ZTLayout empty;
        empty.rowHeight = 20;
        empty.applyTo(shown);
        QCOMPARE(shown.rowHeight, 20.0);
        QCOMPARE(shown.columns.size(), 2);
    }
};

ZT_TEST_MAIN(TestLayouts)
#include "tst_layouts.moc"
