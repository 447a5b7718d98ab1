#include "lookup/sites/ZTSiteRegistry.h"

#include "base/ZTSettings.h"
#include "lookup/ZTFetcher.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QTest>

class TestSiteRegistry : public QObject {
    Q_OBJECT

private slots:
    void everyBuiltClassAnswersItsRow_data();
    void everyBuiltClassAnswersItsRow();
    void tableHasEveryIdentifier();
    void allShopSitesShareOneType();
    void defaultsAndUpdatingLocales();
    void activeRowsBecomeNumberedFetchers();
    void storedListWinsOverDefaults();
    void attributeArrayHidesVariantsAndSorts();
};

void TestSiteRegistry::everyBuiltClassAnswersItsRow_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("books") << int(ZTMediaKind::Book);
    QTest::newRow("music") << int(ZTMediaKind::Album);
    QTest::newRow("movies") << int(ZTMediaKind::Movie);
    QTest::newRow("comics") << int(ZTMediaKind::Comic);
}

void TestSiteRegistry::everyBuiltClassAnswersItsRow()
{
    QFETCH(int, kind);
    for (const ZTSiteRegistry::Site &site : ZTSiteRegistry::sites(ZTMediaKind(kind))) {
        const auto fetcher = ZTSiteRegistry::createFetcher(site.className);
        QCOMPARE(bool(fetcher), site.create != nullptr);
        if (!fetcher)
            continue;
        QCOMPARE(fetcher->className(), site.className);
        QCOMPARE(fetcher->name(), site.name);
        QCOMPARE(fetcher->locale(), site.locale);
        QCOMPARE(fetcher->type(), site.type);
        QVERIFY(!fetcher->fetchableKeys().isEmpty());
    }
}

void TestSiteRegistry::tableHasEveryIdentifier()
{
    const auto books = ZTSiteRegistry::fetcherDictionary(ZTMediaKind::Book);
    QCOMPARE(books.size(), 28);
    QCOMPARE(books.value("Books_JP_NationalDietLibrary"), QString("ZTFetcherBooksNationalDietLibrary_JP"));
    QCOMPARE(books.value("Books_UK_Amazon"), QString("ZTFetcherBooksAmazonUK"));
    QCOMPARE(ZTSiteRegistry::fetcherDictionary(ZTMediaKind::Album).value("Music_IT_InternetBookshop"),
             QString("ZTFetcherAlbumsInternetBookshop_IT"));
    QCOMPARE(ZTSiteRegistry::fetcherDictionary(ZTMediaKind::Movie).size(), 11);
    QCOMPARE(ZTSiteRegistry::fetcherDictionary(ZTMediaKind::Comic).value("Comics_US_GCD"),
             QString("ZTFetcherComicsGCD_US"));
    const auto sites = ZTSiteRegistry::sites(ZTMediaKind::Book);
    QCOMPARE(sites.first().preferencesName, QString("Amazon U.S."));
    QCOMPARE(sites.at(1).locale, QString("GB"));
    QCOMPARE(sites.at(8).preferencesName, QString("Library of Congress"));
}

void TestSiteRegistry::allShopSitesShareOneType()
{
    QSet<QString> shopTypes;
    QSet<QString> otherTypes;
    for (ZTMediaKind kind : ZTMediaKinds::all)
        for (const auto &site : ZTSiteRegistry::sites(kind))
            (site.identifier.endsWith("_Amazon") ? shopTypes : otherTypes).insert(site.type);
    QCOMPARE(shopTypes.size(), 1);
    QVERIFY(!otherTypes.contains(*shopTypes.begin()));
    // The same shop has the same type in every kind.
    QCOMPARE(ZTSiteRegistry::sites(ZTMediaKind::Album).at(8).type,
             ZTSiteRegistry::sites(ZTMediaKind::Book).at(16).type);
}

