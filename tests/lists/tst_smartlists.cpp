// Smart lists in a library: rebuilding, following edits, expiry, storage and description.
#include "ListsTestLibrary.h"
#include "library/lists/ZTListDescriptor.h"

#include "base/ZTNotificationCenter.h"
#include "library/lists/ZTQualifierText.h"
#include "library/lists/ZTSmartListController.h"
#include "lists/ZTSmartList.h"
#include "model/ZTDateUtil.h"
#include "support/ZTTestMain.h"

#include <QtTest>

namespace {
QVariantMap rule(const QString &lhs, const QString &key, const QString &type, const QString &op,
                 const QVariantMap &rhs = {}, int toMany = 0)
{
    return ZTQualifierText::makeQualifier(lhs, key, type, op, rhs, toMany != 0);
}
QVariantMap titleContains(const QString &text)
{
    return rule("Title", "title", "text", "contains", {{"value", text}});
}
QVariantMap obtainedInLastDays(int days)
{
    return rule("Date Obtained", "dateObtained", "date", "is in the last",
                {{"numberValue", QString::number(days)}, {"timePeriodValue", "days"}});
}

// Counts "ZTListUpdated" for one list.
struct UpdateCounter {
    int count = 0;
    ZTObservation observation;
    explicit UpdateCounter(const ZTList *list)
        : observation(ZTListNotification::updated, list, [this](const ZTNotification &) { ++count; })
    {
    }
};
} // namespace

class TestSmartLists : public QObject {
    Q_OBJECT

private slots:
    void handleItemsKeepsGivenOrder();
    void emptyRulesHoldEverythingOrNothing();
    void editedItemsJoinAtTheFrontAndLeave();
    void batchWritesEachChangedListOnce();
    void ordinaryListsAreNotEvaluated();
    void expirationFollowsDayRules_data();
    void expirationFollowsDayRules();
    void expiryAcrossMidnight();
    void smartListsSurviveSaveAndReopen();
    void unreadableRulesReadAsNone();
    void descriptor_data();
    void descriptor();
    void descriptorJoinsWithAndOr();
};

void TestSmartLists::handleItemsKeepsGivenOrder()
{
    ListsTestLibrary library;
    ZTItem *a = library.add({{"title", "Hobbit one"}});
    ZTItem *b = library.add({{"title", "Other"}});
    ZTItem *c = library.add({{"title", "Hobbit two"}});
    ZTSmartList *list =
        ZTSmartList::createInManagedObjectContext(library.document->managedObjectContext(), 0);
    list->setQualifiers({titleContains("hobbit")});
    UpdateCounter updates(list);
    list->handleItems({c, b, a});
    QCOMPARE(list->itemOids(), QStringList({c->oid(), a->oid()}));
    QCOMPARE(updates.count, 1);
    list->handleItems({});
    QVERIFY(list->itemOids().isEmpty());
    QCOMPARE(updates.count, 2);
}

void TestSmartLists::emptyRulesHoldEverythingOrNothing()
{
    ListsTestLibrary library;
    ZTItem *a = library.add({{"title", "A"}});
    ZTItem *b = library.add({{"title", "B"}});
    ZTSmartList *all = ZTSmartListController::saveSmartList(*library.document, nullptr, {}, 0, "all");
    ZTSmartList *any = ZTSmartListController::saveSmartList(*library.document, nullptr, {}, 1, "any");
    // In the main list's order: newest first.
    QCOMPARE(all->itemOids(), QStringList({b->oid(), a->oid()}));
    QVERIFY(any->itemOids().isEmpty());
}

void TestSmartLists::editedItemsJoinAtTheFrontAndLeave()
{
    ListsTestLibrary library;
    ZTItem *first = library.add({{"title", "Hobbit"}});
    ZTItem *second = library.add({{"title", "Hobbit again"}});
    ZTItem *other = library.add({{"title", "Zebra"}});
    ZTSmartList *list =
        ZTSmartListController::saveSmartList(*library.document, nullptr, {titleContains("hobbit")}, 0, "h");
    QCOMPARE(list->itemOids(), QStringList({second->oid(), first->oid()}));

    // Newly qualifying: at the top, not at a sorted place.
    other->setTitle("Hobbit the third");
    library.document->updateSmartListsWithItem(other);
    QCOMPARE(list->itemOids(), QStringList({other->oid(), second->oid(), first->oid()}));

    UpdateCounter updates(list);
    library.document->updateSmartListsWithItem(other); // no change, no write
    QCOMPARE(updates.count, 0);

    second->setTitle("Nothing");
    library.document->updateSmartListsWithItem(second);
    QCOMPARE(list->itemOids(), QStringList({other->oid(), first->oid()}));
    QCOMPARE(updates.count, 1);

    // A new item goes through the same door.
    ZTItem *fresh = library.add({{"title", "hobbit for beginners"}});
    QCOMPARE(list->itemOids().first(), fresh->oid());
}

