#include "library/ZTItemController.h"
#include "library/ZTItemOperations.h"
#include "library/ZTViewPipeline.h"
#include "model/ZTLendingContext.h"

#include "ZTLibraryFixture.h"
#include "support/ZTTestMain.h"

#include <QtTest>

namespace {
ZTItemOperations::Confirmation answer(bool yes, QStringList *asked)
{
    return [yes, asked](const QString &title, const QString &message) {
        *asked << title << message;
        return yes;
    };
}
} // namespace

class TestItemOperations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void addingSavesANewItemAtTheFront();
    void cancellingAnAddMakesNoRow();
    void savingUnchangedItemChangesNothing();
    void switchingLendingOffRemovesTheLoan();
    void bookRoleLabelsAreStoredAsKeys();
    void nextFromADirtySheetSavesFirst();
    void duplicatesFollowTheirSources();
    void duplicateInASearchGoesBehindItsSource();
    void lockAndUnlock();
    void ratingOutsideTheScaleChangesNothing_data();
    void ratingOutsideTheScaleChangesNothing();
    void removeRows_data();
    void removeRows();
    void removingAListKeepsItsItems();
    void findDuplicatesPutsEachItemOnce();
    void findDuplicatesWithoutAnyMakesAnEmptyList();
    void findUnlistedCountsSmartLists();
};

void TestItemOperations::addingSavesANewItemAtTheFront()
{
    ZTLibraryFixture f;
    const QString old = f.addTitled(QStringLiteral("Old"));
    f.document().documentDidOpen();
    ZTViewPipeline p(f.document());
    auto controller = ZTItemController::forKind(ZTMediaKind::Book, p);
    controller->prepareToAdd();
    controller->setValue(QStringLiteral("title"), QStringLiteral("Fresh"));
    controller->setRatingControl(4);
    ZTItem *item = controller->save();
    QVERIFY(item);
    QCOMPARE(f.document().mainList()->itemOids(), (QStringList{item->oid(), old}));
    QCOMPARE(f.document().itemForOid(item->oid()), item);
    QCOMPARE(item->rating(), 4);
    QVERIFY(item->valueForKey(QStringLiteral("dateModified")).toDateTime().isValid());
    QVERIFY(f.document().isDocumentEdited());
    QVERIFY(!controller->item());
    // It survives a save and a fresh open.
    QVERIFY(f.document().saveDocument());
    const QString oid = item->oid();
    f.reopen();
    QCOMPARE(f.titleOf(oid), QStringLiteral("Fresh"));
}

void TestItemOperations::cancellingAnAddMakesNoRow()
{
    ZTLibraryFixture f;
    ZTViewPipeline p(f.document());
    auto controller = ZTItemController::forKind(ZTMediaKind::Book, p);
    controller->prepareToAdd();
    controller->setValue(QStringLiteral("title"), QStringLiteral("Never"));
    controller->clear(); // what cancel does
    QVERIFY(controller->itemDictionary().isEmpty());
    QCOMPARE(f.document().mainList()->count(), 0);
    QVERIFY(f.document().allItems().isEmpty());
}

void TestItemOperations::savingUnchangedItemChangesNothing()
{
    ZTLibraryFixture f;
    const QString oid = f.addTitled(QStringLiteral("Same"), {{QStringLiteral("rating"), 3}});
    f.document().documentDidOpen();
    ZTViewPipeline p(f.document());
    auto controller = ZTItemController::forKind(ZTMediaKind::Book, p);
    controller->handleItem(f.document().itemForOid(oid));
    controller->save();
    QVERIFY(!f.document().isDocumentEdited());
}

void TestItemOperations::switchingLendingOffRemovesTheLoan()
{
    ZTLibraryFixture f;
    const QString oid =
        f.addTitled(QStringLiteral("Lent"), {{QStringLiteral("lentToName"), QStringLiteral("Ann Lee")},
                                             {QStringLiteral("lentToEmail"), QStringLiteral("ann@x.org")}});
    ZTItem *item = f.document().itemForOid(oid);
    QVERIFY(item->isLentOut());
    ZTViewPipeline p(f.document());
    auto controller = ZTItemController::forKind(ZTMediaKind::Book, p);
    controller->handleItem(item);
    controller->clickLentOutButton(false);
    QVERIFY(!controller->itemDictionary().contains(QStringLiteral("lentToName")));
    QVERIFY(controller->isDirty());
    controller->save();
    QVERIFY(!item->isLentOut());
    QCOMPARE(item->lentToName(), QString());
    QVERIFY(f.document().managedObjectContext()->fetch(QStringLiteral("ZTLendingContext")).isEmpty());
}

