#include "lookup/ZTFetcherAlbumsAmazon.h"
#include "lookup/ZTFetcherBooksAmazon.h"
#include "lookup/ZTFetcherMoviesAmazon.h"

#include "base/ZTNotificationCenter.h"
#include "support/ZTFakeWeb.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QBuffer>
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QTest>

namespace {

QByteArray png(int side)
{
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(Qt::blue);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// Runs one site for one code as its manager would, and answers what came back.
QVariantMap lookUp(ZTFetcher &fetcher, const QVariantMap &code)
{
    ZTFetchManager manager(fetcher.type());
    manager.addFetcher(&fetcher);
    QList<QVariantMap> results;
    ZTObservation done("ZTFetchManagerDoneFetching", &manager,
                       [&](const ZTNotification &n) { results << n.userInfo.value("itemDict").toMap(); });
    manager.fetchCodes({code});
    if (!QTest::qWaitFor([&] { return !results.isEmpty(); }, 10000))
        return {{"timedOut", true}};
    return results.first();
}

bool bailed(const QVariantMap &result)
{
    return !result.contains("order") && !result.contains("timedOut");
}

QDate dateOf(const QVariantMap &result, const QString &key)
{
    return result.value(key).toDateTime().date();
}

QStringList namesOf(const QVariant &roles)
{
    QStringList names;
    for (const QVariant &role : roles.toList())
        names << role.toMap().value("name").toString() + "=" + role.toMap().value("role").toString();
    return names;
}

const QString Cover = "https://m.media-amazon.com/images/I/";

} // namespace

class TestAmazon : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        ZTFetcher::setPauseInterval(0);
        ZTFakeWeb::instance().install();
    }
    void init() { ZTFakeWeb::instance().clear(); }

    void bookOnTheClassicPage();
    void bookWithHeadingSpansAndOnePixelCover();
    void bookOnTheNewerPage();
    void withoutCoverImagesNoPictureIsFetched();
    void albumFoundThroughTheUPCSearch();
    void albumWithTracksOnAPageOfTheirOwn();
    void movieWithCastFromTheRedirectedSearch();
    void movieOnTheNewerPageWithSearchResults();
    void countryQuirksOfTheMovieShops();
    void shopHostsAndPaths_data();
    void shopHostsAndPaths();
    void shopDates_data();
    void shopDates();
    void badPagesBail_data();
    void badPagesBail();
    void truncatedPagesNeverCrash();
};

void TestAmazon::bookOnTheClassicPage()
{
    ZTFakeWeb &web = ZTFakeWeb::instance();
    web.serveFixture("https://www.amazon.com/gp/product/0141439580", "lookup/amazon_book_us.html");
    web.serveBytes(Cover + "51emmaFront.jpg", png(40));
    ZTFetcherBooksAmazonUS fetcher;
    const QVariantMap r = lookUp(fetcher, {{"isbn", "978-0-14-143958-7"}});
    QCOMPARE(r.value("title").toString(), QString("Emma"));
    QCOMPARE(r.value("format").toString(), QString("Paperback"));
    QCOMPARE(r.value("authors").toStringList(), QStringList({"Jane Austen", "Fiona Stafford"}));
    QCOMPARE(r.value("pages").toInt(), 480);
    QCOMPARE(r.value("publisher").toString(), QString("Penguin Classics"));
    QCOMPARE(r.value("editionNumber").toString(), QString("Reprint edition"));
    QCOMPARE(dateOf(r, "datePublished"), QDate(2002, 12, 31));
    QCOMPARE(r.value("datePublishedBitFlag").toInt(), 0);
    QCOMPARE(r.value("language").toString(), QString("English"));
    QCOMPARE(r.value("series").toString(), QString("Penguin Classics"));
    // The list price of 10000 is refused; the offer price stands.
    QCOMPARE(r.value("price").toDouble(), 8.99);
    QCOMPARE(r.value("productDescription").toString(),
             QString("Emma is Jane Austen\u2019s comic masterpiece."));
    QCOMPARE(r.value("image").toByteArray(), png(40));
    QVERIFY(!r.contains("imageLarge"));
    QCOMPARE(r.value("locale").toString(), QString("US"));
    QCOMPARE(web.requested.size(), 2);
}

