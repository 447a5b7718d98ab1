#include "base/ZTDataExtras.h"

#include "base/ZTCalendarExtras.h"
#include "base/ZTCollections.h"
#include "base/ZTStringExtras.h"
#include "support/ZTTestMain.h"

#include <QRandomGenerator>
#include <QTest>

class TestDataExtras : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void base64Vectors_data();
    void base64Vectors();
    void base64MatchesQtOnRandomBytes();
    void base64WithLineBreaks();
    void base64StopsAtGarbage();
    void digests_data();
    void digests();
    void bytesAsText();
    void ensureSecure_data();
    void ensureSecure();
    void requestsCarryTheFixedAgent();
    void middleDates();
    void cueCat_data();
    void cueCat();
    void collections();
};

void TestDataExtras::base64Vectors_data()
{
    // RFC 4648, section 10.
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("encoded");
    QTest::newRow("empty") << QByteArray("") << "";
    QTest::newRow("f") << QByteArray("f") << "Zg==";
    QTest::newRow("fo") << QByteArray("fo") << "Zm8=";
    QTest::newRow("foo") << QByteArray("foo") << "Zm9v";
    QTest::newRow("foob") << QByteArray("foob") << "Zm9vYg==";
    QTest::newRow("fooba") << QByteArray("fooba") << "Zm9vYmE=";
    QTest::newRow("foobar") << QByteArray("foobar") << "Zm9vYmFy";
    QTest::newRow("high bytes") << QByteArray("\xFF\xFE\x00\x01", 4) << "//4AAQ==";
}

void TestDataExtras::base64Vectors()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, encoded);
    QCOMPARE(ZTData::base64EncodedString(bytes), encoded);
    QCOMPARE(ZTData::decodeBase64WithNewLines(encoded.toLatin1(), ZTBase64Lines::Unbroken), bytes);
}

void TestDataExtras::base64MatchesQtOnRandomBytes()
{
    // Long input stays on one line and agrees with Qt's own encoder.
    QRandomGenerator random(42);
    for (int size : {1, 47, 48, 49, 511, 512, 513, 5000}) {
        QByteArray bytes(size, Qt::Uninitialized);
        for (char &b : bytes)
            b = char(random.bounded(256));
        const QString encoded = ZTData::base64EncodedString(bytes);
        QCOMPARE(encoded, QString::fromLatin1(bytes.toBase64()));
        QVERIFY(!encoded.contains(QLatin1Char('\n')));
        QCOMPARE(ZTData::decodeBase64WithNewLines(encoded.toLatin1(), ZTBase64Lines::Unbroken), bytes);
    }
}

void TestDataExtras::base64WithLineBreaks()
{
    QByteArray bytes(1000, Qt::Uninitialized);
    for (int i = 0; i < bytes.size(); ++i)
        bytes[i] = char(i * 7);
    const QByteArray flat = bytes.toBase64();
    QByteArray broken;
    for (int at = 0; at < flat.size(); at += 64)
        broken += flat.mid(at, 64) + '\n';
    QCOMPARE(ZTData::decodeBase64WithNewLines(broken, ZTBase64Lines::Broken), bytes);
}

void TestDataExtras::base64StopsAtGarbage()
{
    QVERIFY(ZTData::decodeBase64WithNewLines(QByteArray("!!!!"), ZTBase64Lines::Unbroken).isEmpty());
    QVERIFY(ZTData::decodeBase64WithNewLines(QByteArray(), ZTBase64Lines::Broken).isEmpty());
}

void TestDataExtras::digests_data()
{
    // RFC 1321 and FIPS 180 test vectors.
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("md5");
    QTest::addColumn<QByteArray>("sha1");
    QTest::newRow("empty") << QByteArray("") << QByteArray("d41d8cd98f00b204e9800998ecf8427e")
                           << QByteArray("da39a3ee5e6b4b0d3255bfef95601890afd80709");
    QTest::newRow("abc") << QByteArray("abc") << QByteArray("900150983cd24fb0d6963f7d28e17f72")
                         << QByteArray("a9993e364706816aba3e25717850c26c9cd0d89d");
    QTest::newRow("message digest") << QByteArray("message digest")
                                    << QByteArray("f96b697d7cb7938d525a2f31aaf161d0")
                                    << QByteArray("c12252ceda8be8994d5fa0290a47231c1d16aae3");
}

void TestDataExtras::digests()
{
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, md5);
    QFETCH(QByteArray, sha1);
    QCOMPARE(ZTData::md5(input).toHex(), md5);
    QCOMPARE(ZTData::sha1(input).toHex(), sha1);
}

void TestDataExtras::bytesAsText()
{
    QCOMPARE(ZTData::htmlString(QByteArray("caf\xC3\xA9")), QStringLiteral("caf\u00E9"));
    QCOMPARE(ZTData::htmlString(QByteArray("plain")), QStringLiteral("plain"));
    QVERIFY(ZTData::htmlString(QByteArray("caf\xE9")).isNull());
    QVERIFY(ZTData::htmlString(QByteArray("\xC3")).isNull()); // cut in the middle of a character
}

void TestDataExtras::ensureSecure_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("expected");
    QTest::newRow("http") << "http://example.com/a?b=c"
                          << "https://example.com/a?b=c";
    QTest::newRow("upper case") << "HTTP://example.com/"
                                << "https://example.com/";
    QTest::newRow("https stays") << "https://example.com/"
                                 << "https://example.com/";
    QTest::newRow("ftp stays") << "ftp://example.com/"
                               << "ftp://example.com/";
    QTest::newRow("httpx stays") << "httpx://example.com/"
                                 << "httpx://example.com/";
    QTest::newRow("empty") << ""
                           << "";
}