void TestItemOperations::bookRoleLabelsAreStoredAsKeys()
{
    ZTLibraryFixture f;
    ZTViewPipeline p(f.document());
    auto controller = ZTItemController::forKind(ZTMediaKind::Book, p);
    controller->prepareToAdd();
    controller->setValue(QStringLiteral("title"), QStringLiteral("Edited"));
    const QString label = ZTBookController::authorRoleFromLocalizedDictionary().key(QStringLiteral("ed."));
    controller->setValue(QStringLiteral("authorRoleDicts"),
                         QVariantList{QVariantMap{{QStringLiteral("name"), QStringLiteral("Jo Bloggs")},
                                                  {QStringLiteral("role"), label}}});
    ZTItem *item = controller->save();
    const QVariantList dicts = item->valueForKey(QStringLiteral("authorRoleDicts")).toList();
    QCOMPARE(dicts.size(), 1);
    QCOMPARE(dicts.first().toMap().value(QStringLiteral("role")).toString(), QStringLiteral("ed."));
}

void TestItemOperations::nextFromADirtySheetSavesFirst()
{
    ZTLibraryFixture f;
    const QString second = f.addTitled(QStringLiteral("second"));
    const QString first = f.addTitled(QStringLiteral("first"));
    ZTViewPipeline p(f.document());
    auto controller = ZTItemController::forKind(ZTMediaKind::Book, p);
    controller->handleItem(f.document().itemForOid(first));
    QVERIFY(!controller->hasPreviousOid());
    QVERIFY(controller->hasNextOid());
    controller->setValue(QStringLiteral("title"), QStringLiteral("first, changed"));
    QVERIFY(controller->showNextItem());
    QCOMPARE(f.titleOf(first), QStringLiteral("first, changed"));
    QCOMPARE(controller->item()->oid(), second);
    QVERIFY(!controller->isDirty());
    QVERIFY(!controller->hasNextOid());
    QVERIFY(!controller->showNextItem()); // past the end: nothing
    QCOMPARE(controller->item()->oid(), second);
    QVERIFY(controller->showPreviousItem());
    QCOMPARE(controller->item()->oid(), first);
}

void TestItemOperations::duplicatesFollowTheirSources()
{
    ZTLibraryFixture f;
    const QString c = f.addTitled(QStringLiteral("c"));
    const QString b =
        f.addTitled(QStringLiteral("b"), {{QStringLiteral("lentToName"), QStringLiteral("Bo")}});
    const QString a = f.addTitled(QStringLiteral("a"));
    ZTList *list = f.addList(QStringLiteral("L"), {c, b, a});
    f.document().documentDidOpen();
    ZTViewPipeline p(f.document());
    p.selectListRow(1);
    ZTItemOperations ops(p);
    const QList<ZTItem *> copies = ops.duplicateItems({2, 1, 99});
    QCOMPARE(copies.size(), 2);
    QCOMPARE(f.titlesOf(list->itemOids()), (QStringList{"c", "b", "b", "a", "a"}));
    QCOMPARE(f.titlesOf(f.document().mainList()->itemOids()), (QStringList{"a", "a", "b", "b", "c"}));
    QVERIFY(f.document().isDocumentEdited());
    // The copy has its own loan.
    ZTItem *copyOfB = f.document().itemForOid(list->itemOids().at(2));
    QVERIFY(copyOfB->oid() != b);
    QCOMPARE(copyOfB->lentToName(), QStringLiteral("Bo"));
    QVERIFY(copyOfB->lendingContext() != f.document().itemForOid(b)->lendingContext());
}

void TestItemOperations::duplicateInASearchGoesBehindItsSource()
{
    ZTLibraryFixture f;
    f.addTitled(QStringLiteral("other"));
    const QString hit = f.addTitled(QStringLiteral("hit"));
    ZTViewPipeline p(f.document());
    p.controlTextDidChange(QStringLiteral("hit"));
    ZTItemOperations ops(p);
    const QList<ZTItem *> copies = ops.duplicateItems({0});
    QCOMPARE(p.searchedItemOids(), (QStringList{hit, copies.first()->oid()}));
    QCOMPARE(f.titlesOf(f.document().mainList()->itemOids()), (QStringList{"hit", "hit", "other"}));
}

