// The smart-list editor's rows and its save, without the sheet.
#include "ListsTestLibrary.h"

#include "library/lists/ZTQualifierText.h"
#include "library/lists/ZTSmartListController.h"
#include "lists/ZTSmartList.h"
#include "support/ZTTestMain.h"

#include <QtTest>

using View = ZTSmartListEntryController::RhsView;
Q_DECLARE_METATYPE(View)

namespace {
QVariantMap rule(const QString &lhs, const QString &key, const QString &type, const QString &op,
                 const QVariantMap &rhs = {}, int toMany = 0)
{
    return ZTQualifierText::makeQualifier(lhs, key, type, op, rhs, toMany != 0);
}
} // namespace

class TestSmartListEditor : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { m_library = std::make_unique<ListsTestLibrary>(); }
    void newRowOffersSortedTitles();
    void viewFollowsTypeAndOperator_data();
    void viewFollowsTypeAndOperator();
    void attributeChangeEmptiesOperatorChangeKeeps();
    void qualifierRoundTrip_data();
    void qualifierRoundTrip();
    void storedValuesAreReadByType_data();
    void storedValuesAreReadByType();
    void unknownTitleFallsBackToDefault();
    void removeButtonsFollowRowCount();
    void savingANewList();
    void savingWithABlankName();
    void editingAList();
    void cancelChangesNothing();

private:
    ZTSmartListEntryController row() const
    {
        return ZTSmartListEntryController(m_library->document->attributeTables().smartListDictionaryArray());
    }
    std::unique_ptr<ListsTestLibrary> m_library;
};

void TestSmartListEditor::newRowOffersSortedTitles()
{
    const ZTSmartListEntryController entry = row();
    QStringList sorted = entry.lhsTitles();
    std::sort(sorted.begin(), sorted.end());
    QCOMPARE(entry.lhsTitles(), sorted);
    QVERIFY(entry.lhsTitles().contains("Author"));
    QVERIFY(!entry.lhsTitles().contains("Artist")); // not a book's
    QCOMPARE(entry.selectedLhs(), entry.lhsTitles().first());
    QCOMPARE(entry.selectedOperator(), entry.operatorTitles().first());
}

void TestSmartListEditor::viewFollowsTypeAndOperator_data()
{
    QTest::addColumn<QString>("lhs");
    QTest::addColumn<QString>("op");
    QTest::addColumn<View>("view");
    QTest::newRow("text") << "Title"
                          << "starts with" << View::SingleTextField;
    QTest::newRow("integer") << "Pages"
                             << "is less than" << View::SingleTextField;
    QTest::newRow("integer range") << "Pages"
                                   << "is in the range" << View::RangeTextField;
    QTest::newRow("float range") << "Price"
                                 << "is in the range" << View::RangeTextField;
    QTest::newRow("date") << "Date Read"
                          << "is before" << View::SingleTextField;
    QTest::newRow("date range") << "Date Read"
                                << "is in the range" << View::RangeTextField;
    QTest::newRow("date last") << "Date Read"
                               << "is in the last" << View::DateInTheLast;
    QTest::newRow("date not last") << "Date Read"
                                   << "is not in the last" << View::DateInTheLast;
    QTest::newRow("rating") << "Rating"
                            << "is greater than" << View::SingleRating;
    QTest::newRow("rating range") << "Rating"
                                  << "is in the range" << View::RangeRating;
    QTest::newRow("boolean") << "Signed"
                             << "is not set" << View::None;
}

void TestSmartListEditor::viewFollowsTypeAndOperator()
{
    QFETCH(QString, lhs);
    QFETCH(QString, op);
    QFETCH(View, view);
    ZTSmartListEntryController entry = row();
    entry.selectLhs(lhs);
    QCOMPARE(entry.selectedLhs(), lhs);
    QVERIFY(entry.operatorTitles().contains(op));
    entry.selectOperator(op);
    QCOMPARE(entry.rhsView(), view);
}

void TestSmartListEditor::attributeChangeEmptiesOperatorChangeKeeps()
{
    ZTSmartListEntryController entry = row();
    entry.selectLhs("Title");
    entry.fields().value = "Hobbit";
    entry.selectOperator("is");
    QCOMPARE(entry.fields().value, QStringLiteral("Hobbit"));
    QCOMPARE(entry.qualifierDictionary().value("rhs").toMap().value("value").toString(),
             QStringLiteral("Hobbit"));
    entry.selectLhs("Author");
    QCOMPARE(entry.selectedOperator(), QStringLiteral("contains"));
    QVERIFY(entry.fields().value.isEmpty());

    // A number carries from the single field into the range and back.
    entry.selectLhs("Pages");
    entry.fields().value = "300";
    entry.selectOperator("is in the range");
    QCOMPARE(entry.fields().fromValue, QStringLiteral("300"));
    entry.fields().fromValue = "100";
    entry.selectOperator("is");
    QCOMPARE(entry.fields().value, QStringLiteral("300")); // a field with content keeps it
    // An operator the type does not offer is not taken.
    entry.selectOperator("contains");
    QCOMPARE(entry.selectedOperator(), QStringLiteral("is"));
}

