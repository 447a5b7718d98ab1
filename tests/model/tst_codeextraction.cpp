#include "model/ZTCodeFormatter.h"
#include "support/ZTTestMain.h"

#include <QTest>

Q_DECLARE_METATYPE(ZTMediaKind)

// Finding codes in free text, URLs and scanner input. Check digits are worked
// out in tst_codeformatter.cpp.
class TestCodeExtraction : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanupTestCase();

    void isbnFromString_data();
    void isbnFromString();
    void eanAndUpcFromString();
    void asinFromString_data();
    void asinFromString();
    void comicNumbersFromString_data();
    void comicNumbersFromString();
    void comicURLs_data();
    void comicURLs();
    void amazonURLs();
    void submarinoPageIsReadOnce();
    void submarinoFailureIsNotRemembered();
    void submarinoWithoutGetterYieldsNothing();
    void codeDictionary_data();
    void codeDictionary();
    void extractorsSurviveHostileText();
    void bibTexCode_data();
    void bibTexCode();

private:
    QList<QUrl> m_requested;
};

namespace {
const QByteArray s_submarinoPage = "<html><ul><li><strong>Editora: </strong>Cia. das Letras</li>"
                                   "<li><strong>ISBN: </strong>8535902775</li></ul></html>";
const QString s_productUrl = QStringLiteral(
    "https://www.submarino.com.br/books_productdetails.asp?Query=ProductPage&ProdTypeId=1&ProdId=123456");
} // namespace

void TestCodeExtraction::init()
{
    ZTCodeFormatter::setIsbnValidationAllowsASINs(false);
    ZTCodeFormatter::clearPageCache();
    m_requested.clear();
    ZTCodeFormatter::setPageGetter([this](const QUrl &url) {
        m_requested.append(url);
        return s_submarinoPage;
    });
}

void TestCodeExtraction::cleanupTestCase()
{
    ZTCodeFormatter::setPageGetter(nullptr);
    ZTCodeFormatter::setIsbnValidationAllowsASINs(false);
}

void TestCodeExtraction::isbnFromString_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("asins");
    QTest::addColumn<QString>("isbn");
    QTest::newRow("EAN behind a label") << "ISBN 9780306406157" << false << "0306406152";
    QTest::newRow("formatted EAN") << "ISBN 978-0-306-40615-7" << false << "0306406152";
    QTest::newRow("valid ISBN as it stands") << "0-306-40615-2" << false << "0-306-40615-2";
    QTest::newRow("ISBN inside text") << "ISBN: 0-306-40615-2 (pbk.)" << false << "0306406152";
    QTest::newRow("EAN with price add-on") << "9780306406157 51999" << false << "0306406152";
    QTest::newRow("979 has no ISBN-10") << "9791234567896" << false << QString();
    QTest::newRow("ASIN while allowed") << "B00005JNS8" << true << "B00005JNS8";
    QTest::newRow("ASIN while not allowed") << "B00005JNS8" << false << QString();
    QTest::newRow("Amazon product URL")
        << "http://www.amazon.com/dp/0306406152/ref=sr_1_1" << false << "0306406152";
    QTest::newRow("Amazon URL without code")
        << "http://www.amazon.com/gp/help/9780306406157" << false << QString();
    QTest::newRow("Submarino product URL")
        << "http://www.submarino.com.br/"
           "books_productdetails.asp?Query=ProductPage&ProdTypeId=1&ProdId=123456&st=x"
        << false << "8535902775";
    QTest::newRow("no digits") << "no digits in here" << false << QString();
    QTest::newRow("too short") << "030640615" << false << QString();
    QTest::newRow("empty") << "" << false << QString();
    QTest::newRow("null") << QString() << false << QString();
    QTest::newRow("Arabic-Indic ISBN")
        << "\u0660\u0663\u0660\u0666\u0664\u0660\u0666\u0661\u0665\u0662" << false
        << "\u0660\u0663\u0660\u0666\u0664\u0660\u0666\u0661\u0665\u0662";
}

