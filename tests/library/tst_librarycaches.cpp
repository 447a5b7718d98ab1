#include "library/ZTAttributeTables.h"
#include "library/ZTLibraryCaches.h"
#include "library/ZTViewPipeline.h"
#include "library/lists/ZTListFilter.h"

#include "ZTLibraryFixture.h"

#include "lists/ZTList.h"
#include "lists/ZTListTally.h"
#include "model/ZTSharedRows.h"
#include "support/ZTTestMain.h"

#include <QtTest>

class TestLibraryCaches : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void valuesCountsAndTags();
    void subCachesKeepNoPeople();
    void blankRules_data();
    void blankRules();
    void numbersSortByValue();
    void personNameJoinsContactsAndBorrowers();
    void subListCachesOnlyTheirItems();
    void listCountsAgreeWithEachItemsValues_data();
    void listCountsAgreeWithEachItemsValues();
};

void TestLibraryCaches::valuesCountsAndTags()
{
    ZTLibraryFixture f;
    auto add = [&](const QString &genre, int rating, bool signedFlag) {
        QVariantMap d{{QStringLiteral("title"), QStringLiteral("x")},
                      {QStringLiteral("rating"), rating},
                      {QStringLiteral("signedFlag"), signedFlag}};
        if (!genre.isNull())
            d.insert(QStringLiteral("genre"), genre);
        f.add(d);
    };
    for (int i = 0; i < 5; ++i)
        add(QStringLiteral("Drama"), 0, false);
    add(QStringLiteral("art"), 3, false);
    add(QStringLiteral("art"), 0, false);
    add(QString(), 3, false);
    ZTViewPipeline p(f.document());
    p.updateMainCaches();
    const ZTLibraryCaches &caches = p.mainCaches();
    QCOMPARE(caches.stringValues(QStringLiteral("genre")), (QStringList{"art", "Drama"}));
    QCOMPARE(caches.count(QStringLiteral("genre"), QStringLiteral("Drama")), 5);
    QCOMPARE(caches.count(QStringLiteral("genre"), QStringLiteral("art")), 2);
    QCOMPARE(caches.count(QStringLiteral("genre"), QStringLiteral("Poetry")), 0);
    QCOMPARE(caches.count(QStringLiteral("genre"), ZTCacheKey::emptyTag), 1);
    QCOMPARE(caches.count(QStringLiteral("rating"), QStringLiteral("0")), 6);
    // Booleans always show both tags; a value no item has counts 0.
    QCOMPARE(caches.stringValues(QStringLiteral("isSigned")), (QStringList{"Yes", "No"}));
    QCOMPARE(caches.count(QStringLiteral("isSigned"), QStringLiteral("Yes")), 0);
    QCOMPARE(caches.count(QStringLiteral("isSigned"), QStringLiteral("No")), 8);
    QVERIFY(caches.values(QStringLiteral("keywords")).isEmpty());

    const QVariantList tags = caches.tagDictionary().value(QStringLiteral("genre")).toList();
    QCOMPARE(tags.size(), 2); // the blank tag is counted apart, not listed
    QCOMPARE(tags.at(1).toMap().value(ZTCacheKey::tag).toString(), QStringLiteral("Drama"));
    QCOMPARE(tags.at(1).toMap().value(ZTCacheKey::tagCount).toInt(), 5);
    const QVariantMap counts =
        caches.cacheDictionary().value(ZTCacheKey::count).toMap().value(QStringLiteral("genre")).toMap();
    QCOMPARE(counts, (QVariantMap{{"art", 2}, {"Drama", 5}, {ZTCacheKey::emptyTag, 1}}));
    QCOMPARE(caches.tagDictionary().value(ZTCacheKey::count).toMap().value(QStringLiteral("genre")).toMap(),
             counts);
    QCOMPARE(caches.values(QStringLiteral("rating")), (QVariantList{"0", "3"}));
}

void TestLibraryCaches::subCachesKeepNoPeople()
{
    ZTLibraryFixture f;
    ZTItem *a = f.add({{QStringLiteral("title"), QStringLiteral("a")},
                       {QStringLiteral("lentToName"), QStringLiteral("Ann Lee")}});
    f.addList(QStringLiteral("L"), {a->oid()});
    ZTViewPipeline p(f.document());
    p.updateMainCaches();
    p.selectListRow(1);
    QCOMPARE(p.mainCaches().cacheDictionary().value(ZTCacheKey::personName).toStringList(),
             QStringList{"Ann Lee"});
    QVERIFY(!p.subCaches().cacheDictionary().contains(ZTCacheKey::personName));
    QVERIFY(p.subCaches().cacheDictionary().contains(QStringLiteral("genre")));
    QVERIFY(p.subCaches().cacheDictionary().contains(ZTCacheKey::count));
}

