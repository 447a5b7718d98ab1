#include "lookup/ZTFetcher.h"

#include "base/ZTNotificationCenter.h"
#include "lookup/ZTFetchManager.h"
#include "lookup/ZTSiteOverride.h"
#include "support/ZTFakeWeb.h"
#include "support/ZTTestHttpServer.h"
#include "support/ZTTestMain.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QImage>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

namespace {

// A site whose plan the test writes: each step is a URL or a POST description.
class PlanFetcher : public ZTFetcher {
public:
    QList<QPair<QString, QVariant>> plan;
    QList<std::optional<QByteArray>> received;
    bool allowFetch = true;
    double spacing = 0;
    QStringList keys = {"title", "pages",      "price",      "datePublished", "datePublishedBitFlag",
                        "image", "imageLarge", "imageSmall", "imageUrl",      "imageUrlSmall"};

    QString name() const override { return QStringLiteral("Test Site"); }
    QString locale() const override { return QStringLiteral("US"); }
    QStringList fetchableKeys() const override { return keys; }
    QVariantMap fetchKeyIdentifierDictionary() const override { return {{"isbn", "originalIsbn"}}; }

    void startFetchingWithDictionary(const QVariantMap &dictionary) override
    {
        ZTFetcher::startFetchingWithDictionary(dictionary);
        for (const auto &[step, description] : std::as_const(plan)) {
            m_fetchKeys << step;
            if (description.isValid())
                m_fetchDict.insert(step, description);
        }
        m_currentFetchKey = m_fetchKeys.value(0);
        fetchURLWithCurrentKey();
    }

    // Exposes the extraction family with every key requested.
    void request(const QStringList &wanted) { setRequestedFetchKeys(wanted); }
    QVariantMap &result() { return m_dict; }
    using ZTFetcher::cancelFetch;

protected:
    bool canFetch() override { return spacing > 0 ? canFetchWithMinimumSpacing(spacing) : allowFetch; }
    void processData() override
    {
        received << data();
        updateStringForKey(QStringLiteral("title"), stringFromWebData(data()), QStringLiteral("<h1>"),
                           QStringLiteral("</h1>"));
        advanceFetchKey();
    }
};

// Collects what one manager delivers.
struct Delivery {
    ZTFetchManager manager{QStringLiteral("test")};
    QList<QVariantMap> results;
    QStringList statuses;
    ZTObservation done;
    ZTObservation status;

    explicit Delivery(ZTFetcher *fetcher)
    {
        manager.addFetcher(fetcher);
        done = ZTObservation(QStringLiteral("ZTFetchManagerDoneFetching"), &manager,
                             [this](const ZTNotification &n) {
                                 results << n.userInfo.value(QStringLiteral("itemDict")).toMap();
                             });
        status =
            ZTObservation(QStringLiteral("ZTFetchStatusUpdated"), fetcher, [this](const ZTNotification &n) {
                statuses << n.userInfo.value(QStringLiteral("status")).toString();
            });
    }
    bool run(const QVariantList &codes, int expected = 1)
    {
        manager.fetchCodes(codes);
        return QTest::qWaitFor([&] { return results.size() >= expected; }, 10000);
    }
};

QByteArray png(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

const QVariantList OneCode = {QVariantMap{{"isbn", "9780141439587"}}};

} // namespace

class TestFetcher : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        ZTFetcher::setPauseInterval(5);
        ZTFakeWeb::instance().install();
    }
    void init() { ZTFakeWeb::instance().clear(); }

    void stringExtraction_data();
    void stringExtraction();
    void multipleStrings();
    void price_data();
    void price();
    void year_data();
    void year();
    void integer_data();
    void integer();
    void date_data();
    void date();
    void nothingIsStoredForAKeyNotRequested();
    void imageKeysFoldIntoTheRequestedKey();
    void imageValidity_data();
    void imageValidity();
    void languageCodesHaveNames();
    void processedISBN_data();
    void processedISBN();

    void aCodeWithNothingToSearchCompletesWithTheSeed();
    void stepsRunInOrderAndStatusTextsAreExact();
    void aStepWithoutDescriptionEndsTheRun();
    void postGoesOutAsAPlainGet();
    void transportFailureGivesNullData();
    void redirectLoopEndsAsAFailure();
    void enormousPageEndsAsAFailure();
    void undecodableBytesGiveNoText();
    void rateLimitedSitePostsWaiting();
    void rateLimitedSiteWaitsForItsSpacing();
    void cancelledTransferStillReachesProcessData();
    void aFetcherDeletedDuringItsPauseSendsNothing();
    void thePauseTurnsTheEventLoopAndStampsTheDate();
    void realNetworkThroughTheSiteOverride();
};