void TestCodeExtraction::isbnFromString()
{
    QFETCH(QString, text);
    QFETCH(bool, asins);
    QFETCH(QString, isbn);
    ZTCodeFormatter::setIsbnValidationAllowsASINs(asins);
    const QString found = ZTCodeFormatter::isbnFromString(text);
    QCOMPARE(found, isbn);
    QCOMPARE(found.isNull(), isbn.isNull());
}

void TestCodeExtraction::eanAndUpcFromString()
{
    QCOMPARE(ZTCodeFormatter::eanFromString(QStringLiteral("EAN9780306406157")),
             QStringLiteral("9780306406157"));
    QCOMPARE(ZTCodeFormatter::eanFromString(QStringLiteral("x9780306406157xyz")),
             QStringLiteral("9780306406157"));
    QVERIFY(ZTCodeFormatter::eanFromString(QStringLiteral("978030640615")).isNull()); // twelve: too short
    QVERIFY(ZTCodeFormatter::eanFromString(QStringLiteral("no code at all here")).isNull());
    QCOMPARE(ZTCodeFormatter::upcFromString(QStringLiteral("UPC 036000291452")),
             QStringLiteral("036000291452"));
    QCOMPARE(ZTCodeFormatter::upcFromString(QStringLiteral("036000291452 05")),
             QStringLiteral("036000291452"));
    QVERIFY(ZTCodeFormatter::upcFromString(QStringLiteral("03600029145")).isNull());
    QVERIFY(ZTCodeFormatter::upcFromString(QString()).isNull());
}

void TestCodeExtraction::asinFromString_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("asin");
    QTest::newRow("in a path") << "amazon.com/dp/B00005JNS8/ref"
                               << "B00005JNS8";
    QTest::newRow("alone") << "B00005JNS8"
                           << "B00005JNS8";
    QTest::newRow("lower case") << "b00005jns8 and more" << QString();
    QTest::newRow("window too short") << "xB00005JNS" << QString();
    QTest::newRow("no B") << "0306406152" << QString();
    QTest::newRow("later B") << "ABC B00005JNS8"
                             << "B00005JNS8";
    QTest::newRow("short") << "B0000" << QString();
}

void TestCodeExtraction::asinFromString()
{
    QFETCH(QString, text);
    QFETCH(QString, asin);
    QCOMPARE(ZTCodeFormatter::asinFromString(text), asin);
}

void TestCodeExtraction::comicNumbersFromString_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("gcdn");
    QTest::addColumn<QString>("cbdbn");
    QTest::newRow("letter and trailing junk") << "g12345x"
                                              << "12345" << QString();
    QTest::newRow("bare number") << "12345"
                                 << "12345"
                                 << "12345";
    QTest::newRow("ComicBookDB letter") << "c678" << QString() << "678";
    QTest::newRow("blanks trimmed") << "  g42 \n"
                                    << "42" << QString();
    QTest::newRow("letter alone") << "g" << QString() << QString();
    QTest::newRow("letter then text") << "gx1" << QString() << QString();
    QTest::newRow("upper-case letter is no prefix") << "G12" << QString() << QString();
    QTest::newRow("blank") << " \t " << QString() << QString();
    QTest::newRow("null") << QString() << QString() << QString();
}

void TestCodeExtraction::comicNumbersFromString()
{
    QFETCH(QString, text);
    QFETCH(QString, gcdn);
    QFETCH(QString, cbdbn);
    QCOMPARE(ZTCodeFormatter::gcdnFromString(text), gcdn);
    QCOMPARE(ZTCodeFormatter::cbdbnFromString(text), cbdbn);
}