void TestAmazon::bookWithHeadingSpansAndOnePixelCover()
{
    ZTFakeWeb &web = ZTFakeWeb::instance();
    web.serveFixture("https://www.amazon.co.uk/gp/product/0141439580", "lookup/amazon_book_uk_intitle.html");
    web.serveBytes(Cover + "1pixel.jpg", png(1));
    ZTFetcherBooksAmazonUK fetcher;
    const QVariantMap r = lookUp(fetcher, {{"isbn", "0141439580"}});
    QCOMPARE(r.value("title").toString(), QString("Emma"));
    QCOMPARE(r.value("format").toString(), QString("Hardcover"));
    QCOMPARE(r.value("authors").toStringList(), QStringList({"Jane Austen"}));
    QCOMPARE(r.value("pages").toInt(), 474);
    QCOMPARE(r.value("publisher").toString(), QString("Penguin"));
    QCOMPARE(dateOf(r, "datePublished"), QDate(2003, 1, 15));
    QCOMPARE(r.value("datePublishedBitFlag").toInt(), 1);
    QCOMPARE(r.value("price").toDouble(), 12.99);
    // Ampersands pass through flattening as written.
    QCOMPARE(r.value("productDescription").toString(), QString("Tom &amp; Jerry meet Emma &amp; friends."));
    QVERIFY(web.requested.contains(Cover + "1pixel.jpg"));
    QVERIFY(!r.contains("image"));
}

void TestAmazon::bookOnTheNewerPage()
{
    ZTFakeWeb::instance().serveFixture("https://www.amazon.de/gp/product/3150093465",
                                       "lookup/amazon_book_de_new.html");
    ZTFetcherBooksAmazonDE fetcher;
    const QVariantMap r = lookUp(fetcher, {{"isbn", "9783150093467"}});
    QCOMPARE(r.value("title").toString(), QString("Der Process"));
    QCOMPARE(r.value("format").toString(), QString("Taschenbuch"));
    QCOMPARE(r.value("authors").toStringList(), QStringList({"Franz Kafka"}));
    QCOMPARE(r.value("pages").toInt(), 240);
    QCOMPARE(r.value("publisher").toString(), QString("Reclam"));
    QCOMPARE(r.value("editionNumber").toString(), QString("Auflage: 1"));
    QCOMPARE(dateOf(r, "datePublished"), QDate(1995, 1, 1));
    QCOMPARE(r.value("language").toString(), QString("Deutsch"));
    QCOMPARE(r.value("price").toDouble(), 5.0);
}

void TestAmazon::withoutCoverImagesNoPictureIsFetched()
{
    ZTFakeWeb &web = ZTFakeWeb::instance();
    web.serveFixture("https://www.amazon.com/gp/product/0141439580", "lookup/amazon_book_us.html");
    ZTFetcherBooksAmazonUS fetcher;
    ZTFetchManager manager(fetcher.type());
    manager.addFetcher(&fetcher);
    manager.setRequestedFetchKeys({"title", "authors"});
    QVariantMap result;
    ZTObservation done("ZTFetchManagerDoneFetching", &manager,
                       [&](const ZTNotification &n) { result = n.userInfo.value("itemDict").toMap(); });
    manager.fetchCodes({QVariantMap{{"isbn", "0141439580"}}});
    QVERIFY(QTest::qWaitFor([&] { return !result.isEmpty(); }, 5000));
    QCOMPARE(web.requested.size(), 1);
    QVERIFY(!result.contains("price"));
    QCOMPARE(result.value("title").toString(), QString("Emma"));
}

