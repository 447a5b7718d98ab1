#include "library/ZTAttributeTables.h"
#include "library/ZTItemSorting.h"
#include "library/ZTItemStatistics.h"
#include "library/ZTItemTable.h"
#include "library/ZTSearchIndex.h"
#include "library/ZTTextOrder.h"
#include "library/ZTViewPipeline.h"

#include "ZTLibraryFixture.h"
#include "support/ZTTestMain.h"

#include <QtTest>

#include <algorithm>
#include <cstring>

class TestViewPipeline : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void oidSourcesFollowListSearchAndTab();
    void thirteenDigitCodeFindsTheIsbn();
    void narrowingSearchesOnlyThePreviousResult();
    void deletingACharacterRescans();
    void manyEditsKeepTheIndexRight();
    void searchIndexAgreesWithTheItems_data();
    void searchIndexAgreesWithTheItems();
    void textSearchAgreesWithAPlainSearch();
    void resolvedItemsFollowTheLibrary();
    void browserShowsTheSelectedListsValues();
    void browserMatches_data();
    void browserMatches();
    void filterCountsFollowColumnOrder();
    void statisticsLine_data();
    void statisticsLine();
    void displayTextForInt_data();
    void displayTextForInt();
    void sortNilOrdering_data();
    void sortNilOrdering();
    void longListsSortAsShortOnes();
    void sortKeysOrderAsTextsCompare();
    void controlClickJoinsTheSort();
    void coverHeaderChangesNothing();
    void sortingASearchDoesNotChangeTheLibrary();
    void sortingAListIsStored();
    void listTableTypeAhead_data();
    void listTableTypeAhead();
    void listTypeAheadWithoutListsFallsThrough();
    void itemTypeAhead();
    void listHeaderCyclesFourOrders();
    void nextAndPreviousFollowTheView();
};

void TestViewPipeline::oidSourcesFollowListSearchAndTab()
{
    ZTLibraryFixture f;
    const QString a = f.addTitled(QStringLiteral("Alpha"));
    const QString b = f.addTitled(QStringLiteral("Beta"));
    const QString c = f.addTitled(QStringLiteral("Gamma"));
    f.addList(QStringLiteral("Some"), {a, c, QStringLiteral("no-such-oid")});
    ZTViewPipeline p(f.document());
    QCOMPARE(p.baseOids(), (QStringList{c, b, a})); // new items go to the front
    p.selectListRow(1);
    QCOMPARE(p.baseOids(), (QStringList{a, c, QStringLiteral("no-such-oid")}));
    QCOMPARE(p.baseItems().size(), 2); // unknown oids drop out of the rows
    p.controlTextDidChange(QStringLiteral("gam"));
    QCOMPARE(p.baseOids(), QStringList{c});
    p.setTab(ZTViewPipeline::Tab::Filter);
    QVERIFY(p.displayedOids().isEmpty()); // nothing chosen in the browser
    p.selectListRow(5);                   // out of range: the main list
    QVERIFY(p.isMainListSelected());
    QVERIFY(!p.usingSearch());
}

void TestViewPipeline::thirteenDigitCodeFindsTheIsbn()
{
    ZTLibraryFixture f;
    const QString book =
        f.addTitled(QStringLiteral("Coded"), {{QStringLiteral("isbn"), QStringLiteral("0306406152")}});
    f.addTitled(QStringLiteral("Other"), {{QStringLiteral("isbn"), QStringLiteral("0131103628")}});
    ZTViewPipeline p(f.document());
    QCOMPARE(p.controlTextDidChange(QStringLiteral("9780306406157")), 0);
    QCOMPARE(p.searchedItemOids(), QStringList{book});
    QCOMPARE(p.searchString(), QStringLiteral("0306406152"));
}

void TestViewPipeline::narrowingSearchesOnlyThePreviousResult()
{
    ZTLibraryFixture f;
    const QString first = f.addTitled(QStringLiteral("abc one"));
    const QString later = f.addTitled(QStringLiteral("xyz two"));
    ZTViewPipeline p(f.document());
    p.controlTextDidChange(QStringLiteral("ab"));
    QCOMPARE(p.searchedItemOids(), QStringList{first});
    // The other item changes so that it would match; a narrowing keystroke does not look at it.
    f.document().itemForOid(later)->setTitle(QStringLiteral("abc two"));
    p.itemsDidChange({later});
    p.controlTextDidChange(QStringLiteral("abc"));
    QCOMPARE(p.searchedItemOids(), QStringList{first});
}