void TestSmartListEditor::qualifierRoundTrip_data()
{
    QTest::addColumn<QVariantMap>("qualifier");
    QTest::newRow("to-many text") << rule("Author", "authors", "text", "does not contain", {{"value", "Ann"}},
                                          1);
    QTest::newRow("text") << rule("Title", "title", "text", "ends with", {{"value", "end"}});
    QTest::newRow("integer") << rule("Pages", "pages", "integer", "is greater than", {{"value", "12"}});
    QTest::newRow("integer range") << rule("Pages", "pages", "integer", "is in the range",
                                           {{"fromValue", "1"}, {"toValue", "99"}});
    QTest::newRow("float range") << rule("Price Paid", "pricePaid", "float", "is in the range",
                                         {{"fromValue", "1.50"}, {"toValue", "20.00"}});
    QTest::newRow("rating range") << rule("Rating", "rating", "rating", "is in the range",
                                          {{"fromValue", "2"}, {"toValue", "4"}});
    QTest::newRow("rating") << rule("Rating", "rating", "rating", "is not", {{"value", "3"}});
    QTest::newRow("boolean") << rule("Read", "usedFlag", "boolean", "is set");
    QTest::newRow("date") << rule("Date Published", "datePublished", "date", "is after",
                                  {{"value", "06-15-1999"}});
    QTest::newRow("date range") << rule("Date Added", "dateAdded", "date", "is in the range",
                                        {{"fromValue", "01-02-2000"}, {"toValue", "12-31-2001"}});
    QTest::newRow("date last") << rule("Date Due", "dateDue", "date", "is in the last",
                                       {{"numberValue", "3"}, {"timePeriodValue", "months"}});
}

void TestSmartListEditor::qualifierRoundTrip()
{
    QFETCH(QVariantMap, qualifier);
    ZTSmartListEntryController entry = row();
    entry.handleQualifierDictionary(qualifier);
    QCOMPARE(entry.qualifierDictionary(), qualifier);
}

void TestSmartListEditor::storedValuesAreReadByType_data()
{
    QTest::addColumn<QVariantMap>("stored");
    QTest::addColumn<QVariantMap>("rhs");
    QTest::newRow("integer text") << rule("Pages", "pages", "integer", "is", {{"value", "12 pages"}})
                                  << QVariantMap{{"value", "12"}};
    QTest::newRow("float text") << rule("Price", "price", "float", "is", {{"value", "4.5"}})
                                << QVariantMap{{"value", "4.50"}};
    QTest::newRow("empty integer stays empty")
        << rule("Pages", "pages", "integer", "is", {{"value", ""}}) << QVariantMap{{"value", ""}};
    QTest::newRow("unreadable date") << rule("Date Read", "dateUsed", "date", "is", {{"value", "later"}})
                                     << QVariantMap{{"value", ""}};
    QTest::newRow("one-digit date") << rule("Date Read", "dateUsed", "date", "is", {{"value", "6-5-1999"}})
                                    << QVariantMap{{"value", "06-05-1999"}};
    QTest::newRow("too many stars") << rule("Rating", "rating", "rating", "is", {{"value", "9"}})
                                    << QVariantMap{{"value", "5"}};
    QTest::newRow("unknown period") << rule("Date Read", "dateUsed", "date", "is in the last",
                                            {{"numberValue", "2"}, {"timePeriodValue", "aeons"}})
                                    << QVariantMap{{"numberValue", "2"}, {"timePeriodValue", "days"}};
    QTest::newRow("missing right side") << rule("Title", "title", "text", "is") << QVariantMap{{"value", ""}};
}

void TestSmartListEditor::storedValuesAreReadByType()
{
    QFETCH(QVariantMap, stored);
    QFETCH(QVariantMap, rhs);
    ZTSmartListEntryController entry = row();
    entry.handleQualifierDictionary(stored);
    QCOMPARE(entry.qualifierDictionary().value("rhs").toMap(), rhs);
}

void TestSmartListEditor::unknownTitleFallsBackToDefault()
{
    ZTSmartListEntryController entry = row();
    const QString defaultTitle = entry.lhsTitles().first();
    entry.handleQualifierDictionary(rule("Track", "tracks", "text", "contains", {{"value", "x"}}, 1));
    QCOMPARE(entry.selectedLhs(), defaultTitle);
    const QVariantMap written = entry.qualifierDictionary();
    QCOMPARE(written.value("lhs").toString(), defaultTitle);
    QCOMPARE(written.value("lhsKey").toString(),
             m_library->document->attributeTables().smartListAttribute(defaultTitle)->key);
}

void TestSmartListEditor::removeButtonsFollowRowCount()
{
    ZTSmartListController controller(*m_library->document);
    controller.setUpInitialEntry();
    QCOMPARE(controller.entryCount(), 1);
    QVERIFY(!controller.entry(0).removeEnabled);
    QVERIFY(!controller.removeEntry(0));
    controller.addEntry(0);
    QVERIFY(controller.entry(0).removeEnabled);
    QVERIFY(controller.entry(1).removeEnabled);
    QVERIFY(controller.removeEntry(1));
    QCOMPARE(controller.entryCount(), 1);
    QVERIFY(!controller.entry(0).removeEnabled);
}