void TestAmazon::albumFoundThroughTheUPCSearch()
{
    ZTFakeWeb &web = ZTFakeWeb::instance();
    web.serveFixture(
        "https://www.amazon.com/gp/seller/search.html?ld=direct-link&index=aps&keywords=094638246817",
        "lookup/amazon_upc_search.html");
    web.serveFixture("https://www.amazon.com/gp/product/B0025KVLTM", "lookup/amazon_album_us.html");
    web.serveBytes(Cover + "61abbey.jpg", png(8));
    ZTFetcherAlbumsAmazonUS fetcher;
    const QVariantMap r = lookUp(fetcher, {{"upc", "0 94638 24681 7"}});
    QCOMPARE(r.value("asin").toString(), QString("B0025KVLTM"));
    QCOMPARE(r.value("title").toString(), QString("Abbey Road"));
    QCOMPARE(r.value("format").toString(), QString("Audio CD"));
    QCOMPARE(r.value("artists").toStringList(), QStringList({"The Beatles"}));
    QCOMPARE(r.value("label").toString(), QString("Apple"));
    QCOMPARE(r.value("numberOfMedia").toInt(), 1);
    QCOMPARE(dateOf(r, "datePublished"), QDate(1969, 9, 26));
    QCOMPARE(r.value("tracks").toStringList(), QStringList({"Come Together", "Something", "Sun King"}));
    QCOMPARE(r.value("price").toDouble(), 9.99);
    QCOMPARE(r.value("productDescription").toString(), QString("The last album the band recorded."));
    QCOMPARE(r.value("image").toByteArray(), png(8));
}

void TestAmazon::albumWithTracksOnAPageOfTheirOwn()
{
    ZTFakeWeb &web = ZTFakeWeb::instance();
    web.serveFixture("https://www.amazon.co.uk/gp/product/B000026GZ3",
                     "lookup/amazon_album_uk_tracklink.html");
    web.serveFixture("https://www.amazon.co.uk/gp/music/tracks/B000026GZ3",
                     "lookup/amazon_album_tracks.html");
    ZTFetcherAlbumsAmazonUK fetcher;
    const QVariantMap r = lookUp(fetcher, {{"asin", " B000026GZ3 "}, {"upc", "5099748191022"}});
    // Parentheses at the very start are part of the name.
    QCOMPARE(r.value("title").toString(), QString("(What's the Story) Morning Glory?"));
    QCOMPARE(r.value("tracks").toStringList(), QStringList({"Hello", "Roll With It", "Wonderwall"}));
    QCOMPARE(r.value("numberOfMedia").toInt(), 2);
    QCOMPARE(r.value("label").toString(), QString("Creation"));
    // British dates put the day first, which the three-word rule reads as no month.
    QCOMPARE(dateOf(r, "datePublished"), QDate(1995, 6, 15));
    QCOMPARE(r.value("datePublishedBitFlag").toInt(), 2);
    QVERIFY(!r.contains("_tracksURL"));
}

void TestAmazon::movieWithCastFromTheRedirectedSearch()
{
    ZTFakeWeb &web = ZTFakeWeb::instance();
    web.serveFixture("https://www.amazon.com/gp/product/B004HW7IPU", "lookup/amazon_movie_us.html");
    web.serveBytes(Cover + "51amelie.jpg", png(16));
    const QUrl search("https://www.imdb.com/find?s=all&q=Am\u00e9lie+%282001%29&x=0&y=0", QUrl::TolerantMode);
    web.redirect(search.toString(), "https://www.imdb.com/title/tt0211915");
    web.serveFixture("https://www.imdb.com/title/tt0211915/fullcredits", "lookup/imdb_cast.html");
    ZTFetcherMoviesAmazonUS fetcher;
    const QVariantMap r = lookUp(fetcher, {{"asin", "B004HW7IPU"}});
    QCOMPARE(r.value("title").toString(), QString("Am\u00e9lie"));
    QCOMPARE(r.value("format").toString(), QString("Blu-ray Disc"));
    QCOMPARE(dateOf(r, "originalDatePublished"), QDate(2001, 6, 15));
    QCOMPARE(r.value("originalDatePublishedBitFlag").toInt(), 2);
    QCOMPARE(dateOf(r, "datePublished"), QDate(2011, 3, 15));
    QCOMPARE(r.value("directors").toStringList(), QStringList({"Jean-Pierre Jeunet"}));
    QCOMPARE(r.value("audienceRating").toString(), QString("R"));
    QCOMPARE(r.value("regionCode").toString(), QString("1"));
    QCOMPARE(r.value("duration").toInt(), 122);
    QCOMPARE(r.value("numberOfMedia").toInt(), 2);
    QCOMPARE(r.value("aspectRatio").toString(), QString("2.35:1"));
    QCOMPARE(r.value("studio").toString(), QString("Lionsgate"));
    QCOMPARE(r.value("price").toDouble(), 14.99);
    QCOMPARE(namesOf(r.value("actorRoles")),
             QStringList({"Audrey Tautou=Am\u00e9lie Poulain", "Mathieu Kassovitz=Nino Quincampoix"}));
    QCOMPARE(r.value("image").toByteArray(), png(16));
    QVERIFY(web.requested.contains("https://www.imdb.com/title/tt0211915/fullcredits"));
}