void TestCodeExtraction::comicURLs_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("gcd");
    QTest::addColumn<QString>("gcdSeries");
    QTest::addColumn<QString>("cbdb");
    QTest::addColumn<QString>("cbdbSeries");
    const QString none;
    QTest::newRow("GCD issue") << "https://www.comics.org/issue/12345/"
                               << "12345" << none << none << none;
    QTest::newRow("GCD bare host") << "https://comics.org/issue/7"
                                   << "7" << none << none << none;
    QTest::newRow("GCD series") << "https://www.comics.org/series/678/" << none << "678" << none << none;
    QTest::newRow("GCD no number") << "https://www.comics.org/issue/abc/" << none << none << none << none;
    QTest::newRow("look-alike host") << "https://evilcomics.org/issue/1/" << none << none << none << none;
    QTest::newRow("CBDB issue") << "http://www.comicbookdb.com/issue.php?ID=98765" << none << none << "98765"
                                << none;
    QTest::newRow("CBDB cover")
        << "http://www.comicbookdb.com/graphics/comic_graphics/1/23/98765_20060101.jpg" << none << none
        << "98765" << none;
    QTest::newRow("CBDB cover without number")
        << "http://www.comicbookdb.com/graphics/comic_graphics/x_y.jpg" << none << none << none << none;
    QTest::newRow("CBDB title") << "http://www.comicbookdb.com/title.php?ID=555" << none << none << none
                                << "555";
    QTest::newRow("CBDB gallery") << "http://comicbookdb.com/title_covergallery.php?ID=556&p=2" << none
                                  << none << none << "556";
    QTest::newRow("CBDB path on other host")
        << "http://example.com/issue.php?ID=1" << none << none << none << none;
    QTest::newRow("not a URL") << "issue/12 ID=3" << none << none << none << none;
}

void TestCodeExtraction::comicURLs()
{
    QFETCH(QString, url);
    QFETCH(QString, gcd);
    QFETCH(QString, gcdSeries);
    QFETCH(QString, cbdb);
    QFETCH(QString, cbdbSeries);
    QCOMPARE(ZTCodeFormatter::codeFromURLGCD(url), gcd);
    QCOMPARE(ZTCodeFormatter::codeFromURLGCDSeries(url), gcdSeries);
    QCOMPARE(ZTCodeFormatter::codeFromURLCBDB(url), cbdb);
    QCOMPARE(ZTCodeFormatter::codeFromURLCBDBSeries(url), cbdbSeries);
}

void TestCodeExtraction::amazonURLs()
{
    QCOMPARE(ZTCodeFormatter::isbnFromAmazonURL(
                 QStringLiteral("https://images.amazon.com/images/P/0306406152.01.LZZZZZZZ.jpg")),
             QStringLiteral("0306406152"));
    QCOMPARE(
        ZTCodeFormatter::isbnFromAmazonURL(QStringLiteral("https://www.amazon.de/s?k=x%2F0306406152%2Fy")),
        QStringLiteral("0306406152"));
    QVERIFY(
        ZTCodeFormatter::isbnFromAmazonURL(QStringLiteral("https://www.amazon.com/dp/B00005JNS8")).isNull());
    ZTCodeFormatter::setIsbnValidationAllowsASINs(true);
    QCOMPARE(ZTCodeFormatter::isbnFromAmazonURL(QStringLiteral("https://www.amazon.com/dp/B00005JNS8")),
             QStringLiteral("B00005JNS8"));
    QVERIFY(ZTCodeFormatter::isbnFromAmazonURL(QString()).isNull());
}

