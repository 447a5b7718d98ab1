#include "base/ZTSettings.h"
#include "library/ZTMultipleEdit.h"
#include "library/ZTViewPipeline.h"
#include "store/ZTImage.h"

#include "ZTLibraryFixture.h"
#include "support/ZTTestMain.h"

#include <QBuffer>
#include <QImage>
#include <QtTest>

namespace {
QVariantMap author(const char *name, const char *role)
{
    return {{QStringLiteral("name"), QLatin1String(name)}, {QStringLiteral("role"), QLatin1String(role)}};
}

QByteArray pngBytes()
{
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}
} // namespace

class TestMultipleEdit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void priceLocaleWithoutValueTakesTheDefault();
    void dateUsedAlsoSetsUsed();
    void untickedKeysStayUntouched();
    void lockedItemsChangeToo();
    void renamingAnAuthorKeepsTheRole();
    void namesAreRemovedAndAdded();
    void keywordsMergeAsAFlatList();
    void dueDateUpdatesOverdue();
    void clearingSkipsLockedItems();
    void clearingAllLockedStillMarksChanged();
    void clearingWithoutKeysDoesNothing();
    void clearingRules_data();
    void clearingRules();
    void clearingTheCoverDeletesTheRow();
};

void TestMultipleEdit::priceLocaleWithoutValueTakesTheDefault()
{
    ZTLibraryFixture f;
    ZTSettings::setValue(ZTSettingsKey::DefaultCurrency, QStringLiteral("EUR"));
    ZTItem *a = f.add({{QStringLiteral("title"), QStringLiteral("a")},
                       {QStringLiteral("priceLocale"), QStringLiteral("GBP")}});
    ZTItem *b = f.add({{QStringLiteral("title"), QStringLiteral("b")}});
    f.document().documentDidOpen();
    ZTViewPipeline p(f.document());
    auto sheet = ZTMultipleItemEditController::forKind(ZTMediaKind::Book, p);
    sheet->handleItems({a, b});
    sheet->setApplies(QStringLiteral("priceLocale"), true);
    QVERIFY(sheet->save());
    QCOMPARE(a->priceLocale(), QStringLiteral("EUR"));
    QCOMPARE(b->priceLocale(), QStringLiteral("EUR"));
    QVERIFY(f.document().isDocumentEdited());
    QVERIFY(sheet->items().isEmpty());
}

void TestMultipleEdit::dateUsedAlsoSetsUsed()
{
    ZTLibraryFixture f;
    ZTItem *a = f.add({{QStringLiteral("title"), QStringLiteral("a")}});
    ZTItem *b = f.add({{QStringLiteral("title"), QStringLiteral("b")}});
    ZTViewPipeline p(f.document());
    auto sheet = ZTMultipleItemEditController::forKind(ZTMediaKind::Book, p);
    sheet->handleItems({a, b});
    sheet->setValue(QStringLiteral("dateUsed"), QDateTime(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC));
    QVERIFY(sheet->save());
    QVERIFY(a->isUsed());
    QVERIFY(b->isUsed());
    QCOMPARE(b->valueForKey(QStringLiteral("dateUsed")).toDateTime().date(), QDate(2024, 5, 1));
}

void TestMultipleEdit::untickedKeysStayUntouched()
{
    ZTLibraryFixture f;
    ZTItem *a = f.add(
        {{QStringLiteral("title"), QStringLiteral("a")}, {QStringLiteral("genre"), QStringLiteral("Old")}});
    f.document().documentDidOpen();
    ZTViewPipeline p(f.document());
    auto sheet = ZTMultipleItemEditController::forKind(ZTMediaKind::Book, p);
    sheet->handleItems({a});
    QCOMPARE(sheet->itemDictionary().value(QStringLiteral("genre")).toString(), QStringLiteral("Old"));
    sheet->setValue(QStringLiteral("genre"), QStringLiteral("New"));
    sheet->setApplies(QStringLiteral("genre"), false);
    QVERIFY(!sheet->save());
    QCOMPARE(a->valueForKey(QStringLiteral("genre")).toString(), QStringLiteral("Old"));
    QVERIFY(!f.document().isDocumentEdited());
}

void TestMultipleEdit::lockedItemsChangeToo()
{
    ZTLibraryFixture f;
    ZTItem *a = f.add({{QStringLiteral("title"), QStringLiteral("a")}, {QStringLiteral("lockedFlag"), true}});
    ZTViewPipeline p(f.document());
    auto sheet = ZTMultipleItemEditController::forKind(ZTMediaKind::Book, p);
    sheet->handleItems({a});
    sheet->setValue(QStringLiteral("rating"), 5);
    sheet->setValue(QStringLiteral("signedFlag"), true);
    QVERIFY(sheet->save());
    QCOMPARE(a->rating(), 5);
    QVERIFY(a->isSigned());
    QCOMPARE(p.mainCaches().count(QStringLiteral("rating"), QStringLiteral("5")), 1);
}