void TestViewPipeline::deletingACharacterRescans()
{
    ZTLibraryFixture f;
    const QString first = f.addTitled(QStringLiteral("abc one"));
    const QString later = f.addTitled(QStringLiteral("xyz two"));
    ZTViewPipeline p(f.document());
    p.controlTextDidChange(QStringLiteral("abc"));
    f.document().itemForOid(later)->setTitle(QStringLiteral("abd two"));
    p.itemsDidChange({later});
    p.controlTextDidChange(QStringLiteral("ab"));
    QCOMPARE(QSet<QString>(p.searchedItemOids().begin(), p.searchedItemOids().end()),
             (QSet<QString>{first, later}));
    QCOMPARE(p.controlTextDidChange(QString()), 0);
    QVERIFY(!p.usingSearch());
    QCOMPARE(p.baseOids().size(), 2);
}

// Each edit leaves the item's old text behind in the index until the index
// tidies up; every text must still be found, and only where it now stands.
void TestViewPipeline::manyEditsKeepTheIndexRight()
{
    ZTLibraryFixture f;
    const QString alpha = f.addTitled(QStringLiteral("alpha"));
    const QString beta = f.addTitled(QStringLiteral("beta"));
    const QString gamma = f.addTitled(QStringLiteral("gamma"));
    ZTViewPipeline p(f.document());
    p.controlTextDidChange(QStringLiteral("a"));
    for (int i = 0; i < 300; ++i) {
        const QString mark = QStringLiteral("q%1").arg(i, 4, 10, QLatin1Char('0'));
        f.document().itemForOid(beta)->setValueForKey(QString(80, QLatin1Char('w')) + mark,
                                                      QStringLiteral("notes"));
        p.itemsDidChange({beta});
        p.controlTextDidChange(QString());
        p.controlTextDidChange(mark);
        QCOMPARE(p.searchedItemOids(), QStringList{beta});
        if (i > 0) {
            p.controlTextDidChange(QString());
            p.controlTextDidChange(QStringLiteral("q%1").arg(i - 1, 4, 10, QLatin1Char('0')));
            QVERIFY(p.searchedItemOids().isEmpty());
        }
    }
    p.controlTextDidChange(QString());
    p.controlTextDidChange(QStringLiteral("alpha"));
    QCOMPARE(p.searchedItemOids(), QStringList{alpha});
    p.controlTextDidChange(QString());
    p.controlTextDidChange(QStringLiteral("gamm"));
    QCOMPARE(p.searchedItemOids(), QStringList{gamma});
}

void TestViewPipeline::searchIndexAgreesWithTheItems_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QVariantMap>("dictionary");
    const QVariantMap common{{"title", "Straße Title"},
                             {"genre", "GenreX"},
                             {"source", "SourceX"},
                             {"format", "FormatX"},
                             {"notes", "NotesX"},
                             {"condition", "CondX"},
                             {"productDescription", "DescX"},
                             {"location", "LocX"},
                             {"series", "SeriesX"},
                             {"keywords", QStringList{"kwa", "kwb"}}};
    auto with = [&](QVariantMap more) {
        for (auto it = common.constBegin(); it != common.constEnd(); ++it)
            more.insert(it.key(), it.value());
        return more;
    };
    QTest::newRow("book") << int(ZTMediaKind::Book)
                          << with({{"publisher", "PubX"},
                                   {"locClassification", "QA76"},
                                   {"isbn", "0306406152"},
                                   {"lccn", "2001012345"},
                                   {"authors", QStringList{"Ann Lee", "Bo Day"}},
                                   {"locSubjects", QStringList{"SubA", "SubB"}},
                                   {"placePublished", "NotSearched"}});
    QTest::newRow("album") << int(ZTMediaKind::Album)
                           << with({{"label", "LabelX"},
                                    {"upc", "012345678905"},
                                    {"asin", "B000ASIN"},
                                    {"artists", QStringList{"ArtA", "ArtB"}},
                                    {"tracks", QStringList{"TrA", "TrB"}}});
    QTest::newRow("movie") << int(ZTMediaKind::Movie)
                           << with({{"studio", "StudioX"},
                                    {"upc", "012345678905"},
                                    {"asin", "B000ASIN"},
                                    {"directors", QStringList{"DirA", "DirB"}},
                                    {"actorRoleDicts",
                                     QVariantList{QVariantMap{{"name", "ActA"}, {"role", "RoleA"}},
                                                  QVariantMap{{"name", "ActB"}, {"role", "RoleB"}}}}});
    QTest::newRow("comic")
        << int(ZTMediaKind::Comic)
        << with({{"gcdn", "12345"},
                 {"cbdbn", "678"},
                 {"isbn", "0306406152"},
                 {"upc", "012345678905"},
                 {"publisher", "PubX"},
                 {"stories", QStringList{"StA", "StB"}},
                 {"artistRoleDicts", QVariantList{QVariantMap{{"name", "ArtA"}, {"role", "pencils"}}}},
                 {"characterRoleDicts", QVariantList{QVariantMap{{"name", "ChA"}, {"role", "hero"}}}}});
}