void TestSmartListEditor::savingANewList()
{
    ListsTestLibrary library;
    ZTItem *hobbit = library.add({{"title", "The Hobbit"}, {"authors", QStringList{"J. R. R. Tolkien"}}});
    library.add({{"title", "Dune"}});
    library.document->addList();
    library.document->updateChangeCount(ZTDocument::ChangeType::Cleared);
    ZTSmartListController controller(*library.document);
    controller.setUpInitialEntry();
    QCOMPARE(controller.headerText(), QStringLiteral("Add Smart List"));
    QCOMPARE(controller.name(), QStringLiteral("untitled list"));
    controller.entry(0).selectLhs("Author");
    controller.entry(0).fields().value = "tolkien";
    controller.addEntry().selectLhs("Title");
    controller.entry(1).selectOperator("is");
    controller.entry(1).fields().value = "nothing like it";
    controller.clickAndOrButton(1);
    controller.setName("Tolkien");
    ZTSmartList *list = controller.save();
    QVERIFY(list);
    QCOMPARE(controller.smartList(), nullptr);
    QCOMPARE(list->name(), QStringLiteral("Tolkien"));
    QCOMPARE(list->andOrFlag(), 1);
    QCOMPARE(list->qualifiers().size(), 2);
    QCOMPARE(list->itemOids(), QStringList{hobbit->oid()});
    QCOMPARE(list->order(), 1);
    QCOMPARE(library.document->itemLists().last(), list);
    QVERIFY(!list->expirationDate().isValid());
    QVERIFY(library.document->isDocumentEdited());
}

void TestSmartListEditor::savingWithABlankName()
{
    ListsTestLibrary library;
    ZTSmartListController controller(*library.document);
    controller.setUpInitialEntry();
    ZTSmartList *kept = controller.save();
    QCOMPARE(kept->name(), QStringLiteral("untitled list"));
    controller.setUpInitialEntry();
    controller.setName("   ");
    ZTSmartList *unnamed = controller.save();
    QVERIFY(unnamed->name().isEmpty());
    // Editing with a blank name keeps the name it had.
    controller.handleSmartList(kept);
    controller.setName("");
    QCOMPARE(controller.save(), kept);
    QCOMPARE(kept->name(), QStringLiteral("untitled list"));
}

void TestSmartListEditor::editingAList()
{
    FixedListClock clock(localDay(2024, 2, 1));
    ListsTestLibrary library;
    library.add({{"title", "Old"}, {"rating", 2}});
    ZTItem *good = library.add({{"title", "Good"}, {"rating", 5}});
    good->setPrimitiveValueForKey(localDay(2024, 1, 30).toUTC(), "dateAdded");
    ZTSmartList *list = ZTSmartListController::saveSmartList(
        *library.document, nullptr,
        {rule("Rating", "rating", "rating", "is in the range", {{"fromValue", "1"}, {"toValue", "5"}})}, 1,
        "rated");
    QCOMPARE(list->count(), 2);
    ZTSmartListController controller(*library.document);
    controller.handleSmartList(list);
    QCOMPARE(controller.headerText(), QStringLiteral("Edit Smart List"));
    QCOMPARE(controller.name(), QStringLiteral("rated"));
    QCOMPARE(controller.andOrFlag(), 1);
    QCOMPARE(controller.entryCount(), 1);
    QCOMPARE(controller.entry(0).rhsView(), View::RangeRating);
    QCOMPARE(controller.entry(0).fields().fromStars, 1);
    QCOMPARE(controller.entry(0).fields().toStars, 5);
    controller.entry(0).fields().fromStars = 4;
    controller.addEntry().selectLhs("Date Added");
    controller.entry(1).selectOperator("is in the last");
    controller.entry(1).fields().numberValue = "7";
    controller.clickAndOrButton(0);
    const int listsBefore = int(library.document->itemLists().size());
    QCOMPARE(controller.save(), list);
    QCOMPARE(library.document->itemLists().size(), listsBefore);
    QCOMPARE(list->andOrFlag(), 0);
    // "Old" now has too few stars; "Good" was added within the week.
    QCOMPARE(list->itemOids(), QStringList{good->oid()});
    QCOMPARE(list->expirationDate().toLocalTime(), localDay(2024, 2, 2));
}

void TestSmartListEditor::cancelChangesNothing()
{
    ListsTestLibrary library;
    ZTSmartList *list = ZTSmartListController::saveSmartList(
        *library.document, nullptr, {rule("Title", "title", "text", "contains", {{"value", "a"}})}, 0, "a");
    const QVariantList before = list->qualifiers();
    ZTSmartListController controller(*library.document);
    controller.handleSmartList(list);
    controller.entry(0).selectLhs("Notes");
    controller.cancel();
    QCOMPARE(controller.entryCount(), 0);
    QCOMPARE(controller.smartList(), nullptr);
    QCOMPARE(list->qualifiers(), before);
}

ZT_TEST_MAIN(TestSmartListEditor)
#include "tst_smartlisteditor.moc"