void TestMultipleEdit::renamingAnAuthorKeepsTheRole()
{
    ZTLibraryFixture f;
    ZTItem *a = f.add(
        {{QStringLiteral("title"), QStringLiteral("a")},
         {QStringLiteral("authorRoleDicts"), QVariantList{author("Jo Smyth", "ed."), author("Al Ray", "")}}});
    ZTItem *b = f.add({{QStringLiteral("title"), QStringLiteral("b")},
                       {QStringLiteral("authorRoleDicts"), QVariantList{author("Jo Smyth", "ill.")}}});
    ZTViewPipeline p(f.document());
    auto sheet = ZTMultipleItemEditController::forKind(ZTMediaKind::Book, p);
    sheet->handleItems({a, b});
    QCOMPARE(sheet->nameRows(QStringLiteral("authors")).size(), 2);
    sheet->renameName(QStringLiteral("authors"), QStringLiteral("Jo Smyth"), QStringLiteral("Jo Smith"));
    QVERIFY(sheet->save());
    QCOMPARE(a->valueForKey(QStringLiteral("authorRoleDicts")).toList(),
             (QVariantList{author("Jo Smith", "ed."), author("Al Ray", "")}));
    QCOMPARE(b->valueForKey(QStringLiteral("authorRoleDicts")).toList(),
             QVariantList{author("Jo Smith", "ill.")});
}

void TestMultipleEdit::namesAreRemovedAndAdded()
{
    ZTLibraryFixture f(ZTMediaKind::Album);
    ZTItem *a =
        f.add({{QStringLiteral("title"), QStringLiteral("a")},
               {QStringLiteral("artists"), QStringList{QStringLiteral("One"), QStringLiteral("Two")}}});
    ZTItem *b = f.add({{QStringLiteral("title"), QStringLiteral("b")},
                       {QStringLiteral("artists"), QStringList{QStringLiteral("Two")}}});
    ZTViewPipeline p(f.document());
    auto sheet = ZTMultipleItemEditController::forKind(ZTMediaKind::Album, p);
    sheet->handleItems({a, b});
    sheet->removeAttributeWithKey(QStringLiteral("artists"), QStringLiteral("One"));
    sheet->renameName(QStringLiteral("artists"), QStringLiteral("Two"), QStringLiteral("  "));
    sheet->addAttributeWithKey(QStringLiteral("artists"), QStringLiteral(" Three "));
    sheet->addAttributeWithKey(QStringLiteral("artists"), QStringLiteral("   ")); // blank: no addition
    QVERIFY(sheet->save());
    QCOMPARE(a->valueForKey(QStringLiteral("artists")).toStringList(), QStringList{"Three"});
    QCOMPARE(b->valueForKey(QStringLiteral("artists")).toStringList(), QStringList{"Three"});
}

void TestMultipleEdit::keywordsMergeAsAFlatList()
{
    ZTLibraryFixture f;
    ZTItem *a =
        f.add({{QStringLiteral("title"), QStringLiteral("a")},
               {QStringLiteral("keywords"), QStringList{QStringLiteral("sea"), QStringLiteral("sky")}}});
    ZTItem *b = f.add({{QStringLiteral("title"), QStringLiteral("b")},
                       {QStringLiteral("keywords"), QStringList{QStringLiteral("land")}}});
    ZTViewPipeline p(f.document());
    auto sheet = ZTMultipleItemEditController::forKind(ZTMediaKind::Book, p);
    sheet->handleItems({a, b});
    QCOMPARE(sheet->itemDictionary().value(QStringLiteral("keywords")).toStringList(),
             (QStringList{"sea", "sky", "land"}));
    sheet->setValue(QStringLiteral("keywords"),
                    QStringList{QStringLiteral("sky"), QStringLiteral("land"), QStringLiteral("air")});
    QVERIFY(sheet->save());
    QCOMPARE(a->keywords(), (QStringList{"sky", "air"}));
    QCOMPARE(b->keywords(), (QStringList{"land", "air"}));
}

void TestMultipleEdit::dueDateUpdatesOverdue()
{
    ZTLibraryFixture f;
    ZTItem *a = f.add({{QStringLiteral("title"), QStringLiteral("a")}});
    ZTViewPipeline p(f.document());
    auto sheet = ZTMultipleItemEditController::forKind(ZTMediaKind::Book, p);
    sheet->handleItems({a});
    sheet->setValue(QStringLiteral("dateDue"), QDateTime(QDate::currentDate().addDays(-3), QTime(12, 0)));
    QVERIFY(sheet->save());
    QVERIFY(a->isLentOut());
    QVERIFY(a->isOverdue());
}