void TestItemOperations::lockAndUnlock()
{
    ZTLibraryFixture f;
    const QString a = f.addTitled(QStringLiteral("a"));
    const QString b = f.addTitled(QStringLiteral("b"));
    f.document().documentDidOpen();
    ZTViewPipeline p(f.document());
    ZTItemOperations ops(p);
    ops.lockItems({a, b});
    QVERIFY(f.document().itemForOid(a)->isLocked());
    QCOMPARE(p.mainCaches().count(QStringLiteral("isLocked"), QStringLiteral("Yes")), 2);
    ops.unlockItems({b});
    QVERIFY(!f.document().itemForOid(b)->isLocked());
    QCOMPARE(p.mainCaches().count(QStringLiteral("isLocked"), QStringLiteral("Yes")), 1);
    QVERIFY(f.document().isDocumentEdited());
}

void TestItemOperations::ratingOutsideTheScaleChangesNothing_data()
{
    QTest::addColumn<QVariant>("rating");
    QTest::addColumn<int>("changed");
    QTest::addColumn<int>("stored");
    QTest::newRow("five") << QVariant(5) << 1 << 5;
    QTest::newRow("zero") << QVariant(0) << 1 << 0;
    QTest::newRow("same as before") << QVariant(2) << 0 << 2;
    QTest::newRow("six") << QVariant(6) << 0 << 2;
    QTest::newRow("negative") << QVariant(-1) << 0 << 2;
    QTest::newRow("not a number") << QVariant(QStringLiteral("many")) << 0 << 2;
}

void TestItemOperations::ratingOutsideTheScaleChangesNothing()
{
    QFETCH(QVariant, rating);
    QFETCH(int, changed);
    QFETCH(int, stored);
    ZTLibraryFixture f;
    const QString a = f.addTitled(QStringLiteral("a"), {{QStringLiteral("rating"), 2}});
    ZTViewPipeline p(f.document());
    ZTItemOperations ops(p);
    QCOMPARE(ops.setRatingOfItems({a}, rating), changed);
    QCOMPARE(f.document().itemForOid(a)->rating(), stored);
}

void TestItemOperations::removeRows_data()
{
    QTest::addColumn<int>("listKind"); // 0 main, 1 list, 2 smart list
    QTest::addColumn<bool>("force");
    QTest::addColumn<bool>("confirm");
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("inLibrary");
    QTest::addColumn<int>("inList"); // the selected list, or another list for the main list
    QTest::addColumn<bool>("asked");
    using R = ZTItemOperations::Removal;
    QTest::newRow("main list, confirmed") << 0 << false << true << int(R::FromLibrary) << 1 << 1 << true;
    QTest::newRow("main list, declined") << 0 << false << false << int(R::None) << 3 << 2 << true;
    QTest::newRow("list: only from the list") << 1 << false << true << int(R::FromList) << 3 << 0 << false;
    QTest::newRow("list, forced") << 1 << true << true << int(R::FromLibrary) << 1 << 0 << true;
    QTest::newRow("smart list: nothing") << 2 << false << true << int(R::None) << 3 << 2 << false;
    QTest::newRow("smart list, forced") << 2 << true << true << int(R::FromLibrary) << 1 << 0 << true;
}

void TestItemOperations::removeRows()
{
    QFETCH(int, listKind);
    QFETCH(bool, force);
    QFETCH(bool, confirm);
    QFETCH(int, result);
    QFETCH(int, inLibrary);
    QFETCH(int, inList);
    QFETCH(bool, asked);
    ZTLibraryFixture f;
    const QString a = f.addTitled(QStringLiteral("a"));
    const QString b = f.addTitled(QStringLiteral("b"));
    const QString c = f.addTitled(QStringLiteral("c"));
    ZTList *list =
        listKind == 2 ? f.addSmartList(QStringLiteral("S"), {a, b}) : f.addList(QStringLiteral("L"), {a, b});
    ZTList *other = f.addList(QStringLiteral("Other"), {a, c});
    ZTViewPipeline p(f.document());
    p.selectListRow(listKind == 0 ? 0 : 1);
    ZTItemOperations ops(p);
    QStringList questions;
    const auto removal = ops.removeSelectedRowsInTableView(
        {a, b}, force ? ZTItemOperations::Force::Yes : ZTItemOperations::Force::No,
        answer(confirm, &questions));
    QCOMPARE(int(removal), result);
    QCOMPARE(f.document().mainList()->count(), inLibrary);
    // On the main list, watch another list the items are in.
    QCOMPARE((listKind == 0 ? other : list)->count(), inList);
    QCOMPARE(!questions.isEmpty(), asked);
    if (asked) {
        QCOMPARE(questions.at(0), QStringLiteral("Remove Items"));
        QCOMPARE(questions.at(1),
                 QStringLiteral("Are you sure you want to remove the selected items from your library?"));
    }
    if (result == int(ZTItemOperations::Removal::FromLibrary)) {
        QVERIFY(!f.document().itemForOid(a));
        QVERIFY(!f.document().itemLists().at(1)->containsOid(a)); // gone from every list
        QVERIFY(f.document().isDocumentEdited());
    }
}