void TestSmartLists::batchWritesEachChangedListOnce()
{
    ListsTestLibrary library;
    QList<ZTItem *> items;
    for (int i = 0; i < 5; ++i)
        items << library.add({{"title", QStringLiteral("plain %1").arg(i)}});
    ZTSmartList *list =
        ZTSmartListController::saveSmartList(*library.document, nullptr, {titleContains("star")}, 0, "stars");
    ZTSmartList *untouched =
        ZTSmartListController::saveSmartList(*library.document, nullptr, {titleContains("moon")}, 0, "moons");
    for (ZTItem *item : items)
        item->setTitle(item->title() + " star");
    UpdateCounter updates(list);
    UpdateCounter quiet(untouched);
    library.document->updateSmartListsWithItems(items);
    QCOMPARE(list->count(), 5);
    // Item by item at the front: the last judged stands first.
    QCOMPARE(list->itemOids().first(), items.last()->oid());
    QCOMPARE(updates.count, 1);
    QCOMPARE(quiet.count, 0);
}

void TestSmartLists::ordinaryListsAreNotEvaluated()
{
    ListsTestLibrary library;
    ZTList *plain = library.document->addList();
    library.add({{"title", "anything"}});
    QCOMPARE(plain->count(), 0);
    QVERIFY(plain->allowsItemDrop());
    ZTSmartList *smart = ZTSmartListController::saveSmartList(*library.document, nullptr, {}, 0, "s");
    QVERIFY(!smart->allowsItemDrop());
    QCOMPARE(library.document->smartLists(), QList<ZTSmartList *>({smart}));
}

void TestSmartLists::expirationFollowsDayRules_data()
{
    QTest::addColumn<QVariantList>("qualifiers");
    QTest::addColumn<bool>("expires");
    QTest::newRow("no rules") << QVariantList() << false;
    QTest::newRow("text rule") << QVariantList{titleContains("a")} << false;
    QTest::newRow("in the last") << QVariantList{titleContains("a"), obtainedInLastDays(3)} << true;
    QTest::newRow("not in the last") << QVariantList{rule(
                                            "Date Added", "dateAdded", "date", "is not in the last",
                                            {{"numberValue", "1"}, {"timePeriodValue", "weeks"}})}
                                     << true;
    QTest::newRow("other date operator")
        << QVariantList{rule("Date Added", "dateAdded", "date", "is after", {{"value", "01-01-2000"}})}
        << false;
    QTest::newRow("in the last on a number type")
        << QVariantList{rule("Pages", "pages", "integer", "is in the last", {{"value", "1"}})} << false;
}

void TestSmartLists::expirationFollowsDayRules()
{
    QFETCH(QVariantList, qualifiers);
    QFETCH(bool, expires);
    FixedListClock clock(localDay(2024, 5, 1, 9, 30));
    ListsTestLibrary library;
    ZTSmartList *list = ZTSmartListController::saveSmartList(*library.document, nullptr, qualifiers, 0, "x");
    QCOMPARE(list->expirationDate().isValid(), expires);
    if (expires)
        QCOMPARE(list->expirationDate().toLocalTime(), localDay(2024, 5, 2, 9, 30));
    // Editing the rules away clears it again.
    ZTSmartListController::saveSmartList(*library.document, list, {}, 0, "x");
    QVERIFY(!list->expirationDate().isValid());
}