void TestAmazon::movieOnTheNewerPageWithSearchResults()
{
    ZTFakeWeb &web = ZTFakeWeb::instance();
    web.serveFixture(
        "https://www.amazon.co.uk/gp/seller/search.html?ld=direct-link&index=aps&keywords=5050582037458",
        "lookup/amazon_upc_search.html");
    web.serveFixture("https://www.amazon.co.uk/gp/product/B0025KVLTM", "lookup/amazon_movie_uk_new.html");
    web.serveFixture(
        QUrl("https://www.imdb.com/find?s=all&q=Am\u00e9lie&x=0&y=0", QUrl::TolerantMode).toString(),
        "lookup/imdb_search.html");
    web.serveFixture("https://www.imdb.com/title/tt0211915/fullcredits", "lookup/imdb_cast.html");
    ZTFetcherMoviesAmazonUK fetcher;
    const QVariantMap r = lookUp(fetcher, {{"upc", "5050582037458"}});
    QCOMPARE(r.value("asin").toString(), QString("B0025KVLTM"));
    QCOMPARE(r.value("title").toString(), QString("Am\u00e9lie"));
    QCOMPARE(r.value("format").toString(), QString("DVD"));
    QCOMPARE(r.value("regionCode").toString(), QString("2"));
    QCOMPARE(r.value("audienceRating").toString(), QString("15"));
    QCOMPARE(r.value("duration").toInt(), 117);
    QCOMPARE(namesOf(r.value("actorRoles")).size(), 2);
    QVERIFY(!r.contains("originalDatePublished"));
}

void TestAmazon::countryQuirksOfTheMovieShops()
{
    ZTFakeWeb &web = ZTFakeWeb::instance();
    web.serveBytes(
        "https://www.amazon.de/gp/product/B00DE",
        "<h1 id=\"title\"><span>Die fabelhafte Welt der Am\xc3\xa9lie [DVD]</span></h1>"
        "<h2>Produktinformation</h2><ul><li><b>Darsteller:</b> Audrey Tautou</li>"
        "<li><b>Produktionsjahr:</b> 2001</li><li><b>Erscheinungstermin:</b> 3. M\xc3\xa4rz 2003</li>"
        "<li><b>FSK:</b> Freigegeben ab 6 Jahren</li></ul><h2>Mehr</h2>");
    web.serveBytes(
        "https://www.amazon.es/gp/product/B00ES",
        "<h1 id=\"title\"><span>Am\xc3\xa9lie</span></h1> Clasificado: <b>Apta para todos</b><span>x</span>"
        "<h2>Detalles del producto</h2><ul><li><b>Fecha de lanzamiento del DVD:</b> 9 sept 2002</li>"
        "</ul><h2>M</h2>");
    ZTFetcherMoviesAmazonDE german;
    QVariantMap r = lookUp(german, {{"asin", "B00DE"}});
    QCOMPARE(r.value("title").toString(), QString("Die fabelhafte Welt der Am\u00e9lie"));
    QCOMPARE(dateOf(r, "originalDatePublished"), QDate(2001, 6, 15));
    QCOMPARE(dateOf(r, "datePublished"), QDate(2003, 3, 3));
    QCOMPARE(r.value("audienceRating").toString(), QString("Freigegeben ab 6 Jahren"));
    QCOMPARE(namesOf(r.value("actorRoles")), QStringList({"Audrey Tautou="}));

    ZTFetcherMoviesAmazonES spanish;
    r = lookUp(spanish, {{"asin", "B00ES"}});
    QCOMPARE(r.value("audienceRating").toString(), QString("Apta para todos"));
    QCOMPARE(dateOf(r, "datePublished"), QDate(2002, 9, 9));
}

