// Ordinary lists: adding, renaming, removing, ordering, and the filter dictionary.
#include "ListsTestLibrary.h"
#include "library/lists/ZTListFilter.h"

#include "base/ZTNotificationCenter.h"
#include "library/lists/ZTSmartListController.h"
#include "lists/ZTList.h"
#include "lists/ZTListCompare.h"
#include "lists/ZTSmartList.h"
#include "support/ZTTestMain.h"

#include <QtTest>

namespace Key = ZTFilterDictionaryKey;

namespace {
QVariantMap countsOf(const QVariantMap &result, const QString &key)
{
    return result.value(Key::counts).toMap().value(key).toMap();
}
QVariantMap oidsOf(const QVariantMap &result, const QString &key)
{
    return result.value(Key::oids).toMap().value(key).toMap();
}
QStringList names(const ZTDocument &document)
{
    QStringList result;
    for (const ZTList *list : document.itemLists())
        result << QStringLiteral("%1:%2").arg(list->order()).arg(list->name());
    return result;
}
} // namespace

class TestLists : public QObject {
    Q_OBJECT

private slots:
    void addListAppendsUntitled();
    void renaming_data();
    void renaming();
    void removingAList();
    void removingItemsAsShown();
    void listDataIsStoredAndAnnounced();
    void longListsAreWrittenAtSave();
    void valuesSortWithoutRegardToCase();
    void filterDictionaryOfEmptyList();
    void filterDictionaryCounts();
    void filterDictionaryCompletionLists();
    void filterDictionaryOfAList();
    void filterDictionaryOfALargeList();
};

void TestLists::addListAppendsUntitled()
{
    ListsTestLibrary library;
    QVERIFY(!library.document->isDocumentEdited());
    ZTList *first = library.document->addList();
    ZTList *second = library.document->addList();
    QCOMPARE(first->name(), QStringLiteral("untitled list"));
    QCOMPARE(first->order(), 0);
    QCOMPARE(second->order(), 1);
    QVERIFY(!first->isLibrary());
    QVERIFY(library.document->isDocumentEdited());
    QCOMPARE(library.document->listAtRow(0), library.document->mainList());
    QCOMPARE(library.document->listAtRow(2), second);
    QCOMPARE(library.document->listAtRow(3), nullptr);
    QCOMPARE(library.document->listAtRow(-1), nullptr);
}

void TestLists::renaming_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("renamed");
    QTest::newRow("new name") << 1 << "Favourites" << true;
    QTest::newRow("main list") << 0 << "Everything" << false;
    QTest::newRow("blank") << 1 << " \t\n" << false;
    QTest::newRow("empty") << 1 << "" << false;
    QTest::newRow("same name") << 1 << "untitled list" << false;
    QTest::newRow("past the last") << 2 << "Favourites" << false;
    QTest::newRow("negative") << -1 << "Favourites" << false;
}

void TestLists::renaming()
{
    QFETCH(int, row);
    QFETCH(QString, name);
    QFETCH(bool, renamed);
    ListsTestLibrary library;
    library.document->addList();
    library.document->updateChangeCount(ZTDocument::ChangeType::Cleared);
    const QString mainName = library.document->mainList()->name();
    QCOMPARE(library.document->updateListAtIndex(row, name), renamed);
    QCOMPARE(library.document->isDocumentEdited(), renamed);
    QCOMPARE(library.document->listAtRow(1)->name(), renamed ? name : QStringLiteral("untitled list"));
    QCOMPARE(library.document->mainList()->name(), mainName);
}

void TestLists::removingAList()
{
    ListsTestLibrary library;
    ZTItem *item = library.add({{"title", "kept"}});
    for (const char *name : {"a", "b", "c"})
        library.document->addList()->setName(QLatin1String(name));
    library.document->listAtRow(2)->addItem(item->oid());
    QStringList asked;
    auto refuse = [&](const QString &title, const QString &message) {
        asked << title << message;
        return false;
    };
    QVERIFY(!library.document->removeListAtRow(2, refuse));
    QCOMPARE(asked, QStringList({"Remove List",
                                 "Are you sure you want to remove the selected list from your library?"}));
    QCOMPARE(library.document->itemLists().size(), 3);
    QVERIFY(!library.document->removeListAtRow(0));
    QVERIFY(!library.document->removeListAtRow(4));
    library.document->updateChangeCount(ZTDocument::ChangeType::Cleared);
    QVERIFY(library.document->removeListAtRow(2, [](const QString &, const QString &) { return true; }));
    QCOMPARE(names(*library.document), QStringList({"0:a", "1:c"}));
    QVERIFY(library.document->isDocumentEdited());
    // The list's items stay in the library.
    QCOMPARE(library.document->mainList()->itemOids(), QStringList{item->oid()});
    QVERIFY(library.saveAndReopen());
    QCOMPARE(names(*library.document), QStringList({"0:a", "1:c"}));
}