void TestLibraryCaches::blankRules_data()
{
    QTest::addColumn<QVariantMap>("dictionary");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("count");
    QTest::newRow("empty keywords count once as blank")
        << QVariantMap{{"keywords", QStringList{}}} << "keywords" << ZTCacheKey::emptyTag << 1;
    QTest::newRow("two equal keywords count once")
        << QVariantMap{{"keywords", QStringList{"sea", "sea"}}} << "keywords"
        << "sea" << 1;
    QTest::newRow("white space is blank")
        << QVariantMap{{"genre", " \t"}} << "genre" << ZTCacheKey::emptyTag << 1;
    QTest::newRow("a rating of 0 is a value") << QVariantMap{{"rating", 0}} << "rating"
                                              << "0" << 1;
    QTest::newRow("no rating given is still 0") << QVariantMap{} << "rating"
                                                << "0" << 1;
    QTest::newRow("false counts as No") << QVariantMap{{"signedFlag", false}} << "isSigned"
                                        << "No" << 1;
    QTest::newRow("true counts as Yes") << QVariantMap{{"signedFlag", true}} << "isSigned"
                                        << "Yes" << 1;
    QTest::newRow("missing year is blank") << QVariantMap{} << "year" << ZTCacheKey::emptyTag << 1;
}

void TestLibraryCaches::blankRules()
{
    QFETCH(QVariantMap, dictionary);
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(int, count);
    ZTLibraryFixture f;
    dictionary.insert(QStringLiteral("title"), QStringLiteral("x"));
    f.add(dictionary);
    ZTViewPipeline p(f.document());
    p.updateMainCaches();
    QCOMPARE(p.mainCaches().count(key, value), count);
    QVERIFY(!p.mainCaches().stringValues(key).contains(ZTCacheKey::emptyTag));
}

void TestLibraryCaches::numbersSortByValue()
{
    ZTLibraryFixture f;
    for (int copies : {10, 9, 100})
        f.add({{QStringLiteral("title"), QStringLiteral("x")}, {QStringLiteral("copies"), copies}});
    ZTViewPipeline p(f.document());
    p.updateMainCaches();
    QCOMPARE(p.mainCaches().stringValues(QStringLiteral("copies")), (QStringList{"9", "10", "100"}));
}

void TestLibraryCaches::personNameJoinsContactsAndBorrowers()
{
    ZTLibraryFixture f;
    f.add({{QStringLiteral("title"), QStringLiteral("x")},
           {QStringLiteral("lentToName"), QStringLiteral("bo Day")}});
    f.add({{QStringLiteral("title"), QStringLiteral("y")},
           {QStringLiteral("lentToName"), QStringLiteral("Ann Lee")},
           {QStringLiteral("language"), QStringLiteral("French")},
           {QStringLiteral("originalLanguage"), QStringLiteral("German")}});
    ZTViewPipeline p(f.document());
    p.updateMainCaches();
    const QVariantMap &caches = p.mainCaches().cacheDictionary();
    QCOMPARE(caches.value(ZTCacheKey::personName).toStringList(), (QStringList{"Ann Lee", "bo Day"}));
    QCOMPARE(caches.value(ZTCacheKey::allLanguages).toStringList(), (QStringList{"French", "German"}));
    // The address book's names join the borrowers, each once.
    const QVariantMap filter = ZTListFilter::filterDictionaryFromDocument(
        *f.document().mainList(), f.document(), {QStringLiteral("Cy Twombly"), QStringLiteral("Ann Lee")});
    QCOMPARE(filter.value(ZTCacheKey::personName).toStringList(),
             (QStringList{"Ann Lee", "bo Day", "Cy Twombly"}));
}

void TestLibraryCaches::subListCachesOnlyTheirItems()
{
    ZTLibraryFixture f;
    ZTItem *a = f.add({{QStringLiteral("title"), QStringLiteral("a")},
                       {QStringLiteral("genre"), QStringLiteral("Poetry")}});
    f.add(
        {{QStringLiteral("title"), QStringLiteral("b")}, {QStringLiteral("genre"), QStringLiteral("Drama")}});
    f.addList(QStringLiteral("L"), {a->oid()});
    ZTViewPipeline p(f.document());
    p.updateMainCaches();
    p.selectListRow(1);
    QCOMPARE(p.subCaches().stringValues(QStringLiteral("genre")), QStringList{"Poetry"});
    QCOMPARE(p.mainCaches().stringValues(QStringLiteral("genre")), (QStringList{"Drama", "Poetry"}));
    QCOMPARE(&p.baseTagDictionary(), &p.subCaches().tagDictionary());
    p.selectListRow(0);
    QVERIFY(p.subCaches().stringValues(QStringLiteral("genre")).isEmpty());
}