void TestAmazon::shopHostsAndPaths_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QVariantMap>("code");
    QTest::addColumn<QString>("url");
    QTest::newRow("JP books ask for English")
        << "JP" << QVariantMap{{"isbn", "0141439580"}}
        << "https://www.amazon.co.jp/gp/switch-language/product/0141439580/language=en_JP/"
           "ref=dp_change_lang?ie=UTF8&language=en_JP";
    QTest::newRow("CA movies use the US host")
        << "CA" << QVariantMap{{"asin", "B00X"}} << "https://www.amazon.com/gp/product/B00X";
    QTest::newRow("ES movies") << "ES" << QVariantMap{{"asin", "B00Y"}}
                               << "https://www.amazon.es/gp/product/B00Y";
}

void TestAmazon::shopHostsAndPaths()
{
    QFETCH(QString, className);
    QFETCH(QVariantMap, code);
    QFETCH(QString, url);
    std::unique_ptr<ZTFetcher> fetcher;
    if (className == "JP")
        fetcher = std::make_unique<ZTFetcherBooksAmazonJP>();
    else if (className == "CA")
        fetcher = std::make_unique<ZTFetcherMoviesAmazonCA>();
    else
        fetcher = std::make_unique<ZTFetcherMoviesAmazonES>();
    QVERIFY(bailed(lookUp(*fetcher, code)));
    QCOMPARE(ZTFakeWeb::instance().requested, QStringList({url}));
}

void TestAmazon::shopDates_data()
{
    QTest::addColumn<QString>("country");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QDate>("date");
    QTest::addColumn<int>("flag");
    const int book = int(ZTMediaKind::Book), movie = int(ZTMediaKind::Movie);
    QTest::newRow("US full") << "US" << book << "December 31, 2002" << QDate(2002, 12, 31) << 0;
    QTest::newRow("US month and year") << "US" << book << "May 2002" << QDate(2002, 5, 15) << 1;
    QTest::newRow("US year") << "US" << book << "2002" << QDate(2002, 6, 15) << 2;
    QTest::newRow("US no month") << "US" << book << "Summer 2002" << QDate(2002, 6, 15) << 2;
    QTest::newRow("US bad day") << "US" << book << "May 40, 2002" << QDate(2002, 5, 15) << 1;
    QTest::newRow("FR") << "FR" << book << "31 d\u00e9cembre 2002" << QDate(2002, 12, 31) << 0;
    QTest::newRow("DE colon") << "DE" << book << "3.:M\u00e4rz 2004" << QDate(2004, 3, 3) << 0;
    QTest::newRow("ES de") << "ES" << book << "31 de diciembre de 2002" << QDate(2002, 12, 31) << 0;
    QTest::newRow("IT movie short") << "IT" << movie << "15 giu 2010" << QDate(2010, 6, 15) << 0;
    QTest::newRow("IT book full") << "IT" << book << "3 febbraio 2010" << QDate(2010, 2, 3) << 0;
    QTest::newRow("JP figures") << "JP" << book << "2002/12/31" << QDate(2002, 12, 31) << 0;
    QTest::newRow("no year") << "US" << book << "December" << QDate() << 0;
    QTest::newRow("year too large") << "US" << book << "May 1, 20000" << QDate() << 0;
    QTest::newRow("empty") << "US" << book << "" << QDate() << 0;
}