void TestLists::removingItemsAsShown()
{
    ListsTestLibrary library;
    ZTItem *a = library.add({{"title", "a"}});
    ZTItem *b = library.add({{"title", "b"}});
    const QString aOid = a->oid(), bOid = b->oid();
    ZTList *plain = library.document->addList();
    plain->setItemOids({aOid, bOid});
    ZTSmartList *smart = ZTSmartListController::saveSmartList(*library.document, nullptr, {}, 0, "all");
    QCOMPARE(smart->count(), 2);

    // A smart list shown: nothing happens without force.
    QVERIFY(!library.document->removeSelectedItems({aOid}, 2, ZTDocument::RemovalScope::AsShown));
    QCOMPARE(smart->count(), 2);
    // An ordinary list: the oid leaves that list only, without a question.
    int questions = 0;
    auto agree = [&](const QString &, const QString &) {
        ++questions;
        return true;
    };
    QVERIFY(library.document->removeSelectedItems({aOid}, 1, ZTDocument::RemovalScope::AsShown, agree));
    QCOMPARE(questions, 0);
    QCOMPARE(plain->itemOids(), QStringList{bOid});
    QCOMPARE(library.document->mainList()->count(), 2);
    // Force from a list, or row 0: asked, then gone from everywhere.
    QStringList titles;
    auto decline = [&](const QString &title, const QString &) {
        titles << title;
        return false;
    };
    QVERIFY(
        !library.document->removeSelectedItems({aOid, bOid}, 1, ZTDocument::RemovalScope::Force, decline));
    QVERIFY(!library.document->removeSelectedItems({aOid}, 0, ZTDocument::RemovalScope::AsShown, decline));
    QCOMPARE(titles, QStringList({"Remove Items", "Remove Item"}));
    QCOMPARE(library.document->mainList()->count(), 2);
    QVERIFY(library.document->removeSelectedItems({bOid}, 2, ZTDocument::RemovalScope::Force, agree));
    QVERIFY(!library.document->itemForOid(bOid));
    QCOMPARE(library.document->mainList()->itemOids(), QStringList{aOid});
    QVERIFY(plain->itemOids().isEmpty());
    QCOMPARE(smart->itemOids(), QStringList{aOid});
}

void TestLists::listDataIsStoredAndAnnounced()
{
    ListsTestLibrary library;
    ZTList *list = library.document->addList();
    list->setName("ordered");
    QStringList seen;
    ZTObservation observation(ZTListNotification::updated, list, [&](const ZTNotification &note) {
        seen << note.userInfo.value(QStringLiteral("oid")).toString();
    });
    list->setItemOids({"x", "y"});
    list->addItem("w");
    QCOMPARE(list->itemOids(), QStringList({"w", "x", "y"}));
    QVERIFY(list->containsOid("x"));
    QVERIFY(list->removeOid("x"));
    QVERIFY(!list->containsOid("x"));
    QVERIFY(!list->removeOid("x"));
    list->updateListData();
    QCOMPARE(seen, QStringList({list->listOid(), list->listOid(), list->listOid()}));
    QVERIFY(library.saveAndReopen());
    QCOMPARE(library.document->itemLists().at(0)->itemOids(), QStringList({"w", "y"}));
}

void TestLists::longListsAreWrittenAtSave()
{
    ListsTestLibrary library;
    ZTList *list = library.document->addList();
    QStringList oids;
    for (int i = 0; i < 250; ++i)
        oids << QStringLiteral("oid-%1").arg(i);
    int updates = 0;
    ZTObservation observation(ZTListNotification::updated, list, [&](const ZTNotification &) { ++updates; });
    list->setItemOids(oids);
    list->addItem("first");
    // Observers hear of every change; the bytes wait for the save.
    QCOMPARE(updates, 2);
    QVERIFY(list->hasUnwrittenListData());
    QVERIFY(library.document->saveDocument());
    QVERIFY(!list->hasUnwrittenListData());
    QVERIFY(library.saveAndReopen());
    QCOMPARE(library.document->itemLists().at(0)->itemOids(), QStringList{"first"} + oids);
}

void TestLists::valuesSortWithoutRegardToCase()
{
    const QStringList values{"delta", "Bravo", "alpha", "Alpha", "CHARLIE", "émile", "Ézra", "Émile", "echo"};
    const QStringList sorted = ZTListCompare::sortedCaseInsensitive(values);
    // Whatever the locale, plain letters keep the alphabet's order across
    // cases; values equal but for case stand together, capitals first.
    QCOMPARE(sorted.mid(0, 5), (QStringList{"Alpha", "alpha", "Bravo", "CHARLIE", "delta"}));
    QCOMPARE(sorted.indexOf("émile"), sorted.indexOf("Émile") + 1);
    QVERIFY(sorted.indexOf("echo") > sorted.indexOf("delta"));
    // The order as places says the same.
    QStringList byPlaces;
    for (const int i : ZTListCompare::caseInsensitiveOrder(values))
        byPlaces << values[i];
    QCOMPARE(byPlaces, sorted);
}

