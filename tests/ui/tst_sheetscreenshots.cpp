// Renders every sheet for every kind to PNG files under
// ZT_SCREENSHOT_DIR/sheets/, filled with a sample item, so a person can look
// at them. The checks are that each picture was written and is not blank.

#include "library/lists/ZTSmartListController.h"
#include "lists/ZTSmartList.h"
#include "ui/sheets/ZTClearAttributesSheet.h"
#include "ui/sheets/ZTExportSheet.h"
#include "ui/sheets/ZTImportConfigurationSheet.h"
#include "ui/sheets/ZTImportSheet.h"
#include "ui/sheets/ZTItemSheet.h"
#include "ui/sheets/ZTMultipleEditSheet.h"
#include "ui/sheets/ZTSmartListSheet.h"

#include "ZTSheetFixture.h"
#include "support/ZTTestMain.h"

#include <QDir>
#include <QFile>
#include <QTabWidget>
#include <QtTest>

namespace {
QString text(const char *s)
{
    return QString::fromUtf8(s);
}

QVariantMap person(const char *name, const char *role)
{
    return {{QStringLiteral("name"), text(name)}, {QStringLiteral("role"), text(role)}};
}

QVariantMap sampleFor(ZTMediaKind kind, int n)
{
    const QDateTime published(QDate(1954 + n, 7, 29), QTime(0, 0));
    QVariantMap item{
        {QStringLiteral("title"), n ? text("The Two Towers") : text("The Fellowship of the Ring")},
        {QStringLiteral("genre"), text("Fantasy")},
        {QStringLiteral("series"), text("The Lord of the Rings")},
        {QStringLiteral("datePublished"), published},
        {QStringLiteral("datePublishedBitFlag"), n},
        {QStringLiteral("keywords"), QStringList{text("epic"), text("classic")}},
        {QStringLiteral("price"), 24.99},
        {QStringLiteral("rating"), 4 - n},
        {QStringLiteral("format"), text("Hardcover")},
        {QStringLiteral("notes"), text("A gift.")}};
    switch (kind) {
    case ZTMediaKind::Book:
        item.insert(QStringLiteral("authorRoleDicts"),
                    QVariantList{person("J. R. R. Tolkien", ""), person("Alan Lee", "ill.")});
        item.insert(QStringLiteral("publisher"), text("Allen & Unwin"));
        item.insert(QStringLiteral("isbn"), text("9780261102354"));
        break;
    case ZTMediaKind::Album:
        item.insert(QStringLiteral("artists"), QStringList{text("Howard Shore")});
        item.insert(QStringLiteral("tracks"), QStringList{text("The Prophecy"), text("Concerning Hobbits")});
        item.insert(QStringLiteral("label"), text("Reprise"));
        break;
    case ZTMediaKind::Movie:
        item.insert(QStringLiteral("directors"), QStringList{text("Peter Jackson")});
        item.insert(QStringLiteral("actorRoleDicts"),
                    QVariantList{person("Elijah Wood", "Frodo"), person("Ian McKellen", "Gandalf")});
        item.insert(QStringLiteral("studio"), text("New Line"));
        break;
    case ZTMediaKind::Comic:
        item.insert(QStringLiteral("artistRoleDicts"), QVariantList{person("Chuck Dixon", "writer")});
        item.insert(QStringLiteral("characterRoleDicts"), QVariantList{person("Bilbo Baggins", "")});
        item.insert(QStringLiteral("issueNumber"), 1 + n);
        item.insert(QStringLiteral("issueCount"), 3);
        item.insert(QStringLiteral("grade"), text("VF+"));
        break;
    }
    return item;
}

QString folder()
{
    const QString dir = QStringLiteral(ZT_SCREENSHOT_DIR) + QStringLiteral("/sheets");
    QDir().mkpath(dir);
    return dir;
}

void shoot(QWidget &sheet, const QString &name)
{
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    QCoreApplication::processEvents();
    const QImage image = sheet.grab().toImage();
    QVERIFY(!image.isNull());
    // A blank picture means nothing was drawn.
    const QRgb corner = image.pixel(0, 0);
    bool varied = false;
    for (int y = 0; y < image.height() && !varied; y += 7)
        for (int x = 0; x < image.width() && !varied; x += 7)
            varied = image.pixel(x, y) != corner;
    QVERIFY2(varied, qPrintable(name));
    const QString path = folder() + QLatin1Char('/') + name + QStringLiteral(".png");
    QVERIFY(image.save(path));
    sheet.hide();
}
} // namespace

class TestSheetScreenshots : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everySheetOfEveryKind_data();
    void everySheetOfEveryKind();
};