void TestFetcher::stringExtraction_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("trimmed and flattened") << "<h1>  Emma <i>novel</i>\n</h1>" << QVariant("Emma novel");
    QTest::newRow("escaped twice") << "<h1>Tom &amp;amp; Jerry</h1>" << QVariant("Tom & Jerry");
    QTest::newRow("blank") << "<h1>   </h1>" << QVariant();
    QTest::newRow("no end tag") << "<h1>Emma" << QVariant();
    QTest::newRow("end tag before start") << "</h1><h1>Emma" << QVariant();
}

void TestFetcher::stringExtraction()
{
    QFETCH(QString, text);
    QFETCH(QVariant, expected);
    PlanFetcher f;
    f.request({"title"});
    f.updateStringForKey("title", text, "<h1>", "</h1>");
    QCOMPARE(f.dict().value("title"), expected);

    PlanFetcher nested;
    nested.request({"title"});
    nested.updateStringForKey("title", "<div>" + text + "</div>", "<div>", "</div>", "<h1>", "</h1>");
    QCOMPARE(nested.dict().value("title"), expected);
}

void TestFetcher::multipleStrings()
{
    PlanFetcher f;
    f.request({"authors"});
    const QString page = "<ul><li> A<b>1</b> </li><li>  </li><li>B &amp; C</li></ul><li>outside</li>";
    f.updateMultipleStringForKey("authors", page, "<ul>", "</ul>", "<li>", "</li>", ZTFlatten::Yes);
    QCOMPARE(f.dict().value("authors").toStringList(), QStringList({"A1", "B & C"}));
    f.updateMultipleStringForKey("authors", page, "<li>", "</li>", ZTFlatten::No);
    QCOMPARE(f.dict().value("authors").toStringList(), QStringList({"A<b>1</b>", "B &amp; C", "outside"}));
    const QString many = QString("<li>a</li>").repeated(200000);
    f.updateMultipleStringForKey("authors", many, "<li>", "</li>", ZTFlatten::No);
    QCOMPARE(f.dict().value("authors").toStringList().size(), 200000);
    // Null tags must not loop for ever.
    f.updateMultipleStringForKey("authors", page, QString(), QString(), ZTFlatten::No);
    QVERIFY(f.dict().contains("authors"));
}

void TestFetcher::price_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("divide");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("cents") << "<p>$12.99</p>" << true << QVariant(12.99);
    QTest::newRow("no divisor") << "<p>12.99</p>" << false << QVariant(1299.0);
    QTest::newRow("10000 refused") << "<p>10000.00</p>" << true << QVariant();
    QTest::newRow("just below") << "<p>9999.99</p>" << true << QVariant(9999.99);
    QTest::newRow("no digits") << "<p>free</p>" << true << QVariant();
    QTest::newRow("huge digit run") << "<p>" + QString(400, '9') + "</p>" << true << QVariant();
}

void TestFetcher::price()
{
    QFETCH(QString, text);
    QFETCH(bool, divide);
    QFETCH(QVariant, expected);
    PlanFetcher f;
    f.request({"price"});
    f.updatePriceForKey("price", text, "<p>", "</p>", divide ? std::optional<double>(100) : std::nullopt);
    if (expected.isValid())
        QCOMPARE(f.dict().value("price").toDouble(), expected.toDouble());
    else
        QVERIFY(!f.dict().contains("price"));
}

void TestFetcher::year_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("fromEnd");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("c1999 from end") << "c1999" << true << QVariant(1999);
    QTest::newRow("c1999 from start") << "c1999" << false << QVariant();
    QTest::newRow("too short") << "199" << true << QVariant();
    QTest::newRow("year first") << " 2004, reprint " << false << QVariant(2004);
    QTest::newRow("zero year") << "0000" << false << QVariant();
}

void TestFetcher::year()
{
    QFETCH(QString, text);
    QFETCH(bool, fromEnd);
    QFETCH(QVariant, expected);
    PlanFetcher f;
    f.request({"year"});
    f.updateYearForKey("year", "<y>" + text + "</y>", "<y>", "</y>",
                       fromEnd ? ZTYearEnd::FromEnd : ZTYearEnd::FromStart);
    QCOMPARE(f.dict().value("year"), expected);
}