void TestViewPipeline::searchIndexAgreesWithTheItems()
{
    QFETCH(int, kind);
    QFETCH(QVariantMap, dictionary);
    ZTLibraryFixture f{ZTMediaKind(kind)};
    ZTItem *item = f.add(dictionary);
    QVERIFY(item);
    // Every word of every value, pieces across list entries and across
    // attributes, and texts that are nowhere.
    QStringList needles{"STRASSE", "straße",      "kwa kwb", "a kwb",      "ann lee bo", "lee bo",
                        "rta art", "notsearched", "x genre", "titlegenre", "nothing",    "0306406152",
                        "role",    "dir",         "sta stb", "cha"};
    for (auto it = dictionary.constBegin(); it != dictionary.constEnd(); ++it)
        for (const QString &value : ZTItem::variantToStrings(it.value()))
            needles << value << value.mid(1, 3).toUpper();
    const QByteArray text = ZTSearchIndex::searchableText(*item).toUtf8();
    for (const QString &needle : std::as_const(needles))
        QVERIFY2(text.contains(ZTSearchIndex::foldedNeedle(needle.toLower())) ==
                     item->containsString(needle.toLower()),
                 qPrintable(needle));
}

void TestViewPipeline::textSearchAgreesWithAPlainSearch()
{
    // Texts and needles from a small alphabet, so that near misses are common:
    // the rare byte found where the rest does not fit, at either end, repeated,
    // and in the middle of a multi-byte character.
    const QStringList pieces{"a", "k", "ka", "ß", "é", "\x1F", "kaa", "q", " ", "1"};
    QRandomGenerator random(7);
    auto make = [&](int parts) {
        QString text;
        for (int i = 0; i < parts; ++i)
            text += pieces[random.bounded(int(pieces.size()))];
        return text.toUtf8();
    };
    int found = 0;
    for (int round = 0; round < 4000; ++round) {
        const QByteArray text = make(random.bounded(12));
        const QByteArray needle = make(1 + random.bounded(4));
        const bool expected = text.contains(needle);
        found += expected;
        QVERIFY2(
            ZTSearchIndex::findIn(text.constData(), text.size(), needle) == expected,
            qPrintable(QStringLiteral("%1 in %2").arg(QString::fromUtf8(needle), QString::fromUtf8(text))));
    }
    // Both answers came up often enough for the comparison to mean something.
    QVERIFY(found > 400 && found < 3600);
    QVERIFY(ZTSearchIndex::findIn("abc", 3, QByteArray()));
    QVERIFY(!ZTSearchIndex::findIn("ab", 2, "abc"));
}

void TestViewPipeline::resolvedItemsFollowTheLibrary()
{
    ZTLibraryFixture f;
    // Enough items for the table to keep the answer between calls.
    for (int i = 0; i < 100; ++i)
        f.addTitled(QStringLiteral("Book %1").arg(i));
    const QStringList oids = f.document().mainList()->itemOids();
    const ZTItemTable table(f.document());
    auto check = [&](const QStringList &list, const QSet<QString> &gone) {
        const ZTResolvedItems items = table.items(list);
        QCOMPARE(items.size(), list.size());
        for (qsizetype i = 0; i < list.size(); ++i) {
            if (gone.contains(list[i]))
                QVERIFY2(!items[i], qPrintable(list[i]));
            else
                QVERIFY2(items[i] && items[i]->oid() == list[i], qPrintable(list[i]));
        }
    };
    check(oids, {});
    check(oids, {}); // the kept answer
    // An item that leaves the library leaves the answer for the very same list.
    f.document().removeItemsFromLibrary({oids[5]});
    check(oids, {oids[5]});
    // A list changed in place is a new list, even while the old one is kept.
    QStringList changed = oids;
    changed[7] = QStringLiteral("no such oid");
    changed.move(0, 99);
    check(changed, {oids[5], QStringLiteral("no such oid")});
    // And an item that comes back with its oid is found again.
    ZTItem *added = f.add({{QStringLiteral("title"), QStringLiteral("New")}});
    QStringList withNew = changed;
    withNew[10] = added->oid();
    check(withNew, {oids[5], QStringLiteral("no such oid")});
    check(changed, {oids[5], QStringLiteral("no such oid")});
}