void TestCodeExtraction::submarinoPageIsReadOnce()
{
    const QString productLink =
        QStringLiteral("http://www.submarino.com.br/"
                       "books_productdetails.asp?Query=ProductPage&ProdTypeId=1&ProdId=123456&x=1");
    QCOMPARE(ZTCodeFormatter::isbnFromSubmarinoURL(productLink), QStringLiteral("8535902775"));
    QCOMPARE(m_requested, QList<QUrl>{QUrl(s_productUrl)});
    // The cover picture of the same product, and the pop-up link, hit the cache.
    QCOMPARE(ZTCodeFormatter::isbnFromString(
                 QStringLiteral("http://img.submarino.com.br/images/books/cover/img1/123456.jpg")),
             QStringLiteral("8535902775"));
    QCOMPARE(
        ZTCodeFormatter::isbnFromSubmarinoURL(QStringLiteral(
            "javascript:openPopUp('/AllProdsBigImage.asp?Query=ProductPage&ProdTypeId=1&ProdId=123456&a')")),
        QStringLiteral("8535902775"));
    QCOMPARE(m_requested.size(), 1);
    // Another type id is another page.
    ZTCodeFormatter::isbnFromSubmarinoURL(
        QStringLiteral("http://www.submarino.com.br/"
                       "books_productdetails.asp?Query=ProductPage&ProdTypeId=2&ProdId=123456&"));
    QCOMPARE(m_requested.size(), 2);
    QVERIFY(ZTCodeFormatter::isbnFromSubmarinoURL(QStringLiteral("http://www.submarino.com.br/")).isNull());
    QCOMPARE(m_requested.size(), 2);
}

void TestCodeExtraction::submarinoFailureIsNotRemembered()
{
    int calls = 0;
    ZTCodeFormatter::setPageGetter([&calls](const QUrl &) {
        ++calls;
        return calls == 1 ? QByteArray() : QByteArray("<strong>ISBN: </strong>85-359-0277-5 \xE9</li>");
    });
    const QString link = QStringLiteral("http://img.submarino.com.br/images/books/cover/img7/999.jpg");
    QVERIFY(ZTCodeFormatter::isbnFromSubmarinoURL(link).isNull());
    // The second page is no valid UTF-8 and is read as Latin-1.
    QCOMPARE(ZTCodeFormatter::isbnFromSubmarinoURL(link), QStringLiteral("85-359-0277-5 \u00E9"));
    QCOMPARE(calls, 2);
}

void TestCodeExtraction::submarinoWithoutGetterYieldsNothing()
{
    ZTCodeFormatter::setPageGetter(nullptr);
    QVERIFY(ZTCodeFormatter::isbnFromSubmarinoURL(s_productUrl + QLatin1Char('&')).isNull());
}

void TestCodeExtraction::codeDictionary_data()
{
    QTest::addColumn<ZTMediaKind>("kind");
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QVariantMap>("expected");
    const auto one = [](const char *key, const char *value) {
        return QVariantMap{{QLatin1String(key), QString::fromUtf8(value)}};
    };
    QTest::newRow("book EAN") << ZTMediaKind::Book << "ISBN 9780306406157" << one("isbn", "0306406152");
    QTest::newRow("book LCCN") << ZTMediaKind::Book << "n78-890351" << one("lccn", "n78-890351");
    QTest::newRow("book nothing") << ZTMediaKind::Book << "hello world" << QVariantMap();
    QTest::newRow("book empty") << ZTMediaKind::Book << "" << QVariantMap();
    QTest::newRow("album UPC with add-on")
        << ZTMediaKind::Album << "036000291452 12345" << one("upc", "036000291452");
    QTest::newRow("album ASIN") << ZTMediaKind::Album << "B00005JNS8" << one("asin", "B00005JNS8");
    QTest::newRow("album EAN") << ZTMediaKind::Album << "9780306406157" << one("upc", "9780306406157");
    QTest::newRow("movie ASIN behind text")
        << ZTMediaKind::Movie << "asin B00005JNS8" << one("asin", "B00005JNS8");
    QTest::newRow("movie UPC in text")
        << ZTMediaKind::Movie << "UPC:036000291452 x" << one("upc", "036000291452");
    QTest::newRow("movie nothing") << ZTMediaKind::Movie << "a movie" << QVariantMap();
    QTest::newRow("comic bare number") << ZTMediaKind::Comic << "12345" << one("gcdn", "12345");
    QTest::newRow("comic g") << ZTMediaKind::Comic << "g12" << one("gcdn", "12");
    QTest::newRow("comic c") << ZTMediaKind::Comic << "c12345" << one("cbdbn", "12345");
    QTest::newRow("comic word") << ZTMediaKind::Comic << "comic" << QVariantMap();
}