void TestFetcher::integer_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("plain");
    QTest::addColumn<QVariant>("nested");
    QTest::newRow("pages") << "480 pages" << QVariant(480) << QVariant(480);
    QTest::newRow("beyond the nested limit") << "12000 pages" << QVariant(12000) << QVariant();
    QTest::newRow("beyond both") << "100000" << QVariant() << QVariant();
    QTest::newRow("zero") << "0" << QVariant() << QVariant();
    QTest::newRow("no digits") << "many" << QVariant() << QVariant();
}

void TestFetcher::integer()
{
    QFETCH(QString, text);
    QFETCH(QVariant, plain);
    QFETCH(QVariant, nested);
    PlanFetcher f;
    f.request({"pages"});
    f.updateIntegerForKey("pages", "<n>" + text + "</n>", "<n>", "</n>");
    QCOMPARE(f.dict().value("pages"), plain);
    PlanFetcher g;
    g.request({"pages"});
    g.updateIntegerForKey("pages", "<d><n>" + text + "</n></d>", "<d>", "</d>", "<n>", "</n>");
    QCOMPARE(g.dict().value("pages"), nested);
}

void TestFetcher::date_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QDate>("date");
    QTest::addColumn<int>("flag");
    QTest::newRow("full") << "2001-02-03" << QDate(2001, 2, 3) << 0;
    QTest::newRow("month and day out of range") << "2001-13-40" << QDate(2001, 6, 15) << 2;
    QTest::newRow("day out of range") << "2001-02-40" << QDate(2001, 2, 15) << 1;
    QTest::newRow("year alone") << "c2001." << QDate(2001, 6, 15) << 2;
    QTest::newRow("day first") << "01-02-2001" << QDate() << -1;
    QTest::newRow("five digit year") << "20011-01-01" << QDate() << -1;
}

void TestFetcher::date()
{
    QFETCH(QString, text);
    QFETCH(QDate, date);
    QFETCH(int, flag);
    PlanFetcher f;
    f.request({"datePublished"});
    f.updateDateForKey("datePublished", "<d>" + text + "</d>", "<d>", "</d>", "yyyy-MM-dd");
    if (!date.isValid()) {
        QVERIFY(!f.dict().contains("datePublished"));
        QVERIFY(!f.dict().contains("datePublishedBitFlag"));
        return;
    }
    const QDateTime stored = f.dict().value("datePublished").toDateTime();
    QCOMPARE(stored.date(), date);
    QCOMPARE(stored.time(), QTime(12, 0));
    QCOMPARE(f.dict().value("datePublishedBitFlag").toInt(), flag);
}

void TestFetcher::nothingIsStoredForAKeyNotRequested()
{
    PlanFetcher f;
    f.request({"pages"});
    f.updateStringForKey("title", "<h1>Emma</h1>", "<h1>", "</h1>");
    f.updatePriceForKey("price", "<p>1</p>", "<p>", "</p>", std::nullopt);
    f.updateDateForKey("datePublished", "<d>2001</d>", "<d>", "</d>", QString());
    QVERIFY(f.dict().isEmpty());
    // A value that fails leaves an earlier value in place.
    f.request({"title"});
    f.updateStringForKey("title", "<h1>Emma</h1>", "<h1>", "</h1>");
    f.updateStringForKey("title", "<h1> </h1>", "<h1>", "</h1>");
    QCOMPARE(f.dict().value("title").toString(), QString("Emma"));
}

void TestFetcher::imageKeysFoldIntoTheRequestedKey()
{
    PlanFetcher f;
    f.request({"image"});
    f.result().insert("imageSmall", QByteArray("small"));
    f.result().insert("imageUrlMedium", "http://x/m.jpg");
    f.processImageKeys();
    QCOMPARE(f.dict().value("image").toByteArray(), QByteArray("small"));
    QVERIFY(!f.dict().contains("imageSmall"));
    // imageUrl was not requested: its variants stay.
    QVERIFY(f.dict().contains("imageUrlMedium"));
    QVERIFY(!f.dict().contains("imageUrl"));

    f.request({"imageUrl"});
    f.result().insert("imageUrlLarge", "http://x/l.jpg");
    f.processImageKeys();
    QCOMPARE(f.dict().value("imageUrl").toString(), QString("http://x/l.jpg"));
    QVERIFY(!f.dict().contains("imageUrlMedium"));
}