void TestViewPipeline::browserShowsTheSelectedListsValues()
{
    ZTLibraryFixture f;
    const QString a = f.addTitled(QStringLiteral("A"), {{QStringLiteral("genre"), QStringLiteral("Poetry")}});
    f.addTitled(QStringLiteral("B"), {{QStringLiteral("genre"), QStringLiteral("Drama")}});
    f.addList(QStringLiteral("Only A"), {a});
    ZTViewPipeline p(f.document());
    p.updateMainCaches();
    QCOMPARE(p.browserValues(QStringLiteral("Genre")),
             (QStringList{ZTViewPipeline::noneLabel(), QStringLiteral("Drama"), QStringLiteral("Poetry")}));
    p.selectListRow(1);
    QCOMPARE(p.browserValues(QStringLiteral("Genre")),
             (QStringList{ZTViewPipeline::noneLabel(), QStringLiteral("Poetry")}));
    // Completion still offers the whole library.
    QCOMPARE(p.cacheDictionary().value(QStringLiteral("genre")).toStringList(),
             (QStringList{QStringLiteral("Drama"), QStringLiteral("Poetry")}));
    QCOMPARE(p.browserValues(QStringLiteral("Signed")),
             (QStringList{ZTViewPipeline::yesLabel(), ZTViewPipeline::noLabel()}));
    // "Copies" forbids the none entry.
    QVERIFY(!p.browserValues(QStringLiteral("Copies")).contains(ZTViewPipeline::noneLabel()));
    QVERIFY(p.browserValues(QStringLiteral("No Such Filter")).isEmpty());
}

void TestViewPipeline::browserMatches_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QStringList>("titles");
    QTest::newRow("text") << "Genre"
                          << "Drama" << QStringList{"Two"};
    QTest::newRow("none wants blank text") << "Genre"
                                           << "<none>" << QStringList{"Three"};
    QTest::newRow("keyword among many") << "Keyword"
                                        << "sea" << QStringList{"One", "Two"};
    QTest::newRow("none wants an empty list") << "Keyword"
                                              << "<none>" << QStringList{"Three"};
    QTest::newRow("boolean yes") << "Signed"
                                 << "Yes" << QStringList{"Two"};
    QTest::newRow("boolean no") << "Signed"
                                << "No" << QStringList{"One", "Three"};
    QTest::newRow("integer compares numbers") << "Copies"
                                              << "3" << QStringList{"One"};
    QTest::newRow("rating zero is a value") << "Rating"
                                            << "0" << QStringList{"Three"};
    QTest::newRow("no value chosen") << "Genre"
                                     << "" << QStringList{};
}

void TestViewPipeline::browserMatches()
{
    QFETCH(QString, label);
    QFETCH(QString, value);
    QFETCH(QStringList, titles);
    ZTLibraryFixture f;
    f.addTitled(QStringLiteral("Three"), {{QStringLiteral("genre"), QStringLiteral("  ")}});
    f.addTitled(QStringLiteral("Two"), {{QStringLiteral("genre"), QStringLiteral("Drama")},
                                        {QStringLiteral("keywords"), QStringList{QStringLiteral("sea")}},
                                        {QStringLiteral("signedFlag"), true},
                                        {QStringLiteral("rating"), 4}});
    f.addTitled(QStringLiteral("One"),
                {{QStringLiteral("genre"), QStringLiteral("Poetry")},
                 {QStringLiteral("keywords"), QStringList{QStringLiteral("sky"), QStringLiteral("sea")}},
                 {QStringLiteral("copies"), 3},
                 {QStringLiteral("rating"), 2}});
    ZTViewPipeline p(f.document());
    p.setTab(ZTViewPipeline::Tab::Filter);
    p.itemBrowserChanged({label, value == QLatin1String("<none>") ? ZTViewPipeline::noneLabel() : value});
    QStringList found = f.titlesOf(p.displayedOids());
    found.sort();
    QCOMPARE(found, titles);
}