void TestSheetScreenshots::everySheetOfEveryKind_data()
{
    QTest::addColumn<int>("kind");
    for (ZTMediaKind kind : {ZTMediaKind::Book, ZTMediaKind::Album, ZTMediaKind::Movie, ZTMediaKind::Comic})
        QTest::newRow(qPrintable(ZTMediaKinds::itemType(kind))) << int(kind);
}

void TestSheetScreenshots::everySheetOfEveryKind()
{
    QFETCH(int, kind);
    const ZTMediaKind mediaKind = ZTMediaKind(kind);
    const QString prefix = ZTMediaKinds::itemType(mediaKind).toLower();
    ZTSheetFixture f(mediaKind);
    ZTItem *a = f.add(sampleFor(mediaKind, 0));
    ZTItem *b = f.add(sampleFor(mediaKind, 1));
    QVERIFY(a && b);

    ZTItemSheet itemSheet(f.pipeline());
    QVERIFY(itemSheet.prepareToEdit(a->oid()));
    for (int page = 0; page < itemSheet.pages()->count(); ++page) {
        itemSheet.pages()->setCurrentIndex(page);
        shoot(itemSheet, QStringLiteral("%1-item-%2").arg(prefix).arg(page + 1));
    }

    ZTMultipleEditSheet multiple(f.pipeline());
    QVERIFY(multiple.prepare({a->oid(), b->oid()}));
    shoot(multiple, prefix + QStringLiteral("-multiple"));

    ZTClearAttributesSheet clear(f.pipeline());
    QVERIFY(clear.prepare({a->oid(), b->oid()}));
    shoot(clear, prefix + QStringLiteral("-clear"));

    ZTSmartListSheet smart(f.document());
    const QVariantList qualifiers{
        QVariantMap{{ZTQualifierKey::lhs, text("Title")},
                    {ZTQualifierKey::op, text("contains")},
                    {ZTQualifierKey::type, text("text")},
                    {ZTQualifierKey::lhsKey, text("title")},
                    {ZTQualifierKey::rhs, QVariantMap{{ZTQualifierKey::value, text("Ring")}}}},
        QVariantMap{{ZTQualifierKey::lhs, text("Rating")},
                    {ZTQualifierKey::op, text("is in the range")},
                    {ZTQualifierKey::type, text("rating")},
                    {ZTQualifierKey::lhsKey, text("rating")},
                    {ZTQualifierKey::rhs, QVariantMap{{ZTQualifierKey::fromValue, text("2")},
                                                      {ZTQualifierKey::toValue, text("4")}}}},
        QVariantMap{{ZTQualifierKey::lhs, text("Date Added")},
                    {ZTQualifierKey::op, text("is in the last")},
                    {ZTQualifierKey::type, text("date")},
                    {ZTQualifierKey::lhsKey, text("dateAdded")},
                    {ZTQualifierKey::rhs, QVariantMap{{ZTQualifierKey::numberValue, text("2")},
                                                      {ZTQualifierKey::timePeriodValue, text("weeks")}}}}};
    ZTSmartList *list =
        ZTSmartListController::saveSmartList(f.document(), nullptr, qualifiers, 0, text("Rings"));
    smart.prepareOnList(list);
    shoot(smart, prefix + QStringLiteral("-smartlist"));
    smart.prepareToAdd();
    shoot(smart, prefix + QStringLiteral("-smartlist-new"));

    ZTImportConfigurationSheet importChoice(mediaKind);
    shoot(importChoice, prefix + QStringLiteral("-import-choice"));
    // A file whose columns meet every kind of value cell: a plain one, one
    // with several values, a date, and one the guess leaves unticked.
    const QString importPath = f.dir().filePath(QStringLiteral("import.txt"));
    QFile importFile(importPath);
    QVERIFY(importFile.open(QIODevice::WriteOnly));
    importFile.write("Title\tGenre\tKeywords\tDate Added\tPrice\tShelf mark\n"
                     "Dune\tScience Fiction\tdesert; spice\t01/08/1965\t12.99\tA-12\n");
    importFile.close();
    ZTImportSheet importSheet(f.document());
    QVERIFY(importSheet.loadPath(importPath));
    shoot(importSheet, prefix + QStringLiteral("-import"));

    ZTList *favourites = f.document().addList();
    favourites->setName(text("Favourites"));
    favourites->addItem(a->oid());
    ZTExportSheet exportSheet(f.document());
    shoot(exportSheet, prefix + QStringLiteral("-export"));
}

ZT_TEST_GUI_MAIN(TestSheetScreenshots)
#include "tst_sheetscreenshots.moc"