void TestFetcher::imageValidity_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("valid");
    QTest::newRow("null") << QByteArray() << false;
    QTest::newRow("one pixel") << png(1, 1) << false;
    QTest::newRow("one pixel high") << png(40, 1) << false;
    QTest::newRow("two by two") << png(2, 2) << true;
    QTest::newRow("not a picture") << QByteArray("<html>no cover</html>") << false;
    QTest::newRow("truncated") << png(40, 40).left(30) << false;
}

void TestFetcher::imageValidity()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, valid);
    QCOMPARE(ZTFetcher::isValidImage(bytes), valid);
}

void TestFetcher::languageCodesHaveNames()
{
    const QVariantMap &languages = ZTFetcher::languageDictionary();
    QVERIFY(languages.size() > 400);
    QCOMPARE(languages.value("eng").toString(), QString("English"));
    QCOMPARE(languages.value("ger").toString(), QString("German"));
    QCOMPARE(languages.value("fre").toString(), QString("French"));
    QCOMPARE(languages.value("jpn").toString(), QString("Japanese"));
    QCOMPARE(languages.value("nob").toString(), QString("Norwegian (Bokm\u00e5l)"));
    QVERIFY(!languages.contains("xx"));
}

void TestFetcher::processedISBN_data()
{
    QTest::addColumn<QString>("original");
    QTest::addColumn<QString>("expected");
    QTest::newRow("EAN with dashes") << "978-0-14-143958-7"
                                     << "0141439580";
    QTest::newRow("ISBN-10 stays") << "0 14 143958 0"
                                   << "0141439580";
    QTest::newRow("979 stays an EAN") << "9791032300824"
                                      << "9791032300824";
    QTest::newRow("bad check digit stays") << "9780141439588"
                                           << "9780141439588";
    QTest::newRow("empty") << "" << QString();
}

void TestFetcher::processedISBN()
{
    QFETCH(QString, original);
    QFETCH(QString, expected);
    PlanFetcher f;
    f.result().insert("originalIsbn", original);
    QCOMPARE(f.processedISBN(), expected);
}

void TestFetcher::aCodeWithNothingToSearchCompletesWithTheSeed()
{
    PlanFetcher f;
    Delivery d(&f);
    QVERIFY(d.run(OneCode));
    QCOMPARE(d.results.first().value("originalIsbn").toString(), QString("9780141439587"));
    QCOMPARE(d.results.first().value("locale").toString(), QString("US"));
    QCOMPARE(d.results.first().value("order").toInt(), 0);
    QCOMPARE(d.statuses, QStringList({"Test Site search complete."}));
    QVERIFY(ZTFakeWeb::instance().requested.isEmpty());
}

void TestFetcher::stepsRunInOrderAndStatusTextsAreExact()
{
    ZTFakeWeb::instance().serveBytes("https://shop.test/a", "<h1>First</h1>", 3);
    ZTFakeWeb::instance().serveBytes("https://shop.test/b", "<h1>Second</h1>");
    PlanFetcher f;
    f.plan = {{"main", QUrl("http://shop.test/a")}, {"detail", QUrl("https://shop.test/b")}};
    Delivery d(&f);
    QList<QVariantMap> infos;
    ZTObservation watch("ZTFetchStatusUpdated", &f, [&](const ZTNotification &n) { infos << n.userInfo; });
    QVERIFY(d.run(OneCode));
    // http leaves as https; chunks are joined.
    QCOMPARE(ZTFakeWeb::instance().requested, QStringList({"https://shop.test/a", "https://shop.test/b"}));
    QCOMPARE(d.results.first().value("title").toString(), QString("Second"));
    QCOMPARE(d.statuses, QStringList({"Searching Test Site\u2026", "Searching Test Site\u2026",
                                      "Test Site search complete."}));
    QCOMPARE(infos.first().value("isbn").toString(), QString("9780141439587"));
}

void TestFetcher::aStepWithoutDescriptionEndsTheRun()
{
    ZTFakeWeb::instance().serveBytes("https://shop.test/a", "<h1>First</h1>");
    PlanFetcher f;
    f.plan = {{"main", QUrl("https://shop.test/a")},
              {"missing", QVariant()},
              {"never", QUrl("https://shop.test/b")}};
    Delivery d(&f);
    QVERIFY(d.run(OneCode));
    QCOMPARE(ZTFakeWeb::instance().requested, QStringList({"https://shop.test/a"}));
    QCOMPARE(d.results.first().value("title").toString(), QString("First"));
}