void TestViewPipeline::filterCountsFollowColumnOrder()
{
    ZTLibraryFixture f;
    f.addTitled(QStringLiteral("1"), {{QStringLiteral("genre"), QStringLiteral("Drama")}});
    f.addTitled(QStringLiteral("2"), {{QStringLiteral("genre"), QStringLiteral("Drama")}});
    f.addTitled(QStringLiteral("3"), {{QStringLiteral("genre"), QStringLiteral("art")}});
    f.addTitled(QStringLiteral("4"));
    ZTViewPipeline p(f.document());
    p.updateMainCaches();
    p.itemBrowserChanged(QStringLiteral("Genre"), QStringLiteral("Drama"));
    const QVariantMap counts = p.filterCountDictionary();
    // <none> first, then "art" before "Drama": the order ignores case.
    QCOMPARE(counts.value(QStringLiteral("counts")).toList(), (QVariantList{1, 1, 2}));
    QCOMPARE(counts.value(QStringLiteral("max")).toInt(), 2);
    QCOMPARE(counts.value(QStringLiteral("average")).toDouble(), 4.0 / 3.0);
}

void TestViewPipeline::statisticsLine_data()
{
    QTest::addColumn<QVariantMap>("display");
    QTest::addColumn<QString>("expected");
    const QVariantMap all = ZTItemStatistics::defaultStatisticsDisplayDictionary();
    QTest::newRow("all parts") << all
                               << "3 books, 1,250 pages, total value: €2,50 + $15.50, amount paid: $4.00";
    QVariantMap countOnly{{"itemCount", 1}};
    QTest::newRow("count only") << countOnly << "3 books";
    QVariantMap paidOnly{{"totalPaid", 1}};
    QTest::newRow("paid only") << paidOnly << "amount paid: $4.00";
}

void TestViewPipeline::statisticsLine()
{
    QFETCH(QVariantMap, display);
    QFETCH(QString, expected);
    ZTLibraryFixture f;
    f.addTitled(QStringLiteral("A"), {{QStringLiteral("pages"), 1000},
                                      {QStringLiteral("price"), 10.25},
                                      {QStringLiteral("priceLocale"), QStringLiteral("USD")},
                                      {QStringLiteral("pricePaid"), 4.0},
                                      {QStringLiteral("pricePaidLocale"), QStringLiteral("USD")}});
    f.addTitled(QStringLiteral("B"), {{QStringLiteral("pages"), 250},
                                      {QStringLiteral("price"), 5.25},
                                      {QStringLiteral("priceLocale"), QStringLiteral("USD")}});
    f.addTitled(QStringLiteral("C"),
                {{QStringLiteral("price"), 2.5}, {QStringLiteral("priceLocale"), QStringLiteral("EUR")}});
    ZTViewPipeline p(f.document());
    p.setStatisticsDisplayDictionary(display);
    p.updateItemStatistics();
    QCOMPARE(p.itemStatisticsString(), expected);
    QCOMPARE(p.totalItemCount(), 3);
}

void TestViewPipeline::displayTextForInt_data()
{
    QTest::addColumn<qint64>("value");
    QTest::addColumn<QString>("expected");
    QTest::newRow("zero is plural") << qint64(0) << "0 books";
    QTest::newRow("one is singular") << qint64(1) << "1 book";
    QTest::newRow("grouped") << qint64(1234567) << "1,234,567 books";
    QTest::newRow("negative shows no sign") << qint64(-1) << "1 books";
}

void TestViewPipeline::displayTextForInt()
{
    QFETCH(qint64, value);
    QFETCH(QString, expected);
    QCOMPARE(ZTItemStatistics::displayTextForInt(value, QStringLiteral("book"), QStringLiteral("books")),
             expected);
}

void TestViewPipeline::sortNilOrdering_data()
{
    QTest::addColumn<bool>("ascending");
    QTest::addColumn<QStringList>("titles");
    QTest::newRow("ascending: nil first, case ignored") << true << QStringList{"none", "a", "B", "c"};
    QTest::newRow("descending: nil last") << false << QStringList{"c", "B", "a", "none"};
}

void TestViewPipeline::sortNilOrdering()
{
    QFETCH(bool, ascending);
    QFETCH(QStringList, titles);
    ZTLibraryFixture f;
    f.addTitled(QStringLiteral("B"), {{QStringLiteral("genre"), QStringLiteral("B")}});
    f.addTitled(QStringLiteral("none"));
    f.addTitled(QStringLiteral("c"), {{QStringLiteral("genre"), QStringLiteral("c")}});
    f.addTitled(QStringLiteral("a"), {{QStringLiteral("genre"), QStringLiteral("a")}});
    ZTViewPipeline p(f.document());
    p.setSortEntries({{QStringLiteral("genre"), ascending, 0}});
    QCOMPARE(f.titlesOf(p.displayedOids()), titles);
}