void TestSmartLists::expiryAcrossMidnight()
{
    FixedListClock clock(localDay(2024, 3, 10, 23, 59));
    ListsTestLibrary library;
    ZTItem *item = library.add({{"title", "yesterday's"}, {"dateObtained", localDay(2024, 3, 9, 0, 0)}});
    ZTSmartList *list = ZTSmartListController::saveSmartList(*library.document, nullptr,
                                                             {obtainedInLastDays(1)}, 0, "recent");
    QCOMPARE(list->itemOids(), QStringList{item->oid()});
    QCOMPARE(list->expirationDate().toLocalTime(), localDay(2024, 3, 11, 23, 59));

    // Past midnight the rule would drop the item, but an expiry of today is not yet due.
    clock.set(localDay(2024, 3, 11, 0, 1));
    library.document->updateExpiredSmartLists();
    QCOMPARE(list->itemOids(), QStringList{item->oid()});
    QCOMPARE(list->expirationDate().toLocalTime(), localDay(2024, 3, 11, 23, 59));

    // A day later the list is rebuilt and expires a day after the check.
    clock.set(localDay(2024, 3, 12, 0, 1));
    library.document->updateExpiredSmartLists();
    QVERIFY(list->itemOids().isEmpty());
    QCOMPARE(list->expirationDate().toLocalTime(), localDay(2024, 3, 13, 0, 1));

    // A list without an expiry is never rebuilt by the check.
    ZTSmartList *manual = ZTSmartListController::saveSmartList(*library.document, nullptr,
                                                               {titleContains("yesterday")}, 0, "m");
    manual->setItemOids({});
    clock.set(localDay(2024, 4, 1));
    library.document->updateExpiredSmartLists();
    QVERIFY(manual->itemOids().isEmpty());
}

void TestSmartLists::smartListsSurviveSaveAndReopen()
{
    FixedListClock clock(localDay(2024, 6, 1, 10, 0));
    ListsTestLibrary library;
    ZTItem *a = library.add({{"title", "Hobbit"},
                             {"authors", QStringList{"Ann", "Bob"}},
                             {"dateObtained", localDay(2024, 5, 30)}});
    library.add({{"title", "Other"}});
    const QVariantList qualifiers{
        rule("Author", "authors", "text", "is", {{"value", "ann"}}, 1), obtainedInLastDays(5),
        rule("Price", "price", "float", "is in the range", {{"fromValue", "0"}, {"toValue", "9.5"}}),
        rule("Signed", "signedFlag", "boolean", "is not set")};
    ZTSmartList *list =
        ZTSmartListController::saveSmartList(*library.document, nullptr, qualifiers, 1, "Ann's");
    const QStringList members = list->itemOids();
    QCOMPARE(members.size(), 2); // any-of: "is not set" takes both
    ZTList *plain = library.document->addList();
    plain->setName("plain");
    plain->setItemOids({a->oid()});
    const QString oidBefore = list->listOid();
    const QString aOid = a->oid(); // the rows are read anew at reopening

    QVERIFY(library.saveAndReopen());
    QCOMPARE(library.document->itemLists().size(), 2);
    auto *reread = dynamic_cast<ZTSmartList *>(library.document->itemLists().at(0));
    QVERIFY(reread);
    QCOMPARE(reread->name(), QStringLiteral("Ann's"));
    QCOMPARE(reread->qualifiers(), qualifiers);
    QCOMPARE(reread->andOrFlag(), 1);
    QCOMPARE(reread->itemOids(), members);
    QCOMPARE(reread->expirationDate().toLocalTime(), localDay(2024, 6, 2, 10, 0));
    QCOMPARE(reread->order(), 0);
    // The session identity is made anew.
    QVERIFY(reread->listOid() != oidBefore);
    ZTList *plainAgain = library.document->itemLists().at(1);
    QVERIFY(!plainAgain->isSmartList());
    QCOMPARE(plainAgain->itemOids(), QStringList{aOid});
    QCOMPARE(plainAgain->order(), 1);
}

void TestSmartLists::unreadableRulesReadAsNone()
{
    ListsTestLibrary library;
    library.add({{"title", "x"}});
    ZTSmartList *list =
        ZTSmartListController::saveSmartList(*library.document, nullptr, {titleContains("x")}, 0, "broken");
    list->setPrimitiveValueForKey(QByteArray("bplist00 this is not one"), "qualifierData");
    QVERIFY(library.saveAndReopen());
    auto *reread = static_cast<ZTSmartList *>(library.document->itemLists().at(0));
    QVERIFY(reread->hasQualifiers());
    QVERIFY(reread->qualifiers().isEmpty());
    // The stored members stay until the rules are edited.
    QCOMPARE(reread->count(), 1);
}

