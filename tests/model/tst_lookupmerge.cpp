#include "model/ZTLookupMerge.h"
#include "support/ZTTestMain.h"

#include <QtTest>

using ZTLookupMerge::transferDataFromSourceDictionary;

namespace {
const QVariantMap CountryToCurrency = {{"US", "USD"}, {"GB", "GBP"}, {"DE", "EUR"}};
}

class TestLookupMerge : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void betterRankReplacesEqualRankDoesNot()
    {
        QVariantMap destination;
        QVariantMap orders;
        transferDataFromSourceDictionary(ZTMediaKind::Book, {{"title", "First"}, {"pages", 100}}, destination,
                                         orders, 5, CountryToCurrency);
        transferDataFromSourceDictionary(ZTMediaKind::Book, {{"title", "Same rank"}, {"pages", 200}},
                                         destination, orders, 5, CountryToCurrency);
        QCOMPARE(destination.value("title").toString(), QStringLiteral("First"));
        QCOMPARE(destination.value("pages").toInt(), 100);

        transferDataFromSourceDictionary(ZTMediaKind::Book, {{"title", "Better"}}, destination, orders, 2,
                                         CountryToCurrency);
        QCOMPARE(destination.value("title").toString(), QStringLiteral("Better"));
        QCOMPARE(orders.value("title").toInt(), 2);
        // A key the better site did not give keeps its value and its rank.
        QCOMPARE(destination.value("pages").toInt(), 100);
        QCOMPARE(orders.value("pages").toInt(), 5);

        transferDataFromSourceDictionary(ZTMediaKind::Book, {{"title", "Worse"}}, destination, orders, 9,
                                         CountryToCurrency);
        QCOMPARE(destination.value("title").toString(), QStringLiteral("Better"));
    }

    void keysBelongToTheirKind_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("key");
        QTest::addColumn<bool>("taken");
        QTest::newRow("book publisher") << int(ZTMediaKind::Book) << "publisher" << true;
        QTest::newRow("book lccn") << int(ZTMediaKind::Book) << "lccn" << true;
        QTest::newRow("book label") << int(ZTMediaKind::Book) << "label" << false;
        QTest::newRow("album label") << int(ZTMediaKind::Album) << "label" << true;
        QTest::newRow("album tracks") << int(ZTMediaKind::Album) << "tracks" << true;
        QTest::newRow("album publisher") << int(ZTMediaKind::Album) << "publisher" << false;
        QTest::newRow("movie actorRoles") << int(ZTMediaKind::Movie) << "actorRoles" << true;
        QTest::newRow("movie duration") << int(ZTMediaKind::Movie) << "duration" << true;
        QTest::newRow("movie pages") << int(ZTMediaKind::Movie) << "pages" << false;
        QTest::newRow("comic characterRoleDicts") << int(ZTMediaKind::Comic) << "characterRoleDicts" << true;
        QTest::newRow("comic upc") << int(ZTMediaKind::Comic) << "upc" << true;
        QTest::newRow("comic isbn") << int(ZTMediaKind::Comic) << "isbn" << false;
        QTest::newRow("common imageUrl") << int(ZTMediaKind::Comic) << "imageUrl" << true;
        QTest::newRow("common locale") << int(ZTMediaKind::Album) << "locale" << true;
        QTest::newRow("never genre") << int(ZTMediaKind::Book) << "genre" << false;
        QTest::newRow("never notes") << int(ZTMediaKind::Movie) << "notes" << false;
    }

    void keysBelongToTheirKind()
    {
        QFETCH(int, kind);
        QFETCH(QString, key);
        QFETCH(bool, taken);
        QVariantMap destination;
        QVariantMap orders;
        transferDataFromSourceDictionary(ZTMediaKind(kind), {{key, "value"}}, destination, orders, 1,
                                         CountryToCurrency);
        QCOMPARE(destination.contains(key), taken);
        QCOMPARE(orders.contains(key), taken);
    }

    void priceBringsItsCurrency()
    {
        QVariantMap destination;
        QVariantMap orders;
        transferDataFromSourceDictionary(ZTMediaKind::Album,
                                         {{"price", 9.99}, {"priceLocale", "CAD"}, {"locale", "US"}},
                                         destination, orders, 3, CountryToCurrency);
        QCOMPARE(destination.value("price").toDouble(), 9.99);
        QCOMPARE(destination.value("priceLocale").toString(), QStringLiteral("CAD"));
        QCOMPARE(orders.value("price").toInt(), 3);
    }

    void priceCurrencyFromLocale()
    {
        QVariantMap destination{{"priceLocale", "USD"}};
        QVariantMap orders;
        transferDataFromSourceDictionary(ZTMediaKind::Movie, {{"price", 12.0}, {"locale", "GB"}}, destination,
                                         orders, 3, CountryToCurrency);
        QCOMPARE(destination.value("priceLocale").toString(), QStringLiteral("GBP"));
        QCOMPARE(destination.value("locale").toString(), QStringLiteral("GB"));
    }

    void priceCurrencyUnknownLocaleLeavesCurrency()
    {
        QVariantMap destination{{"priceLocale", "USD"}};
        QVariantMap orders;
        transferDataFromSourceDictionary(ZTMediaKind::Movie, {{"price", 12.0}, {"locale", "ZZ"}}, destination,
                                         orders, 3, CountryToCurrency);
        QCOMPARE(destination.value("price").toDouble(), 12.0);
        QCOMPARE(destination.value("priceLocale").toString(), QStringLiteral("USD"));
    }

    void currencyOnlyTravelsWithPrice()
    {
        QVariantMap destination{{"price", 5.0}, {"priceLocale", "USD"}};
        QVariantMap orders{{"price", 1}};
        transferDataFromSourceDictionary(ZTMediaKind::Book, {{"price", 7.0}, {"priceLocale", "EUR"}},
                                         destination, orders, 1, CountryToCurrency);
        QCOMPARE(destination.value("price").toDouble(), 5.0);
        QCOMPARE(destination.value("priceLocale").toString(), QStringLiteral("USD"));
        transferDataFromSourceDictionary(ZTMediaKind::Book, {{"priceLocale", "EUR"}}, destination, orders, 0,
                                         CountryToCurrency);
        QCOMPARE(destination.value("priceLocale").toString(), QStringLiteral("USD"));
    }

    void authorsBecomeRoleDicts()
    {
        QVariantMap destination;
        QVariantMap orders;
        transferDataFromSourceDictionary(ZTMediaKind::Book,
                                         {{"authors", QStringList{"Jane Austen", " ", "Fanny Burney"}}},
                                         destination, orders, 4, CountryToCurrency);
        QVERIFY(!destination.contains("authors"));
        const QVariantList expected = {QVariantMap{{"name", "Jane Austen"}, {"role", ""}},
                                       QVariantMap{{"name", "Fanny Burney"}, {"role", ""}}};
        QCOMPARE(destination.value("authorRoleDicts").toList(), expected);
        QCOMPARE(orders.value("authors").toInt(), 4);
        QVERIFY(!orders.contains("authorRoleDicts"));

        transferDataFromSourceDictionary(ZTMediaKind::Book, {{"authors", QVariantList{"Someone Else"}}},
                                         destination, orders, 4, CountryToCurrency);
        QCOMPARE(destination.value("authorRoleDicts").toList(), expected);
        transferDataFromSourceDictionary(ZTMediaKind::Book, {{"authors", QVariantList{"Someone Else"}}},
                                         destination, orders, 1, CountryToCurrency);
        QCOMPARE(destination.value("authorRoleDicts").toList().size(), 1);
    }

    void authorsIgnoredForOtherKinds()
    {
        QVariantMap destination;
        QVariantMap orders;
        transferDataFromSourceDictionary(ZTMediaKind::Album, {{"authors", QStringList{"X Y"}}}, destination,
                                         orders, 1, CountryToCurrency);
        QVERIFY(destination.isEmpty());
        QVERIFY(orders.isEmpty());
    }

    void malformedInputsAreHarmless()
    {
        QVariantMap destination;
        QVariantMap orders{{"title", "not a rank"}, {"series", QVariant()}};
        const QVariantMap source = {{"title", "T"},
                                    {"series", "S"},
                                    {"language", QVariant()},
                                    {"price", QVariant()},
                                    {"authors", 42},
                                    {"locale", QVariantList{}},
                                    {"image", QByteArray("\x89PNG")}};
        transferDataFromSourceDictionary(ZTMediaKind::Book, source, destination, orders, 2,
                                         CountryToCurrency);
        // An unreadable rank counts as no rank, so the value is taken.
        QCOMPARE(destination.value("title").toString(), QStringLiteral("T"));
        QCOMPARE(destination.value("series").toString(), QStringLiteral("S"));
        QVERIFY(!destination.contains("language"));
        QVERIFY(!destination.contains("price"));
        QCOMPARE(destination.value("image").toByteArray(), QByteArray("\x89PNG"));
        // A number is no list of names: it yields no authors.
        QVERIFY(destination.value("authorRoleDicts").toList().isEmpty());
    }

    void shippedCountryTableIsUsedByDefault()
    {
        QVariantMap destination;
        QVariantMap orders;
        transferDataFromSourceDictionary(ZTMediaKind::Book, {{"price", 20.0}, {"locale", "JP"}}, destination,
                                         orders, 1);
        QCOMPARE(destination.value("priceLocale").toString(), QStringLiteral("JPY"));
    }
};

ZT_TEST_MAIN(TestLookupMerge)
#include "tst_lookupmerge.moc"