void TestSiteRegistry::defaultsAndUpdatingLocales()
{
    QVariantList rows = ZTSiteRegistry::defaultLocaleArray(ZTMediaKind::Book);
    QCOMPARE(rows.size(), 9);
    QCOMPARE(rows.last().toMap(), QVariantMap({{"locale", "Books_US_LibraryOfCongress"}, {"activeFlag", 1}}));
    QVERIFY(ZTSiteRegistry::updateLocales(ZTMediaKind::Book, rows));
    QCOMPARE(rows.size(), 28);
    QCOMPARE(rows.at(9).toMap(), QVariantMap({{"locale", "Books_UK_BritishLibrary"}, {"activeFlag", 0}}));
    QVERIFY(!ZTSiteRegistry::updateLocales(ZTMediaKind::Book, rows));

    QVariantList comics = {ZTSiteRegistry::siteRow("Comics_US_GCD", true)};
    ZTSiteRegistry::updateLocales(ZTMediaKind::Comic, comics);
    QCOMPARE(comics.at(1).toMap().value("locale").toString(), QString("Comics_US_CBDB"));
    QVariantList movies;
    ZTSiteRegistry::updateLocales(ZTMediaKind::Movie, movies);
    QCOMPARE(movies.at(8).toMap().value("locale").toString(), QString("Movies_NL_BOL"));
}

void TestSiteRegistry::activeRowsBecomeNumberedFetchers()
{
    const QVariantList rows = {
        ZTSiteRegistry::siteRow("Books_DE_Amazon", true),
        ZTSiteRegistry::siteRow("Books_US_Amazon", false),
        ZTSiteRegistry::siteRow("Books_XX_Unknown", true),
        ZTSiteRegistry::siteRow("Books_UK_BritishLibrary", true), // not built: skipped
        QVariantMap{{"activeFlag", 1}},
        ZTSiteRegistry::siteRow("Books_JP_Amazon", true),
    };
    const auto fetchers = ZTSiteRegistry::fetchersForLocaleArray(ZTMediaKind::Book, rows);
    QCOMPARE(fetchers.size(), size_t(2));
    QCOMPARE(fetchers[0]->className(), QString("ZTFetcherBooksAmazonDE"));
    QCOMPARE(fetchers[0]->order(), 0);
    QCOMPARE(fetchers[1]->className(), QString("ZTFetcherBooksAmazonJP"));
    QCOMPARE(fetchers[1]->order(), 1);
}

void TestSiteRegistry::storedListWinsOverDefaults()
{
    QTemporaryDir dir;
    ZTTestSupport::useTemporarySettings(dir);
    QCOMPARE(ZTSiteRegistry::storedLocaleArray(ZTMediaKind::Album),
             ZTSiteRegistry::defaultLocaleArray(ZTMediaKind::Album));
    const QVariantList mine = {ZTSiteRegistry::siteRow("Music_FR_Amazon", true)};
    ZTSettings::setValue("Locale Music Array", mine);
    QCOMPARE(ZTSiteRegistry::storedLocaleArray(ZTMediaKind::Album).size(), 1);
    QCOMPARE(ZTSiteRegistry::storedLocaleArray(ZTMediaKind::Album).first().toMap().value("locale").toString(),
             QString("Music_FR_Amazon"));
}

void TestSiteRegistry::attributeArrayHidesVariantsAndSorts()
{
    const QStringList books = ZTSiteRegistry::fetcherAttributeArray(ZTMediaKind::Book);
    QVERIFY(books.contains("image"));
    QVERIFY(books.contains("editionNumber"));
    QVERIFY(!books.contains("imageLarge"));
    QVERIFY(!books.contains("imageUrl"));
    QVERIFY(!books.contains("datePublishedBitFlag"));
    QCOMPARE(books.first(), QString("authors"));
    QVERIFY(books.indexOf("isbn") < books.indexOf("language"));
    QVERIFY(
        !ZTSiteRegistry::fetcherAttributeArray(ZTMediaKind::Movie).contains("originalDatePublishedBitFlag"));
    QVERIFY(ZTSiteRegistry::fetcherAttributeArray(ZTMediaKind::Comic).isEmpty());
}

ZT_TEST_MAIN(TestSiteRegistry)
#include "tst_siteregistry.moc"