// A long list is keyed in two halves; the order must be the one the plain
// comparison gives, across the seam, with repeated texts sharing keys.
void TestViewPipeline::longListsSortAsShortOnes()
{
    ZTLibraryFixture f;
    const QStringList genres{"Mystery", "drama", "Ärger", "poetry", "Zoology"};
    constexpr int count = 24000;
    for (int i = 0; i < count; ++i) {
        QVariantMap more;
        if (i % 17 != 0)
            more.insert(QStringLiteral("genre"), genres[(i * 7) % genres.size()]);
        // Titles alike in their first words: their keys differ only past the first bytes.
        f.addTitled(QStringLiteral("Collected Works, Volume %1").arg((i * 7919) % count), more);
    }
    QStringList oids = f.document().mainList()->itemOids();
    ZTItemSorting::sortOids(f.document(), oids,
                            {{QStringLiteral("genre"), true, 0}, {QStringLiteral("title"), false, 1}});
    QCOMPARE(oids.size(), count);
    for (int i = 1; i < oids.size(); ++i) {
        const ZTItem *a = f.document().itemForOid(oids[i - 1]);
        const ZTItem *b = f.document().itemForOid(oids[i]);
        const QVariant genreA = a->valueForKey(QStringLiteral("genre"));
        const QVariant genreB = b->valueForKey(QStringLiteral("genre"));
        // Items without a genre come first, then genres in collation order,
        // then titles from the last.
        const int byGenre = !genreA.isValid()   ? (genreB.isValid() ? -1 : 0)
                            : !genreB.isValid() ? 1
                                                : ZTTextOrder::compare(genreA.toString(), genreB.toString());
        QVERIFY2(byGenre <= 0, qPrintable(QStringLiteral("row %1").arg(i)));
        if (byGenre == 0)
            QVERIFY2(ZTTextOrder::compare(a->title(), b->title()) >= 0,
                     qPrintable(QStringLiteral("row %1").arg(i)));
    }
}

void TestViewPipeline::sortKeysOrderAsTextsCompare()
{
    const QStringList texts{"",
                            "a",
                            "A",
                            "ab",
                            "abc",
                            "ABC ",
                            "résumé",
                            "resume",
                            "Resume",
                            "re-sume",
                            "re sume",
                            "10",
                            "9",
                            "Zoë",
                            "zoe",
                            "Ärger",
                            "Arg",
                            "Ωmega",
                            "Collected Works, Volume 2",
                            "collected works, volume 10",
                            "Collected Works, Volume 2a",
                            "Collected Works",
                            "!"};
    for (const QString &a : texts)
        for (const QString &b : texts) {
            const QByteArray keyA = ZTTextOrder::sortKey(a);
            const QByteArray keyB = ZTTextOrder::sortKey(b);
            QVERIFY(!keyA.contains('\0'));
            const int byKeys = std::clamp(std::strcmp(keyA.constData(), keyB.constData()), -1, 1);
            QVERIFY2(byKeys == ZTTextOrder::compare(a, b), qPrintable(a + QStringLiteral(" / ") + b));
        }
    // Blind to case, not to accents.
    QCOMPARE(ZTTextOrder::compare(QStringLiteral("Resume"), QStringLiteral("resume")), 0);
    QVERIFY(ZTTextOrder::compare(QStringLiteral("résumé"), QStringLiteral("resume")) != 0);
    QCOMPARE(ZTTextOrder::compare(QStringLiteral("apple"), QStringLiteral("Banana")), -1);
    // Keys laid end to end in one buffer are each followed by their zero.
    QByteArray buffer;
    const qsizetype first = ZTTextOrder::appendSortKey(QStringLiteral("Mango"), buffer);
    ZTTextOrder::appendSortKey(QStringLiteral("apple"), buffer);
    QCOMPARE(buffer.size(), first + 1 + ZTTextOrder::sortKey(QStringLiteral("apple")).size() + 1);
    QCOMPARE(QByteArray(buffer.constData()), ZTTextOrder::sortKey(QStringLiteral("Mango")));

    // A sort by those texts, short keys among long ones, agrees with the comparison.
    ZTLibraryFixture f;
    for (const QString &text : texts)
        f.addTitled(QStringLiteral("x"), {{QStringLiteral("genre"), text}});
    QStringList oids = f.document().mainList()->itemOids();
    ZTItemSorting::sortOids(f.document(), oids, {{QStringLiteral("genre"), true, 0}});
    for (int i = 1; i < oids.size(); ++i) {
        const QString a =
            f.document().itemForOid(oids[i - 1])->valueForKey(QStringLiteral("genre")).toString();
        const QString b = f.document().itemForOid(oids[i])->valueForKey(QStringLiteral("genre")).toString();
        QVERIFY2(ZTTextOrder::compare(a, b) <= 0, qPrintable(a + QStringLiteral(" / ") + b));
    }
}

