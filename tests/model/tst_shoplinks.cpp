#include "model/ZTShopLinks.h"
#include "support/ZTTestMain.h"

#include <QtTest>

namespace {
// Stands in for the code formatter: accepts ten- or thirteen-character codes
// made of digits (and a final X), with hyphens and blanks removed.
QString cleanIsbn(const QString &text)
{
    QString plain = text;
    plain.remove(QLatin1Char('-')).remove(QLatin1Char(' '));
    static const QRegularExpression valid(QStringLiteral("^(\\d{9}[\\dX]|\\d{13})$"));
    return valid.match(plain).hasMatch() ? plain : QString();
}
} // namespace

Q_DECLARE_METATYPE(ZTMediaKind)

class TestShopLinks : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void shopLink_data()
    {
        QTest::addColumn<ZTMediaKind>("kind");
        QTest::addColumn<QVariantMap>("codes");
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("site");
        QTest::addColumn<QString>("url");

        const QVariantMap book = {{"isbn", "0-345-33968-1"}};
        const QVariantMap album = {{"asin", "B000002UAL"}, {"isbn", "0345339681"}};
        QTest::newRow("book US") << ZTMediaKind::Book << book << "US" << QString() << "Amazon U.S."
                                 << "https://www.amazon.com/exec/obidos/ASIN/0345339681";
        QTest::newRow("book with tag") << ZTMediaKind::Book << book << "GB"
                                       << "  mytag-21 "
                                       << "Amazon U.K."
                                       << "https://www.amazon.co.uk/exec/obidos/ASIN/0345339681mytag-21";
        QTest::newRow("blank tag adds nothing") << ZTMediaKind::Book << book << "DE"
                                                << "   "
                                                << "Amazon Germany"
                                                << "https://www.amazon.de/exec/obidos/ASIN/0345339681";
        QTest::newRow("australia uses US shop")
            << ZTMediaKind::Album << album << "AU" << QString() << "Amazon U.S."
            << "https://www.amazon.com/exec/obidos/ASIN/B000002UAL";
        QTest::newRow("poland uses US shop")
            << ZTMediaKind::Movie << album << "PL" << QString() << "Amazon U.S."
            << "https://www.amazon.com/exec/obidos/ASIN/B000002UAL";
        QTest::newRow("japan") << ZTMediaKind::Movie << album << "JP" << QString() << "Amazon Japan"
                               << "https://www.amazon.co.jp/exec/obidos/ASIN/B000002UAL";
        QTest::newRow("france") << ZTMediaKind::Album << album << "FR" << QString() << "Amazon France"
                                << "https://www.amazon.fr/exec/obidos/ASIN/B000002UAL";
        QTest::newRow("canada") << ZTMediaKind::Album << album << "CA" << QString() << "Amazon Canada"
                                << "https://www.amazon.ca/exec/obidos/ASIN/B000002UAL";
        QTest::newRow("italy") << ZTMediaKind::Album << album << "IT" << QString() << "Amazon Italy"
                               << "https://www.amazon.it/exec/obidos/ASIN/B000002UAL";
        QTest::newRow("spain") << ZTMediaKind::Album << album << "ES" << QString() << "Amazon Spain"
                               << "https://www.amazon.es/exec/obidos/ASIN/B000002UAL";
        QTest::newRow("code escaped") << ZTMediaKind::Album << QVariantMap{{"asin", "B0/../x?y"}} << "US"
                                      << "t&u"
                                      << "Amazon U.S."
                                      << "https://www.amazon.com/exec/obidos/ASIN/B0%2F..%2Fx%3Fyt%26u";
    }

    void shopLink()
    {
        QFETCH(ZTMediaKind, kind);
        QFETCH(QVariantMap, codes);
        QFETCH(QString, locale);
        QFETCH(QString, tag);
        QFETCH(QString, site);
        QFETCH(QString, url);
        const QVariantList links =
            ZTShopLinks::urlDictionariesWithAssociateTag(kind, codes, locale, tag, cleanIsbn);
        QCOMPARE(links.size(), 1);
        QCOMPARE(links.first().toMap().value("site").toString(), site);
        QCOMPARE(links.first().toMap().value("url").toString(), url);
        QCOMPARE(ZTShopLinks::urlWithAssociateTag(links), url);
    }

    void noLinkGivesOneEmptyMap_data()
    {
        QTest::addColumn<ZTMediaKind>("kind");
        QTest::addColumn<QVariantMap>("codes");
        QTest::addColumn<QString>("locale");
        QTest::newRow("no code") << ZTMediaKind::Book << QVariantMap() << "US";
        QTest::newRow("blank code") << ZTMediaKind::Album << QVariantMap{{"asin", "  "}} << "US";
        QTest::newRow("invalid isbn") << ZTMediaKind::Book << QVariantMap{{"isbn", "12345"}} << "US";
        QTest::newRow("album ignores isbn")
            << ZTMediaKind::Album << QVariantMap{{"isbn", "0345339681"}} << "US";
        QTest::newRow("no locale") << ZTMediaKind::Book << QVariantMap{{"isbn", "0345339681"}} << QString();
        QTest::newRow("unlisted locale") << ZTMediaKind::Movie << QVariantMap{{"asin", "B000002UAL"}} << "SE";
        QTest::newRow("lower-case locale")
            << ZTMediaKind::Movie << QVariantMap{{"asin", "B000002UAL"}} << "us";
    }

    void noLinkGivesOneEmptyMap()
    {
        QFETCH(ZTMediaKind, kind);
        QFETCH(QVariantMap, codes);
        QFETCH(QString, locale);
        const QVariantList links =
            ZTShopLinks::urlDictionariesWithAssociateTag(kind, codes, locale, "tag", cleanIsbn);
        QCOMPARE(links.size(), 1);
        QVERIFY(links.first().toMap().isEmpty());
        QVERIFY(ZTShopLinks::urlWithAssociateTag(links).isNull());
    }

    void missingCleanerGivesNoBookLink()
    {
        const QVariantList links = ZTShopLinks::urlDictionariesWithAssociateTag(
            ZTMediaKind::Book, {{"isbn", "0345339681"}}, "US", {}, ZTShopLinks::IsbnCleaner());
        QCOMPARE(links, QVariantList{QVariantMap()});
    }

    void comicLinksInOrder()
    {
        const QVariantMap codes = {{"gcdn", "12345"}, {"cbdbn", "678"}, {"isbn", "978-0-930289-23-2"}};
        const QVariantList links =
            ZTShopLinks::urlDictionariesWithAssociateTag(ZTMediaKind::Comic, codes, "US", "tag", cleanIsbn);
        QCOMPARE(links.size(), 3);
        QCOMPARE(links.at(0).toMap(),
                 (QVariantMap{{"site", "Grand Comics Database"},
                              {"url", "https://www.comics.org/details.lasso?id=12345"}}));
        QCOMPARE(links.at(1).toMap(),
                 (QVariantMap{{"site", "ComicBookDB"}, {"url", "https://comicbookdb.com/issue.php?ID=678"}}));
        QCOMPARE(links.at(2).toMap().value("url").toString(),
                 QStringLiteral("https://www.amazon.com/exec/obidos/ASIN/9780930289232tag"));
        QCOMPARE(ZTShopLinks::urlWithAssociateTag(links),
                 QStringLiteral("https://www.comics.org/details.lasso?id=12345"));
    }

    void comicWithoutDatabaseCodes()
    {
        const QVariantList links = ZTShopLinks::urlDictionariesWithAssociateTag(
            ZTMediaKind::Comic, {{"cbdbn", "678"}, {"gcdn", " "}}, "XX", {}, cleanIsbn);
        QCOMPARE(links.size(), 2);
        QCOMPARE(links.at(0).toMap().value("site").toString(), QStringLiteral("ComicBookDB"));
        QVERIFY(links.at(1).toMap().isEmpty());
    }

    void emptyResultHasNoUrl() { QVERIFY(ZTShopLinks::urlWithAssociateTag({}).isNull()); }
};

ZT_TEST_MAIN(TestShopLinks)
#include "tst_shoplinks.moc"