void TestFetcher::postGoesOutAsAPlainGet()
{
    ZTFakeWeb::instance().serveBytes("https://library.test/search", "<h1>Found</h1>");
    PlanFetcher f;
    f.plan = {{"firstPage", QVariantMap{{"postURL", QUrl("https://library.test/search")},
                                        {"postContent", "isbn=0141439580"},
                                        {"postHeaders", QVariantMap{{"X-Test", "1"}}}}}};
    Delivery d(&f);
    QVERIFY(d.run(OneCode));
    QCOMPARE(ZTFakeWeb::instance().methods, QList<QByteArray>({"GET"}));
    QCOMPARE(d.results.first().value("title").toString(), QString("Found"));
}

void TestFetcher::transportFailureGivesNullData()
{
    ZTFakeWeb::instance().failWith("https://shop.test/a");
    PlanFetcher f;
    f.plan = {{"main", QUrl("https://shop.test/a")}};
    Delivery d(&f);
    QVERIFY(d.run(OneCode));
    QCOMPARE(f.received.size(), 1);
    QVERIFY(!f.received.first().has_value());
}

void TestFetcher::redirectLoopEndsAsAFailure()
{
    ZTFakeWeb::instance().redirect("https://shop.test/a", "https://shop.test/b");
    ZTFakeWeb::instance().redirect("https://shop.test/b", "https://shop.test/a");
    PlanFetcher f;
    f.plan = {{"main", QUrl("https://shop.test/a")}};
    Delivery d(&f);
    QVERIFY(d.run(OneCode));
    QVERIFY(!f.received.first().has_value());
    QCOMPARE(ZTFakeWeb::instance().requested.size(), ZTFetchSession::s_maxRedirects + 1);
}

void TestFetcher::enormousPageEndsAsAFailure()
{
    ZTFakeWeb::Response huge;
    const QByteArray chunk(4 * 1024 * 1024, 'a');
    for (qsizetype sent = 0; sent <= ZTFetcher::s_maxResponseBytes; sent += chunk.size())
        huge.chunks << chunk;
    ZTFakeWeb::instance().serve("https://shop.test/huge", huge);
    PlanFetcher f;
    f.plan = {{"main", QUrl("https://shop.test/huge")}};
    Delivery d(&f);
    QVERIFY(d.run(OneCode));
    QCOMPARE(f.received.size(), 1);
    QVERIFY(!f.received.first().has_value());
}

void TestFetcher::undecodableBytesGiveNoText()
{
    QVERIFY(ZTFetcher::stringFromWebData(QByteArray("<h1>caf\xe9</h1>")).isNull());
    QVERIFY(ZTFetcher::stringFromWebData(std::nullopt).isNull());
    QCOMPARE(ZTFetcher::stringFromWebData(QByteArray("<h1>caf\xc3\xa9</h1>")), QString("<h1>caf\u00e9</h1>"));
    ZTFakeWeb::instance().serveBytes("https://shop.test/latin1", "<h1>caf\xe9</h1>");
    PlanFetcher f;
    f.plan = {{"main", QUrl("https://shop.test/latin1")}};
    Delivery d(&f);
    QVERIFY(d.run(OneCode));
    QVERIFY(!d.results.first().contains("title"));
}

void TestFetcher::rateLimitedSitePostsWaiting()
{
    PlanFetcher f;
    f.allowFetch = false;
    f.plan = {{"main", QUrl("https://shop.test/a")}};
    Delivery d(&f);
    d.manager.fetchCodes(OneCode);
    QCOMPARE(d.statuses, QStringList({"Waiting for Test Site..."}));
    QVERIFY(ZTFakeWeb::instance().requested.isEmpty());
    QVERIFY(d.results.isEmpty());
}

void TestFetcher::rateLimitedSiteWaitsForItsSpacing()
{
    ZTFakeWeb::instance().serveBytes("https://library.test/1", "<h1>One</h1>");
    ZTFakeWeb::instance().serveBytes("https://library.test/2", "<h1>Two</h1>");
    PlanFetcher f;
    f.spacing = 0.3;
    f.plan = {{"firstPage", QUrl("https://library.test/1")}, {"marcPage", QUrl("https://library.test/2")}};
    Delivery d(&f);
    QElapsedTimer clock;
    clock.start();
    QVERIFY(d.run(OneCode));
    QVERIFY(clock.elapsed() >= 250);
    QCOMPARE(d.statuses, QStringList({"Searching Test Site\u2026", "Waiting for Test Site...",
                                      "Searching Test Site\u2026", "Test Site search complete."}));
    QCOMPARE(d.results.first().value("title").toString(), QString("Two"));
}