void TestLists::filterDictionaryOfEmptyList()
{
    ListsTestLibrary library;
    const QVariantMap result =
        ZTListFilter::filterDictionaryFromDocument(*library.document->mainList(), *library.document);
    const ZTCacheableAttributes &keys = library.document->attributeTables().cacheableAttributesDictionary();
    for (const QString &key : keys.boolean) {
        QCOMPARE(result.value(key).toStringList(), QStringList({"Yes", "No"}));
        QCOMPARE(countsOf(result, key), QVariantMap({{"Yes", "0"}, {"No", "0"}}));
        QCOMPARE(oidsOf(result, key).value("Yes").toStringList(), QStringList());
    }
    for (const QString &key : keys.string + keys.array + keys.number) {
        QVERIFY2(result.contains(key), qPrintable(key));
        QVERIFY(result.value(key).toStringList().isEmpty());
        QVERIFY(countsOf(result, key).isEmpty());
    }
    QVERIFY(result.value(Key::personName).toStringList().isEmpty());
    QVERIFY(result.value(Key::allLanguages).toStringList().isEmpty());
}

void TestLists::filterDictionaryCounts()
{
    ListsTestLibrary library;
    ZTItem *a = library.add({{"title", "a"},
                             {"keywords", QStringList{"fantasy", "fantasy", "elves"}},
                             {"series", "  "},
                             {"genre", "Fantasy"},
                             {"copies", 10},
                             {"signedFlag", true}});
    ZTItem *b = library.add({{"title", "b"},
                             {"keywords", QStringList{"Dragons"}},
                             {"series", "Middle-earth"},
                             {"genre", "fantasy"},
                             {"copies", 9}});
    ZTItem *c = library.add({{"title", "c"}, {"genre", "Fantasy"}, {"copies", 10}});
    // Oids without an item are left out.
    library.document->mainList()->addItem("no-such-item");
    const QVariantMap result =
        ZTListFilter::filterDictionaryFromDocument(*library.document->mainList(), *library.document);

    QCOMPARE(result.value("keywords").toStringList(), QStringList({"Dragons", "elves", "fantasy"}));
    QCOMPARE(countsOf(result, "keywords").value("fantasy").toString(), QStringLiteral("1"));
    QCOMPARE(countsOf(result, "keywords").value(Key::emptyTag).toString(), QStringLiteral("1"));
    QCOMPARE(oidsOf(result, "keywords").value(Key::emptyTag).toStringList(), QStringList{c->oid()});

    // A blank series counts under the marker and is no value.
    QCOMPARE(result.value("series").toStringList(), QStringList{"Middle-earth"});
    QCOMPARE(countsOf(result, "series").value(Key::emptyTag).toString(), QStringLiteral("2"));
    QCOMPARE(oidsOf(result, "series").value(Key::emptyTag).toStringList(), QStringList({c->oid(), a->oid()}));

    // Values differ by case as stored; the order ignores it.
    QCOMPARE(countsOf(result, "genre").value("Fantasy").toString(), QStringLiteral("2"));
    QCOMPARE(countsOf(result, "genre").value("fantasy").toString(), QStringLiteral("1"));

    // Numbers sort by value, not as text.
    QCOMPARE(result.value("copies").toStringList(), QStringList({"9", "10"}));
    QCOMPARE(countsOf(result, "copies"), QVariantMap({{"9", "1"}, {"10", "2"}}));
    QVERIFY(!countsOf(result, "copies").contains(Key::emptyTag));
    QCOMPARE(countsOf(result, "year").value(Key::emptyTag).toString(), QStringLiteral("3"));

    QCOMPARE(countsOf(result, "isSigned"), QVariantMap({{"Yes", "1"}, {"No", "2"}}));
    QCOMPARE(oidsOf(result, "isSigned").value("Yes").toStringList(), QStringList{a->oid()});
    QCOMPARE(oidsOf(result, "isSigned").value("No").toStringList(), QStringList({c->oid(), b->oid()}));
}

void TestLists::filterDictionaryCompletionLists()
{
    ListsTestLibrary library;
    ZTItem *lent = library.add({{"title", "lent"}, {"language", "German"}, {"originalLanguage", "english"}});
    lent->setLentToName("Zoe Adams");
    library.add({{"title", "other"}, {"language", "English"}});
    const QVariantMap result = ZTListFilter::filterDictionaryFromDocument(
        *library.document->mainList(), *library.document, {"bob brown", "Alice Archer", "Zoe Adams"});
    QCOMPARE(result.value(Key::personName).toStringList(),
             QStringList({"Alice Archer", "bob brown", "Zoe Adams"}));
    QCOMPARE(result.value(Key::allLanguages).toStringList(), QStringList({"English", "english", "German"}));
}