void TestMultipleEdit::clearingSkipsLockedItems()
{
    ZTLibraryFixture f;
    ZTItem *locked = f.add({{QStringLiteral("title"), QStringLiteral("kept")},
                            {QStringLiteral("notes"), QStringLiteral("n")},
                            {QStringLiteral("lockedFlag"), true}});
    ZTItem *open = f.add(
        {{QStringLiteral("title"), QStringLiteral("gone")}, {QStringLiteral("notes"), QStringLiteral("n")}});
    ZTViewPipeline p(f.document());
    ZTClearAttributesController sheet(p);
    sheet.handleItems({locked, open});
    QCOMPARE(sheet.headerText(), QStringLiteral("2 books"));
    sheet.clickColumnMatrix(QStringLiteral("notes"), true);
    sheet.clickColumnMatrix(QStringLiteral("title"), true);
    sheet.clickColumnMatrix(QStringLiteral("notClearable"), true);
    QCOMPARE(sheet.chosenKeys(), (QStringList{"notes", "title"}));
    QVERIFY(sheet.save());
    QCOMPARE(locked->title(), QStringLiteral("kept"));
    QCOMPARE(locked->valueForKey(QStringLiteral("notes")).toString(), QStringLiteral("n"));
    QVERIFY(open->valueForKey(QStringLiteral("notes")).isNull());
    QCOMPARE(open->title(), QString());
    QCOMPARE(open->titleWithoutLeadingArticle(), QString());
}

void TestMultipleEdit::clearingAllLockedStillMarksChanged()
{
    ZTLibraryFixture f;
    ZTItem *locked =
        f.add({{QStringLiteral("title"), QStringLiteral("kept")}, {QStringLiteral("lockedFlag"), true}});
    f.document().documentDidOpen();
    ZTViewPipeline p(f.document());
    ZTClearAttributesController sheet(p);
    sheet.handleItems({locked});
    sheet.selectAllCheckboxes(true);
    QVERIFY(sheet.save());
    QCOMPARE(locked->title(), QStringLiteral("kept"));
    QVERIFY(f.document().isDocumentEdited());
}

void TestMultipleEdit::clearingWithoutKeysDoesNothing()
{
    ZTLibraryFixture f;
    ZTItem *a = f.add({{QStringLiteral("title"), QStringLiteral("a")}});
    f.document().documentDidOpen();
    ZTViewPipeline p(f.document());
    ZTClearAttributesController sheet(p);
    sheet.handleItems({a});
    sheet.selectAllCheckboxes(true);
    sheet.selectAllCheckboxes(false);
    QVERIFY(!sheet.save());
    QVERIFY(!f.document().isDocumentEdited());
}

void TestMultipleEdit::clearingRules_data()
{
    QTest::addColumn<QVariantMap>("dictionary");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("readKey");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("price goes, currency to USD")
        << QVariantMap{{"price", 12.5}, {"priceLocale", "EUR"}} << "price"
        << "priceLocale" << QVariant("USD");
    QTest::newRow("paid goes, currency to USD")
        << QVariantMap{{"pricePaid", 3.0}, {"pricePaidLocale", "GBP"}} << "pricePaid"
        << "pricePaidLocale" << QVariant("USD");
    QTest::newRow("date published and its bit")
        << QVariantMap{{"datePublished", QDateTime(QDate(1999, 1, 1), QTime(12, 0), Qt::UTC)},
                       {"datePublishedBitFlag", 2}}
        << "datePublished"
        << "datePublishedBitFlag" << QVariant(0);
    QTest::newRow("authors become empty") << QVariantMap{{"authors", QStringList{"A B"}}} << "authors"
                                          << "authorsWithTypes" << QVariant(QStringList());
    QTest::newRow("borrower name, loan stays") << QVariantMap{{"lentToName", "Ann Lee"}} << "lentToName"
                                               << "lentOutFlag" << QVariant(true);
    QTest::newRow("due date and overdue")
        << QVariantMap{{"dateDue", QDateTime(QDate(2000, 1, 1), QTime(12, 0))}} << "dateDue"
        << "isOverdue" << QVariant(false);
    QTest::newRow("isbn") << QVariantMap{{"isbn", "0306406152"}} << "isbn"
                          << "isbn" << QVariant();
}

void TestMultipleEdit::clearingRules()
{
    QFETCH(QVariantMap, dictionary);
    QFETCH(QString, key);
    QFETCH(QString, readKey);
    QFETCH(QVariant, expected);
    ZTLibraryFixture f;
    dictionary.insert(QStringLiteral("title"), QStringLiteral("x"));
    ZTItem *item = f.add(dictionary);
    item->clearAttributes({key});
    QVERIFY(!item->valueForKey(key).isValid() || item->valueForKey(key).isNull() ||
            item->valueForKey(key).toStringList().isEmpty() || key == QLatin1String("lentToName"));
    const QVariant value = item->valueForKey(readKey);
    if (expected.isValid())
        QCOMPARE(value.toString(), expected.toString());
    else
        QVERIFY(value.isNull());
}

void TestMultipleEdit::clearingTheCoverDeletesTheRow()
{
    ZTLibraryFixture f;
    ZTItem *item = f.add({{QStringLiteral("title"), QStringLiteral("x")}});
    item->replaceCover(QImage(), pngBytes(), QString(), QStringLiteral("png"), true);
    QVERIFY(item->hasCoverImage());
    QCOMPARE(f.document().managedObjectContext()->fetch(QStringLiteral("ZTImage")).size(), 1);
    item->clearAttributes({QStringLiteral("cover")});
    QVERIFY(!item->hasCoverImage());
    QVERIFY(f.document().managedObjectContext()->fetch(QStringLiteral("ZTImage")).isEmpty());
}

ZT_TEST_MAIN(TestMultipleEdit)
#include "tst_multipleedit.moc"