void TestDataExtras::ensureSecure()
{
    QFETCH(QString, url);
    QFETCH(QString, expected);
    QCOMPARE(ZTData::ensureSecure(QUrl(url)).toString(), expected);
}

void TestDataExtras::requestsCarryTheFixedAgent()
{
    QNetworkRequest request(QUrl(QStringLiteral("https://example.com/x")));
    request.setRawHeader("Referer", "https://example.com/");
    const QNetworkRequest updated = ZTData::updatedHeaderRequest(request);
    QCOMPARE(updated.header(QNetworkRequest::UserAgentHeader).toString(),
             QStringLiteral("CFNetwork/811.5.4 Darwin/16.7.0 (x86_64)"));
    QCOMPARE(updated.rawHeader("Referer"), QByteArray("https://example.com/"));
    QCOMPARE(updated.url(), request.url());
    QVERIFY(request.header(QNetworkRequest::UserAgentHeader).isNull()); // the original is untouched
}

void TestDataExtras::middleDates()
{
    QCOMPARE(ZTCalendar::dateInMiddleOfYear(1968), QDateTime(QDate(1968, 6, 15), QTime(12, 0)));
    QCOMPARE(ZTCalendar::dateAtMiddayWithYear(2024, 2, 29), QDateTime(QDate(2024, 2, 29), QTime(12, 0)));
    QCOMPARE(ZTCalendar::dateWithYear(1999, 12, 31, 23, 59, 58),
             QDateTime(QDate(1999, 12, 31), QTime(23, 59, 58)));
    QVERIFY(!ZTCalendar::dateAtMiddayWithYear(2023, 2, 29).isValid());
    QVERIFY(!ZTCalendar::dateWithYear(2000, 1, 1, 24, 0, 0).isValid());
    QCOMPARE(ZTCalendar::dateInMiddleOfYear(1968).date().year(), 1968);
    QVERIFY(ZTCalendar::gregorianCalendar().isGregorian());
}

void TestDataExtras::cueCat_data()
{
    // The scanner's bytes are the code's ASCII XOR 67 in its own base64
    // alphabet (a-z 0-25, A-Z 26-51, 0-9 52-61, "+" 62, "-" 63). By hand for
    // "978": 57^67=122, 55^67=116, 56^67=123 = 01111010 01110100 01111011,
    // in 6-bit groups 011110 100111 010001 111011 = 30 39 17 59 = "ENr7".
    QTest::addColumn<QString>("scanned");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<QString>("decoded");
    QTest::newRow("978") << ".serial.cGen.ENr7." << true << "978";
    QTest::newRow("EAN-13") << ".C3nZC3nZC3nYCxP2Dq.cGen.ENr7C3bZDxDZDxj2Da." << true << "9780306406157";
    QTest::newRow("two-character group gives one") << ".a.b.ENr7EN." << true << "9789";
    QTest::newRow("three-character group gives two") << ".a.b.ENr." << true << "97";
    QTest::newRow("one-character group gives nothing") << ".a.b.ENr7E." << true << "978";
    QTest::newRow("unknown first character spoils the group") << ".a.b.*Nr7ENr7." << true << "978";
    QTest::newRow("unknown third character cuts it") << ".a.b.EN*7." << true << "9";
    QTest::newRow("too few fields") << ".a.b" << true << QString();
    QTest::newRow("empty code field") << "...." << true << "";
    QTest::newRow("no leading dot") << "ENr7" << false << QString();
    QTest::newRow("dot alone") << "." << false << QString();
}

void TestDataExtras::cueCat()
{
    QFETCH(QString, scanned);
    QFETCH(bool, valid);
    QFETCH(QString, decoded);
    QCOMPARE(ZTText::isValidEncodedCueCatCode(scanned), valid);
    if (valid) {
        const QString result = ZTText::decodedValueFromValidEncodedCueCatCode(scanned);
        QCOMPARE(result, decoded);
        QCOMPARE(result.isNull(), decoded.isNull());
    }
}

void TestDataExtras::collections()
{
    const QList<int> numbers{1, 2, 3, 4};
    QCOMPARE(ZTCollections::map(numbers, [](int n) { return n * n; }), (QList<int>{1, 4, 9, 16}));
    // A null result is skipped.
    QCOMPARE(ZTCollections::map(numbers, [](int n) { return n % 2 ? QString::number(n) : QString(); }),
             (QStringList{"1", "3"}));
    QCOMPARE(ZTCollections::map(numbers, [](int n) { return n > 2 ? std::optional<int>(n) : std::nullopt; }),
             (QList<int>{3, 4}));
    QCOMPARE(ZTCollections::filter(numbers, [](int n) { return n > 2; }), (QList<int>{3, 4}));
    QCOMPARE(ZTCollections::flatMap(numbers, [](int n) { return QList<int>(n % 3, n); }),
             (QList<int>{1, 2, 2, 4}));
    QCOMPARE(ZTCollections::reduce(numbers, 10, [](int a, int n) { return a + n; }), 20);
    const QVariantList nested{1, QVariantList{2, QVariantList{3}}, QStringList{"a"}};
    QCOMPARE(ZTCollections::flatten(nested), (QVariantList{1, 2, 3, QStringLiteral("a")}));
    QVariantList list;
    ZTCollections::addSafeObject(list, QVariant());
    ZTCollections::addSafeObject(list, QStringLiteral("x"));
    QCOMPARE(list, QVariantList{QStringLiteral("x")});
}

ZT_TEST_MAIN(TestDataExtras)
#include "tst_dataextras.moc"