void TestLists::filterDictionaryOfAList()
{
    ListsTestLibrary library;
    ZTItem *a = library.add({{"title", "a"}, {"genre", "Crime"}});
    library.add({{"title", "b"}, {"genre", "Poetry"}});
    ZTList *list = library.document->addList();
    list->setItemOids({a->oid()});
    const QVariantMap result = ZTListFilter::filterDictionaryFromDocument(*list, *library.document);
    QCOMPARE(result.value("genre").toStringList(), QStringList{"Crime"});
    QCOMPARE(countsOf(result, "isSigned"), QVariantMap({{"Yes", "0"}, {"No", "1"}}));
}

ZT_TEST_MAIN(TestLists)
#include "tst_lists.moc"

// A list long enough to be counted in two halves: the joined tally must be the
// one a plain count over the list gives, in list order, across the seam.
void TestLists::filterDictionaryOfALargeList()
{
    ListsTestLibrary library;
    constexpr int count = 24000;
    for (int i = 0; i < count; ++i) {
        QVariantMap values{{"title", QStringLiteral("t%1").arg(i)}, {"signedFlag", i % 3 == 0}};
        if (i % 11 != 0)
            values.insert("genre", QStringLiteral("G%1").arg(i % 7));
        if (i % 13 != 0)
            values.insert("keywords", QStringList{QStringLiteral("k%1").arg(i % 5),
                                                  QStringLiteral("k%1").arg((i + 1) % 5)});
        // One value only late in the list and one only early: both halves add values of their own.
        if (i == 5)
            values.insert("publisher", "Early Press");
        if (i == count - 5)
            values.insert("publisher", "Late Press");
        ZTItem *item = library.add(values);
        if (i == 7)
            item->setLentToName("Ann Early");
        if (i == count - 7)
            item->setLentToName("Zed Late");
    }
    // Once as made, where every row has texts of its own, and once as read
    // back, where the store shares a text repeated down a column.
    auto verify = [&] {
        const QStringList order = library.document->mainList()->itemOids();
        QCOMPARE(order.size(), count);

        // The expected tables, counted plainly in list order.
        QMap<QString, QStringList> genre, keywords, isSigned, publisher;
        for (const QString &oid : order) {
            const ZTItem *item = library.document->itemForOid(oid);
            const QString g = item->valueForKey("genre").toString();
            genre[g.isEmpty() ? Key::emptyTag : g] << oid;
            const QStringList k = item->keywords();
            if (k.isEmpty())
                keywords[Key::emptyTag] << oid;
            for (const QString &word : k)
                keywords[word] << oid;
            isSigned[item->isSigned() ? "Yes" : "No"] << oid;
            const QString p = item->valueForKey("publisher").toString();
            publisher[p.isEmpty() ? Key::emptyTag : p] << oid;
        }

        const QVariantMap result =
            ZTListFilter::filterDictionaryFromDocument(*library.document->mainList(), *library.document);
        auto check = [&](const QString &key, const QMap<QString, QStringList> &expected) {
            const QVariantMap oids = oidsOf(result, key);
            const QVariantMap counts = countsOf(result, key);
            QCOMPARE(oids.size(), expected.size());
            for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
                QCOMPARE(oids.value(it.key()).toStringList(), it.value());
                QCOMPARE(counts.value(it.key()).toString(), QString::number(it.value().size()));
            }
        };
        check("genre", genre);
        check("keywords", keywords);
        check("isSigned", isSigned);
        check("publisher", publisher);
        QCOMPARE(result.value("genre").toStringList(),
                 QStringList({"G0", "G1", "G2", "G3", "G4", "G5", "G6"}));
        QCOMPARE(result.value("publisher").toStringList(), QStringList({"Early Press", "Late Press"}));
        QCOMPARE(result.value(Key::personName).toStringList(), QStringList({"Ann Early", "Zed Late"}));
        // Without the oid table (as the caches ask) the values and counts are the same.
        const QVariantMap countsOnly = ZTListFilter::filterDictionaryFromDocument(
            *library.document->mainList(), *library.document, {}, false);
        QVERIFY(!countsOnly.contains(Key::oids));
        QCOMPARE(countsOnly.value(Key::counts), result.value(Key::counts));
        for (const char *key : {"genre", "keywords", "isSigned", "publisher"})
            QCOMPARE(countsOnly.value(key), result.value(key));
    };
    verify();
    QVERIFY(library.saveAndReopen());
    verify();
}