void TestSmartLists::descriptor_data()
{
    QTest::addColumn<QVariantMap>("qualifier");
    QTest::addColumn<QString>("phrase");
    const QString shown = ZTDateUtil::standardDateFormatter().stringFromDate(QDate(1999, 6, 15));
    const QString shownEnd = ZTDateUtil::standardDateFormatter().stringFromDate(QDate(2000, 1, 2));
    QTest::newRow("text") << rule("Title", "title", "text", "contains", {{"value", "Hob"}})
                          << "Title contains \"Hob\"";
    QTest::newRow("boolean") << rule("Signed", "signedFlag", "boolean", "is set") << "Signed is set";
    QTest::newRow("integer") << rule("Pages", "pages", "integer", "is greater than", {{"value", "12 pages"}})
                             << "Pages is greater than 12";
    QTest::newRow("integer range") << rule("Pages", "pages", "integer", "is in the range",
                                           {{"fromValue", "5"}, {"toValue", "x"}})
                                   << "Pages is in the range 5 to 0";
    QTest::newRow("rating") << rule("Rating", "rating", "rating", "is", {{"value", "4"}}) << "Rating is 4";
    QTest::newRow("rating range") << rule("Rating", "rating", "rating", "is in the range",
                                          {{"fromValue", "2"}, {"toValue", "5"}})
                                  << "Rating is in the range 2 to 5";
    QTest::newRow("float") << rule("Price", "price", "float", "is less than", {{"value", "4.5"}})
                           << "Price is less than 4.5";
    QTest::newRow("float empty") << rule("Price", "price", "float", "is", {{"value", ""}}) << "Price is 0.00";
    QTest::newRow("float missing") << rule("Price", "price", "float", "is") << "Price is 0.00";
    QTest::newRow("float range") << rule("Price Paid", "pricePaid", "float", "is in the range",
                                         {{"fromValue", "1.5"}})
                                 << "Price Paid is in the range 1.5 to 0.00";
    QTest::newRow("date") << rule("Date Published", "datePublished", "date", "is", {{"value", "06-15-1999"}})
                          << "Date Published is " + shown;
    QTest::newRow("date unreadable") << rule("Date Published", "datePublished", "date", "is before",
                                             {{"value", "someday"}})
                                     << "Date Published is before \"\"";
    QTest::newRow("date range") << rule("Date Published", "datePublished", "date", "is in the range",
                                        {{"fromValue", "06-15-1999"}, {"toValue", "01-02-2000"}})
                                << "Date Published is in the range " + shown + " to " + shownEnd;
    QTest::newRow("date last") << rule("Date Added", "dateAdded", "date", "is not in the last",
                                       {{"numberValue", "3"}, {"timePeriodValue", "weeks"}})
                               << "Date Added is not in the last 3 weeks";
}

void TestSmartLists::descriptor()
{
    QFETCH(QVariantMap, qualifier);
    QFETCH(QString, phrase);
    ListsTestLibrary library;
    ZTSmartList *list =
        ZTSmartList::createInManagedObjectContext(library.document->managedObjectContext(), 0);
    list->setQualifiers({qualifier});
    QCOMPARE(ZTListDescriptor::descriptorForDocument(*list, *library.document), "0 books\n" + phrase);
}

void TestSmartLists::descriptorJoinsWithAndOr()
{
    ListsTestLibrary library(ZTMediaKind::Album);
    library.add({{"title", "Blue"}});
    ZTSmartList *list = ZTSmartListController::saveSmartList(
        *library.document, nullptr,
        {titleContains("Blue"), rule("Signed", "signedFlag", "boolean", "is not set")}, 0, "x");
    QCOMPARE(ZTListDescriptor::descriptorForDocument(*list, *library.document),
             QStringLiteral("1 album\nTitle contains \"Blue\" and Signed is not set"));
    list->setAndOrFlag(1);
    QCOMPARE(ZTListDescriptor::descriptorForDocument(*list, *library.document),
             QStringLiteral("1 album\nTitle contains \"Blue\" or Signed is not set"));
    ZTList *plain = library.document->addList();
    QCOMPARE(ZTListDescriptor::descriptorForDocument(*plain, *library.document), QStringLiteral("0 albums"));
}

ZT_TEST_MAIN(TestSmartLists)
#include "tst_smartlists.moc"