void TestViewPipeline::controlClickJoinsTheSort()
{
    ZTLibraryFixture f;
    f.addTitled(QStringLiteral("x2"),
                {{QStringLiteral("genre"), QStringLiteral("G")}, {QStringLiteral("rating"), 2}});
    f.addTitled(QStringLiteral("y1"),
                {{QStringLiteral("genre"), QStringLiteral("F")}, {QStringLiteral("rating"), 1}});
    f.addTitled(QStringLiteral("x5"),
                {{QStringLiteral("genre"), QStringLiteral("G")}, {QStringLiteral("rating"), 5}});
    ZTViewPipeline p(f.document());
    QVERIFY(p.didClickTableColumn(QStringLiteral("genre"), 0, false));
    QVERIFY(p.didClickTableColumn(QStringLiteral("rating"), 1, true));
    QVERIFY(p.didClickTableColumn(QStringLiteral("rating"), 1, true)); // flips to descending
    QCOMPARE(p.currentSortedColumnDictArray().size(), 2);
    QCOMPARE(p.currentSortedColumnDictArray().at(1).sortOrdering(), QStringLiteral("descending"));
    QCOMPARE(f.titlesOf(p.displayedOids()), (QStringList{"y1", "x5", "x2"}));
    // The title column sorts by its own sort key, and a plain click drops the others.
    QVERIFY(p.didClickTableColumn(QStringLiteral("title"), 2, false));
    QCOMPARE(p.currentSortedColumnDictArray().size(), 1);
    QCOMPARE(p.currentSortedColumnDictArray().first().columnIdentifier,
             QStringLiteral("titleWithoutLeadingArticle"));
    // Press in one column, release in another: no click.
    QVERIFY(!p.didClickTableColumn(QStringLiteral("genre"), 0, false, QStringLiteral("title")));
}

void TestViewPipeline::coverHeaderChangesNothing()
{
    ZTLibraryFixture f;
    f.addTitled(QStringLiteral("b"));
    f.addTitled(QStringLiteral("a"));
    f.document().documentDidOpen();
    ZTViewPipeline p(f.document());
    const QStringList before = p.displayedOids();
    QVERIFY(!p.didClickTableColumn(QStringLiteral("cover"), 0, false));
    QCOMPARE(p.displayedOids(), before);
    QVERIFY(p.currentSortedColumnDictArray().isEmpty());
    QVERIFY(!f.document().isDocumentEdited());
}

void TestViewPipeline::sortingASearchDoesNotChangeTheLibrary()
{
    ZTLibraryFixture f;
    f.addTitled(QStringLiteral("match b"));
    f.addTitled(QStringLiteral("match a"));
    f.addTitled(QStringLiteral("other"));
    f.document().documentDidOpen();
    const QStringList stored = f.document().mainList()->itemOids();
    ZTViewPipeline p(f.document());
    p.controlTextDidChange(QStringLiteral("match"));
    p.didClickTableColumn(QStringLiteral("title"), 0, false);
    p.didClickTableColumn(QStringLiteral("title"), 0, false); // descending
    QCOMPARE(f.titlesOf(p.searchedItemOids()), (QStringList{"match b", "match a"}));
    QCOMPARE(f.document().mainList()->itemOids(), stored);
    QVERIFY(!f.document().isDocumentEdited());
}

void TestViewPipeline::sortingAListIsStored()
{
    ZTLibraryFixture f;
    f.addTitled(QStringLiteral("The Zebra"));
    f.addTitled(QStringLiteral("Apple"));
    f.addTitled(QStringLiteral("A Mango"));
    f.document().documentDidOpen();
    ZTViewPipeline p(f.document());
    p.didClickTableColumn(QStringLiteral("title"), 0, false);
    // Leading articles do not count.
    QCOMPARE(f.titlesOf(f.document().mainList()->itemOids()), (QStringList{"Apple", "A Mango", "The Zebra"}));
    QVERIFY(f.document().isDocumentEdited());

    // Sorting a list that is already in order asks no save.
    QString error;
    QVERIFY2(f.document().saveDocument(&error), qPrintable(error));
    QVERIFY(!f.document().isDocumentEdited());
    p.sortDisplayedOids();
    QVERIFY(!f.document().isDocumentEdited());
    p.didClickTableColumn(QStringLiteral("title"), 0, false); // descending: a real change
    QCOMPARE(f.titlesOf(f.document().mainList()->itemOids()), (QStringList{"The Zebra", "A Mango", "Apple"}));
    QVERIFY(f.document().isDocumentEdited());
}