void TestItemOperations::removingAListKeepsItsItems()
{
    ZTLibraryFixture f;
    const QString a = f.addTitled(QStringLiteral("a"));
    f.addList(QStringLiteral("First"), {a});
    f.addList(QStringLiteral("Second"), {a});
    ZTViewPipeline p(f.document());
    p.selectListRow(1);
    ZTItemOperations ops(p);
    QStringList questions;
    QVERIFY(!ops.removeSelectedList(0, answer(true, &questions))); // row 0 is the library
    QVERIFY(!ops.removeSelectedList(1, answer(false, &questions)));
    QCOMPARE(questions.value(0), QStringLiteral("Remove List"));
    QVERIFY(ops.removeSelectedList(1, answer(true, &questions)));
    QCOMPARE(f.document().itemLists().size(), 1);
    QCOMPARE(f.document().itemLists().first()->name(), QStringLiteral("Second"));
    QCOMPARE(f.document().itemLists().first()->order(), 0);
    QVERIFY(f.document().itemForOid(a));
    QVERIFY(p.isMainListSelected());
}

void TestItemOperations::findDuplicatesPutsEachItemOnce()
{
    ZTLibraryFixture f;
    const QString a =
        f.addTitled(QStringLiteral("a"), {{QStringLiteral("isbn"), QStringLiteral("0306406152")},
                                          {QStringLiteral("lccn"), QStringLiteral("2001012345")}});
    const QString b =
        f.addTitled(QStringLiteral("b"), {{QStringLiteral("isbn"), QStringLiteral("0306406152")},
                                          {QStringLiteral("lccn"), QStringLiteral("2001012345")}});
    f.addTitled(QStringLiteral("c"), {{QStringLiteral("isbn"), QStringLiteral("0131103628")}});
    f.addTitled(QStringLiteral("blank 1"));
    f.addTitled(QStringLiteral("blank 2"));
    ZTViewPipeline p(f.document());
    ZTItemOperations ops(p);
    ZTList *list = ops.findDuplicates();
    QVERIFY(list);
    QCOMPARE(list->name(), QStringLiteral("Duplicates"));
    QCOMPARE(QSet<QString>(list->itemOids().begin(), list->itemOids().end()), (QSet<QString>{a, b}));
    QCOMPARE(list->count(), 2);
    QCOMPARE(p.selectedList(), list);
    QCOMPARE(list->order(), 0);
}

void TestItemOperations::findDuplicatesWithoutAnyMakesAnEmptyList()
{
    ZTLibraryFixture f;
    f.addTitled(QStringLiteral("a"), {{QStringLiteral("isbn"), QStringLiteral("0306406152")}});
    f.addList(QStringLiteral("Existing"), {});
    f.document().documentDidOpen();
    ZTViewPipeline p(f.document());
    ZTItemOperations ops(p);
    ZTList *list = ops.findDuplicates();
    QCOMPARE(list->count(), 0);
    QCOMPARE(list->order(), 1);
    QCOMPARE(f.document().itemLists().size(), 2);
    QVERIFY(f.document().isDocumentEdited());
}

void TestItemOperations::findUnlistedCountsSmartLists()
{
    ZTLibraryFixture f;
    const QString a = f.addTitled(QStringLiteral("a"));
    const QString b = f.addTitled(QStringLiteral("b"));
    const QString c = f.addTitled(QStringLiteral("c"));
    f.addList(QStringLiteral("L"), {a});
    f.addSmartList(QStringLiteral("S"), {b});
    ZTViewPipeline p(f.document());
    ZTItemOperations ops(p);
    ZTList *list = ops.findUnlisted();
    QCOMPARE(list->name(), QStringLiteral("Unlisted"));
    QCOMPARE(list->itemOids(), QStringList{c});
}

ZT_TEST_MAIN(TestItemOperations)
#include "tst_itemoperations.moc"