void TestFetcher::cancelledTransferStillReachesProcessData()
{
    ZTFakeWeb::instance().serveBytes("https://shop.test/a", "<h1>A</h1>");
    PlanFetcher f;
    f.plan = {{"main", QUrl("https://shop.test/a")}};
    Delivery d(&f);
    d.manager.fetchCodes(OneCode);
    QVERIFY(f.isFetching());
    d.manager.cancelFetch();
    QVERIFY(!f.isFetching());
    QVERIFY(QTest::qWaitFor([&] { return !d.results.isEmpty(); }, 5000));
    QCOMPARE(f.received.size(), 1);
    QVERIFY(!f.received.first().has_value());
    QVERIFY(!d.results.first().contains("title"));
}

void TestFetcher::aFetcherDeletedDuringItsPauseSendsNothing()
{
    ZTFetcher::setPauseInterval(50);
    ZTFakeWeb::instance().serveBytes("https://shop.test/a", "<h1>A</h1>");
    auto *f = new PlanFetcher;
    f->plan = {{"main", QUrl("https://shop.test/a")}};
    ZTFetchManager manager("test");
    manager.addFetcher(f);
    int done = 0;
    ZTObservation watch("ZTFetchManagerDoneFetching", &manager, [&](const ZTNotification &) { ++done; });
    QTimer::singleShot(10, [f] { delete f; });
    manager.fetchCodes(OneCode);
    QTest::qWait(100);
    QCOMPARE(done, 0);
    QVERIFY(ZTFakeWeb::instance().requested.isEmpty());
    ZTFetcher::setPauseInterval(5);
}

void TestFetcher::thePauseTurnsTheEventLoopAndStampsTheDate()
{
    ZTFetcher::setPauseInterval(120);
    ZTFakeWeb::instance().serveBytes("https://shop.test/a", "<h1>A</h1>");
    PlanFetcher f;
    f.plan = {{"main", QUrl("https://shop.test/a")}};
    bool timerRan = false;
    QTimer::singleShot(10, [&] { timerRan = true; });
    QElapsedTimer clock;
    clock.start();
    Delivery d(&f);
    d.manager.fetchCodes(OneCode);
    // fetchCodes returns once the request is out, after the pause, during
    // which other events were served.
    QVERIFY(clock.elapsed() >= 100);
    QVERIFY(timerRan);
    QVERIFY(f.lastFetchDate().isValid());
    QVERIFY(QTest::qWaitFor([&] { return !d.results.isEmpty(); }, 5000));
    ZTFetcher::setPauseInterval(5);
}

void TestFetcher::realNetworkThroughTheSiteOverride()
{
    ZTFakeWeb::instance().uninstall();
    ZTTestHttpServer server;
    QVERIFY(server.isListening());
    server.page("/product/1", "<html><h1>Over the wire</h1></html>");
    server.redirect("/old/1", "/product/1");
    server.redirect("/loop", "/loop");
    ZTSiteOverride::setOverrides("www.shop.test=" + server.baseURL());

    PlanFetcher f;
    f.plan = {{"main", QUrl("https://www.shop.test/old/1")}};
    Delivery d(&f);
    QVERIFY(d.run(OneCode));
    QCOMPARE(d.results.first().value("title").toString(), QString("Over the wire"));
    QCOMPARE(server.requestedPaths, QStringList({"/old/1", "/product/1"}));

    PlanFetcher looping;
    looping.plan = {{"main", QUrl("https://www.shop.test/loop")},
                    {"after", QUrl("https://www.shop.test/missing")}};
    Delivery d2(&looping);
    QVERIFY(d2.run(OneCode));
    QVERIFY(!looping.received.first().has_value());
    // A 404 page is a page like any other.
    QCOMPARE(looping.received.size(), 2);
    QVERIFY(looping.received.last().value_or(QByteArray()).contains("Not here"));
    ZTSiteOverride::setOverrides(QString());
    ZTFakeWeb::instance().install();
}

ZT_TEST_MAIN(TestFetcher)
#include "tst_fetcher.moc"