void TestCodeExtraction::codeDictionary()
{
    QFETCH(ZTMediaKind, kind);
    QFETCH(QString, raw);
    QFETCH(QVariantMap, expected);
    QCOMPARE(ZTCodeFormatter::codeDictionaryForRawCode(kind, raw), expected);
}

void TestCodeExtraction::extractorsSurviveHostileText()
{
    QString mixed;
    for (int i = 0; i < 20000; ++i)
        mixed += QStringLiteral("9-7 8\u0663\uFF15B");
    const QStringList inputs = {
        QString(1 << 20, QLatin1Char('7')),
        QString(1 << 18, QLatin1Char('B')),
        mixed,
        QString(3000, QChar(0xDFFF)),
        QStringLiteral("amazon") + QString(10000, QLatin1Char('/')),
        QStringLiteral("submarino.com.br ProdTypeId=&ProdId=&"),
        QStringLiteral("..........."),
    };
    for (const QString &text : inputs) {
        for (ZTMediaKind kind : ZTMediaKinds::all)
            ZTCodeFormatter::codeDictionaryForRawCode(kind, text);
        ZTCodeFormatter::eanFromString(text);
        ZTCodeFormatter::codeFromURLCBDB(text);
        ZTCodeFormatter::codeFromURLGCD(text);
    }
    // A run of sevens holds no "978" EAN, but ten equal digits always make an
    // ISBN-10: 7*(10+9+...+2) + 7 = 7*55, a multiple of 11.
    QCOMPARE(ZTCodeFormatter::isbnFromString(inputs.first()), QString(10, QLatin1Char('7')));
    QCOMPARE(ZTCodeFormatter::upcFromString(inputs.first()), QString(12, QLatin1Char('7')));
}

void TestCodeExtraction::bibTexCode_data()
{
    QTest::addColumn<QStringList>("authors");
    QTest::addColumn<QString>("title");
    QTest::addColumn<int>("year");
    QTest::addColumn<QString>("key");
    QTest::newRow("classic") << QStringList{"Knuth, Donald E."} << "Art of Computer Programming" << 1968
                             << "Knuth:CompProg1968";
    QTest::newRow("accents and particles")
        << QStringList{"M\u00FCller, Hans", "van Rossum, Guido"} << "\u00DCber die Natur der Dinge" << 2001
        << "MullervanRossum:UberNatuDing2001";
    QTest::newRow("no comma, first word")
        << QStringList{"Jean Paul", "Plato"} << "Hesperus" << 0 << "JeanPlato:Hesp";
    QTest::newRow("punctuation trimmed")
        << QStringList{"O'Brien, Flann"} << "Hello, World! Again: Now" << 0 << "OBrien:HellWorlAgai";
    QTest::newRow("four pieces at most")
        << QStringList{} << "Alpha Beta Gamma Delta Epsilon" << 0 << "AlphBetaGammDelt";
    QTest::newRow("nothing") << QStringList{} << "" << 0 << "";
    QTest::newRow("ligatures spelled out")
        << QStringList{"\u00D8stergaard, \u00C6sa"} << "Stra\u00DFe" << 0 << "Ostergaard:Stra";
}

void TestCodeExtraction::bibTexCode()
{
    QFETCH(QStringList, authors);
    QFETCH(QString, title);
    QFETCH(int, year);
    QFETCH(QString, key);
    QCOMPARE(ZTCodeFormatter::bibTexCode(authors, title, year ? std::optional<int>(year) : std::nullopt),
             key);
}

ZT_TEST_MAIN(TestCodeExtraction)
#include "tst_codeextraction.moc"