void TestLibraryCaches::listCountsAgreeWithEachItemsValues_data()
{
    QTest::addColumn<ZTMediaKind>("kind");
    QTest::addColumn<QVariantMap>("names");
    const QVariantList roles{
        QVariantMap{{"name", "Ann Lee"}, {"role", "Editor"}}, QVariantMap{{"name", "blank-me"}, {"role", ""}},
        QVariantMap{{"name", "drop-me"}, {"role", ""}}, QVariantMap{{"name", "Ann Lee"}, {"role", "Editor"}}};
    QTest::newRow("books") << ZTMediaKind::Book
                           << QVariantMap{{"authorRoleDicts", roles}, {"locSubjects", QStringList{"Sea"}}};
    QTest::newRow("albums") << ZTMediaKind::Album << QVariantMap{{"artists", QStringList{"Nico"}}};
    QTest::newRow("comics") << ZTMediaKind::Comic
                            << QVariantMap{{"characterRoleDicts", roles}, {"stories", QStringList{"Origin"}}};
    QTest::newRow("movies") << ZTMediaKind::Movie << QVariantMap{{"directors", QStringList{"Vigo"}}};
}

void TestLibraryCaches::listCountsAgreeWithEachItemsValues()
{
    // The lists of names that items share rows for are counted row by row;
    // what the caches say must be what each item's own list says, with rows
    // that lost their name or left the library among them.
    QFETCH(ZTMediaKind, kind);
    QFETCH(QVariantMap, names);
    ZTLibraryFixture f(kind);
    const QList<QStringList> keywordSets{{"sea", "sky"},     {"sea", "sea"},     {},
                                         {"blank-me"},       {"drop-me"},        {"blank-me", "sky"},
                                         {"drop-me", "sky"}, {"sky", "drop-me"}, {"Sea"}};
    for (const QStringList &keywords : keywordSets) {
        QVariantMap d = names;
        d.insert(QStringLiteral("title"), QStringLiteral("x"));
        d.insert(QStringLiteral("keywords"), keywords);
        f.add(d);
    }
    f.add({{QStringLiteral("title"), QStringLiteral("none")}});
    ZTManagedObjectContext *context = f.document().managedObjectContext();
    const QHash<QString, QHash<QString, ZTManagedObject *>> tables = context->oidObjectDictionary();
    for (auto table = tables.cbegin(); table != tables.cend(); ++table)
        for (ZTManagedObject *row : *table) {
            if (row->primitiveValueForKey(QStringLiteral("name")) == QStringLiteral("blank-me"))
                row->setPrimitiveValueForKey(QStringLiteral("  "), QStringLiteral("name"));
            if (row->primitiveValueForKey(QStringLiteral("name")) == QStringLiteral("drop-me"))
                context->removeOidObject(table.key(), table.value().key(row));
        }
    for (const ZTRoleEntity &roles : {ZTRoleEntities::author, ZTRoleEntities::character})
        for (ZTManagedObject *row : tables.value(QLatin1String(roles.roleEntity))) {
            const ZTManagedObject *person = row->toOneForKey(QLatin1String(roles.personKey));
            if (person && person->primitiveValueForKey(QStringLiteral("name")) == QStringLiteral("drop-me"))
                context->removeOidObject(QLatin1String(roles.roleEntity), row->oid());
        }

    const ZTListTally tally =
        ZTListFilter::tallyFromDocument(*f.document().mainList(), f.document(), {}, true);
    const QStringList keys = f.document().attributeTables().cacheableAttributesDictionary().array;
    QVERIFY(keys.contains(QStringLiteral("keywords")));
    for (const QString &key : keys) {
        QMap<QString, qsizetype> counts;
        QStringList blankOids;
        for (ZTItem *item : f.document().allItems()) {
            const QStringList values = ZTItem::variantToStrings(item->valueForKey(key));
            bool blank = values.isEmpty();
            QSet<QString> seen;
            for (const QString &value : values) {
                if (value.trimmed().isEmpty())
                    blank = true;
                else if (!seen.contains(value))
                    seen.insert(value), ++counts[value];
            }
            if (blank)
                blankOids << item->oid();
        }
        const ZTValueTally *column = tally.column(key);
        QVERIFY2(column, qPrintable(key));
        QCOMPARE(QSet<QString>(column->values.cbegin(), column->values.cend()),
                 QSet<QString>(counts.keyBegin(), counts.keyEnd()));
        for (qsizetype i = 0; i < column->values.size(); ++i)
            QCOMPARE(column->counts[size_t(i)], counts.value(column->values[i]));
        QCOMPARE(QSet<QString>(column->blankOids.cbegin(), column->blankOids.cend()),
                 QSet<QString>(blankOids.cbegin(), blankOids.cend()));
        QCOMPARE(column->blankCount, blankOids.size());
    }
    // The keywords as the sets above make them: a lost row leaves its item
    // blank only when nothing else is left, a nameless row makes it blank.
    const ZTValueTally *keywords = tally.column(QStringLiteral("keywords"));
    QCOMPARE(keywords->count(QStringLiteral("sky")), 4);
    QCOMPARE(keywords->count(QStringLiteral("sea")), 2);
    QCOMPARE(keywords->count(QStringLiteral("Sea")), 1);
    QCOMPARE(keywords->blankCount, 5);
}

ZT_TEST_MAIN(TestLibraryCaches)
#include "tst_librarycaches.moc"