void TestViewPipeline::listTableTypeAhead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("row");
    QTest::newRow("a list") << "fav" << 2;
    QTest::newRow("the library") << "lib" << 0;
    QTest::newRow("between names") << "c" << 2;
    QTest::newRow("past the last") << "zzz" << 1;
    QTest::newRow("empty text") << "" << -1;
}

void TestViewPipeline::listTableTypeAhead()
{
    QFETCH(QString, text);
    QFETCH(int, row);
    ZTLibraryFixture f;
    f.addList(QStringLiteral("To Read"), {});
    f.addList(QStringLiteral("Favourites"), {});
    ZTViewPipeline p(f.document());
    QCOMPARE(p.listTableTypeAhead(text), row);
}

void TestViewPipeline::listTypeAheadWithoutListsFallsThrough()
{
    ZTLibraryFixture f;
    f.addTitled(QStringLiteral("Alpha"));
    ZTViewPipeline p(f.document());
    QCOMPARE(p.listTableTypeAhead(QStringLiteral("a")), -1);
}

void TestViewPipeline::itemTypeAhead()
{
    ZTLibraryFixture f;
    f.addTitled(QStringLiteral("Cherry"));
    f.addTitled(QStringLiteral("The Banana"));
    f.addTitled(QStringLiteral("apple"));
    ZTViewPipeline p(f.document());
    QCOMPARE(p.itemTableTypeAhead(QStringLiteral("b")), -1); // no sort, no type-ahead
    p.didClickTableColumn(QStringLiteral("title"), 0, false);
    QCOMPARE(f.titleOf(p.displayedOids().at(p.itemTableTypeAhead(QStringLiteral("ban")))),
             QStringLiteral("The Banana"));
    QCOMPARE(p.itemTableTypeAhead(QStringLiteral("zzz")), 2);
    p.didClickTableColumn(QStringLiteral("title"), 0, false); // descending
    QCOMPARE(f.titleOf(p.displayedOids().at(p.itemTableTypeAhead(QStringLiteral("bz")))),
             QStringLiteral("The Banana"));
    QCOMPARE(
        ZTViewPipeline::stringsTypeAhead({QStringLiteral("a"), QStringLiteral("m")}, QStringLiteral("k")), 1);
}

void TestViewPipeline::listHeaderCyclesFourOrders()
{
    ZTLibraryFixture f;
    const QString x = f.addTitled(QStringLiteral("x"));
    const QString y = f.addTitled(QStringLiteral("y"));
    f.addList(QStringLiteral("beta"), {x});
    f.addList(QStringLiteral("Alpha"), {x, y});
    f.addList(QStringLiteral("gamma"), {});
    ZTViewPipeline p(f.document());
    auto names = [&] {
        QStringList n;
        for (ZTList *l : f.document().itemLists())
            n << l->name() + QLatin1Char(':') + QString::number(l->order());
        return n;
    };
    p.clickListTableHeader();
    QCOMPARE(names(), (QStringList{"Alpha:0", "beta:1", "gamma:2"}));
    p.clickListTableHeader();
    QCOMPARE(names(), (QStringList{"gamma:0", "beta:1", "Alpha:2"}));
    p.clickListTableHeader();
    QCOMPARE(names(), (QStringList{"gamma:0", "beta:1", "Alpha:2"}));
    p.clickListTableHeader();
    QCOMPARE(names(), (QStringList{"Alpha:0", "beta:1", "gamma:2"}));
    QCOMPARE(p.listSortFlag(), 3);
}

void TestViewPipeline::nextAndPreviousFollowTheView()
{
    ZTLibraryFixture f;
    const QString a = f.addTitled(QStringLiteral("a"));
    const QString b = f.addTitled(QStringLiteral("b"));
    ZTViewPipeline p(f.document());
    QCOMPARE(p.nextOid(b), a);
    QCOMPARE(p.nextOid(a), QString());
    QCOMPARE(p.previousOid(a), b);
    QCOMPARE(p.previousOid(b), QString());
    QCOMPARE(p.nextOid(QStringLiteral("absent")), QString());
}

ZT_TEST_MAIN(TestViewPipeline)
#include "tst_viewpipeline.moc"