void TestAmazon::shopDates()
{
    QFETCH(QString, country);
    QFETCH(int, kind);
    QFETCH(QString, text);
    QFETCH(QDate, date);
    QFETCH(int, flag);
    std::unique_ptr<ZTFetcherAmazon> fetcher;
    const bool movie = kind == int(ZTMediaKind::Movie);
    if (country == "US")
        fetcher = std::make_unique<ZTFetcherBooksAmazonUS>();
    else if (country == "FR")
        fetcher = std::make_unique<ZTFetcherBooksAmazonFR>();
    else if (country == "DE")
        fetcher = std::make_unique<ZTFetcherBooksAmazonDE>();
    else if (country == "ES")
        fetcher = std::make_unique<ZTFetcherBooksAmazonES>();
    else if (country == "JP")
        fetcher = std::make_unique<ZTFetcherBooksAmazonJP>();
    else if (movie)
        fetcher = std::make_unique<ZTFetcherMoviesAmazonIT>();
    else
        fetcher = std::make_unique<ZTFetcherBooksAmazonIT>();
    const auto parsed = fetcher->dateFromString(text);
    if (!date.isValid()) {
        QVERIFY(!parsed);
        return;
    }
    QVERIFY(parsed);
    QCOMPARE(parsed->date.date(), date);
    QCOMPARE(parsed->date.time(), QTime(12, 0));
    QCOMPARE(parsed->flag, flag);
}

void TestAmazon::badPagesBail_data()
{
    QTest::addColumn<QByteArray>("page");
    QTest::addColumn<bool>("fail");
    QTest::newRow("no heading") << QByteArray(
                                       "<html><body><p>Sorry, we couldn't find that page</p></body></html>")
                                << false;
    QTest::newRow("undecodable") << QByteArray("<html><h1 id=\"title\">Caf\xe9</h1></html>") << false;
    QTest::newRow("empty body") << QByteArray() << false;
    QTest::newRow("transport error") << QByteArray() << true;
}

void TestAmazon::badPagesBail()
{
    QFETCH(QByteArray, page);
    QFETCH(bool, fail);
    ZTFakeWeb &web = ZTFakeWeb::instance();
    if (fail)
        web.failWith("https://www.amazon.com/gp/product/0141439580");
    else
        web.serveBytes("https://www.amazon.com/gp/product/0141439580", page);
    ZTFetcherBooksAmazonUS fetcher;
    QVERIFY(bailed(lookUp(fetcher, {{"isbn", "0141439580"}})));

    // A UPC search without a result table bails too.
    web.serveFixture("https://www.amazon.com/gp/seller/search.html?ld=direct-link&index=aps&keywords=123",
                     "lookup/amazon_upc_none.html");
    ZTFetcherMoviesAmazonUS movies;
    QVERIFY(bailed(lookUp(movies, {{"upc", "123"}})));
}

void TestAmazon::truncatedPagesNeverCrash()
{
    // Every cut of every fixture page must read without harm; what the cut
    // lost is simply missing.
    ZTFetcherMoviesAmazonES reader;
    reader.setRequestedFetchKeys(reader.fetchableKeys() << "tracks"
                                                        << "artists");
    QDirIterator it(ZTTestSupport::fixturePath("lookup"), {"*.html"});
    int pages = 0;
    while (it.hasNext()) {
        QFile file(it.next());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString page = QString::fromUtf8(file.readAll());
        for (qsizetype cut = 0; cut < page.size(); cut += 37) {
            const QVariantMap result = reader.dictionaryForString(page.left(cut), "US");
            if (cut == 0)
                QVERIFY(result.isEmpty());
        }
        ++pages;
    }
    QVERIFY(pages >= 10);
    const QVariantMap whole =
        reader.dictionaryForString(QString(200000, '<') + "<h1 id=\"title\">x</h1>", "GB");
    QCOMPARE(whole.value("title").toString(), QString("x"));

    // Pages built to make the readers search again and again read in one pass.
    const QString labels =
        "<h1 id=\"title\">y</h1><h2>Product Details</h2>" + QString("<li><b>x:</b> 1").repeated(200000);
    QCOMPARE(reader.dictionaryForString(labels, "US").value("title").toString(), QString("y"));
    const QString cells =
        "<h2>Product Details</h2><ul>" + QString("<li><b>Label:</b> x</li>").repeated(50000) + "</ul>";
    QCOMPARE(reader.dictionaryForString(cells, "US").value("label").toString(), QString("x"));
}

ZT_TEST_MAIN(TestAmazon)
#include "tst_amazon.moc"
