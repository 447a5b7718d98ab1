#include "model/ZTCodeFormatter.h"
#include "support/ZTTestMain.h"

#include <QTest>

// Check digits used below, worked by hand:
//  ISBN-10 0-306-40615-2: 0*10+3*9+0*8+6*7+4*6+0*5+6*4+1*3+5*2 = 130;
//    130 mod 11 = 9, so the check is 2 (132 = 12*11).
//  ISBN-10 0-8044-2957-X: 0*10+8*9+0*8+4*7+4*6+2*5+9*4+5*3+7*2 = 199;
//    199 mod 11 = 1, the check is 10, written X.
//  ISBN-10 0-19-853453-1: 0+9+72+56+30+15+16+15+6 = 219; 219 mod 11 = 10 -> 1.
//  EAN-13 978-0-306-40615-7: 9+7*3+8+0*3+3+0*3+6+4*3+0+6*3+1+5*3 = 93 -> 7.
//  EAN-13 978-0-8044-2957-3: 9+21+8+0+8+0+4+12+2+27+5+21 = 117 -> 3.
//  UPC-A 0-36000-29145-2: 0*3+3+6*3+0+0*3+0+2*3+9+1*3+4+5*3 = 58 -> 2.
class TestCodeFormatter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { ZTCodeFormatter::setIsbnValidationAllowsASINs(false); }
    void cleanupTestCase() { ZTCodeFormatter::setIsbnValidationAllowsASINs(false); }

    void isbn_data();
    void isbn();
    void ean_data();
    void ean();
    void upc_data();
    void upc();
    void asin_data();
    void asin();
    void asinSwitch();
    void lccn_data();
    void lccn();
    void comicNumbers();
    void eanFromISBN_data();
    void eanFromISBN();
    void isbnFromEAN_data();
    void isbnFromEAN();
    void formattedISBN();
    void formattedLCCN_data();
    void formattedLCCN();
    void predicatesSurviveHostileText();
};

namespace {
// Arabic-Indic and full-width forms of 0306406152.
QString arabicIndic(const QString &ascii)
{
    QString out;
    for (QChar c : ascii)
        out += c.isDigit() ? QChar(char16_t(0x0660 + c.digitValue())) : c;
    return out;
}
QString fullWidth(const QString &ascii)
{
    QString out;
    for (QChar c : ascii)
        out += c.isDigit() ? QChar(char16_t(0xFF10 + c.digitValue())) : c;
    return out;
}
} // namespace

void TestCodeFormatter::isbn_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<bool>("valid");
    QTest::newRow("dashes") << "0-306-40615-2" << true;
    QTest::newRow("blanks") << "0 306 40615 2" << true;
    QTest::newRow("plain") << "0306406152" << true;
    QTest::newRow("groups anywhere") << "0306-406152" << true;
    QTest::newRow("mixed separators") << "0-306 40615-2" << true;
    QTest::newRow("second vector") << "0198534531" << true;
    QTest::newRow("check X") << "080442957X" << true;
    QTest::newRow("check lower-case x") << "080442957x" << true;
    QTest::newRow("123456789X") << "123456789X" << true;
    QTest::newRow("wrong check digit") << "0306406153" << false;
    QTest::newRow("X where 2 belongs") << "030640615X" << false;
    QTest::newRow("two separators in a row") << "0--306406152" << false;
    QTest::newRow("dash and blank in a row") << "0- 306406152" << false;
    QTest::newRow("extra digit") << "0-306-40615-2-1" << false;
    QTest::newRow("eleven characters") << "0306406152X" << false;
    QTest::newRow("nine digits") << "030640615" << false;
    QTest::newRow("leading dash") << "-306406152" << false;
    QTest::newRow("trailing blank") << "0306406152 " << false;
    QTest::newRow("X inside") << "03064061X2" << false;
    QTest::newRow("X first") << "X306406152" << false;
    QTest::newRow("line feed separator") << "0-306-40615\n2" << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("null") << QString() << false;
    QTest::newRow("Arabic-Indic digits") << arabicIndic("0306406152") << true;
    QTest::newRow("full-width digits") << fullWidth("0-306-40615-2") << true;
    QTest::newRow("full-width wrong check") << fullWidth("0306406153") << false;
    QTest::newRow("superscript is no digit") << "030640615\u00B2" << false;
}

void TestCodeFormatter::isbn()
{
    QFETCH(QString, code);
    QFETCH(bool, valid);
    QCOMPARE(ZTCodeFormatter::isValidISBN(code), valid);
    QCOMPARE(ZTCodeFormatter::isValidISBNorASIN(code), valid);
}

void TestCodeFormatter::ean_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<bool>("valid");
    QTest::newRow("EAN-13") << "9780306406157" << QString() << true;
    QTest::newRow("second vector") << "9780804429573" << QString() << true;
    QTest::newRow("wrong check") << "9780306406158" << QString() << false;
    QTest::newRow("with prefix") << "9780306406157"
                                 << "978" << true;
    QTest::newRow("other prefix") << "9790306406157"
                                  << "978" << false;
    // Twelve digits pass with no check digit at all.
    QTest::newRow("twelve digits") << "978030640615"
                                   << "978" << true;
    QTest::newRow("dashes are stripped") << "978-0-306-40615-7"
                                         << "978" << true;
    QTest::newRow("blanks are stripped") << "978 030 640 615 7" << QString() << true;
    QTest::newRow("prefix with dash, raw text") << "978-0-306-40615-7"
                                                << "978-" << true;
    QTest::newRow("prefix with dash, plain text") << "9780306406157"
                                                  << "978-" << false;
    QTest::newRow("characters behind 13 ignored") << "9780306406157999" << QString() << true;
    QTest::newRow("letter at check position") << "978030640615X" << QString() << false;
    QTest::newRow("letter inside") << "97803064061A7" << QString() << false;
    QTest::newRow("eleven digits") << "97803064061" << QString() << false;
    QTest::newRow("strips to nothing") << "-------------" << QString() << false;
    QTest::newRow("strips to eleven") << "97803064061-" << QString() << false;
    QTest::newRow("null") << QString() << QString() << false;
    QTest::newRow("Arabic-Indic digits") << arabicIndic("9780306406157") << QString() << true;
}

void TestCodeFormatter::ean()
{
    QFETCH(QString, code);
    QFETCH(QString, prefix);
    QFETCH(bool, valid);
    QCOMPARE(ZTCodeFormatter::isValidEAN(code, prefix), valid);
}

void TestCodeFormatter::upc_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<bool>("valid");
    QTest::newRow("UPC-A") << "036000291452" << true;
    QTest::newRow("EAN-13 also passes") << "9780306406157" << true;
    QTest::newRow("EAN-13 with wrong check") << "9780306406158" << false;
    // A wrong twelfth digit falls through to the EAN test, which takes any
    // twelve digits: a twelve-digit text is therefore always a UPC.
    QTest::newRow("twelve digits, wrong check") << "036000291453" << true;
    // The check position counts as 0 when it is no digit.
    QTest::newRow("non-digit check counting as 0") << "00000000000X" << true;
    QTest::newRow("non-digit check, sum not 0") << "03600029145X" << false;
    QTest::newRow("dash in the first eleven") << "0-3600029145" << false;
    QTest::newRow("eleven digits") << "03600029145" << false;
    QTest::newRow("null") << QString() << false;
    QTest::newRow("full-width") << fullWidth("036000291452") << true;
}

void TestCodeFormatter::upc()
{
    QFETCH(QString, code);
    QFETCH(bool, valid);
    QCOMPARE(ZTCodeFormatter::isValidUPC(code), valid);
}

void TestCodeFormatter::asin_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<bool>("valid");
    QTest::newRow("ASIN") << "B00005JNS8" << true;
    QTest::newRow("ISBN is an ASIN") << "0306406152" << true;
    QTest::newRow("formatted ISBN is too long") << "0-306-40615-2" << false;
    QTest::newRow("lower case") << "B00005jns8" << false;
    QTest::newRow("not B") << "A00005JNS8" << false;
    QTest::newRow("nine") << "B00005JNS" << false;
    QTest::newRow("eleven") << "B00005JNS8X" << false;
    QTest::newRow("blank inside") << "B0000 JNS8" << false;
    QTest::newRow("null") << QString() << false;
}

void TestCodeFormatter::asin()
{
    QFETCH(QString, code);
    QFETCH(bool, valid);
    QCOMPARE(ZTCodeFormatter::isValidASIN(code), valid);
}

void TestCodeFormatter::asinSwitch()
{
    const QString asin = QStringLiteral("B00005JNS8");
    QVERIFY(!ZTCodeFormatter::isbnValidationAllowsASINs());
    QVERIFY(!ZTCodeFormatter::isValidISBNorASIN(asin));
    QCOMPARE(ZTCodeFormatter::isbnFromFormattedISBN(asin), QStringLiteral("B000058"));
    ZTCodeFormatter::setIsbnValidationAllowsASINs(true);
    QVERIFY(ZTCodeFormatter::isValidISBNorASIN(asin));
    QCOMPARE(ZTCodeFormatter::isbnFromFormattedISBN(asin), asin);
    QVERIFY(!ZTCodeFormatter::isValidISBN(asin));
}

void TestCodeFormatter::lccn_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<bool>("valid");
    QTest::newRow("prefix, year, serial") << "n78-890351" << true;
    QTest::newRow("ten digits") << "2001627090" << true;
    QTest::newRow("eight digits") << "85152346" << true;
    QTest::newRow("serial may be missing") << "1985-" << true;
    QTest::newRow("too short") << "85-" << false;
    QTest::newRow("short serial") << "85-1" << true;
    QTest::newRow("upper-case prefix") << "N78-890351" << true;
    QTest::newRow("three-letter prefix") << "abc12345678" << true;
    QTest::newRow("four letters") << "abcd12345678" << false;
    QTest::newRow("blank after prefix") << "n 78890351" << true;
    QTest::newRow("nine digits") << "123456789" << false;
    QTest::newRow("twelve characters") << "123456789012" << false;
    QTest::newRow("dash first") << "-8512345" << false;
    QTest::newRow("two dashes") << "85-12-34" << false;
    QTest::newRow("seven-digit serial") << "85-1234567" << false;
    QTest::newRow("three-digit year") << "985-123456" << false;
    QTest::newRow("letter in serial") << "85-12a4" << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("null") << QString() << false;
}

void TestCodeFormatter::lccn()
{
    QFETCH(QString, code);
    QFETCH(bool, valid);
    QCOMPARE(ZTCodeFormatter::isValidLCCN(code), valid);
}

void TestCodeFormatter::comicNumbers()
{
    for (auto valid : {&ZTCodeFormatter::isValidGCDN, &ZTCodeFormatter::isValidCBDBN}) {
        QVERIFY(valid(QStringLiteral("12345")));
        QVERIFY(valid(arabicIndic("42")));
        QVERIFY(!valid(QStringLiteral("")));
        QVERIFY(!valid(QString()));
        QVERIFY(!valid(QStringLiteral("g12345")));
        QVERIFY(!valid(QStringLiteral("12 3")));
    }
}

void TestCodeFormatter::eanFromISBN_data()
{
    QTest::addColumn<QString>("isbn");
    QTest::addColumn<QString>("ean");
    QTest::newRow("ISBN") << "0306406152"
                          << "9780306406157";
    QTest::newRow("check X") << "080442957X"
                             << "9780804429573";
    QTest::newRow("check is recomputed") << "0306406150"
                                         << "9780306406157";
    QTest::newRow("nine characters") << "030640615" << QString();
    QTest::newRow("blank") << "           " << QString();
    QTest::newRow("null") << QString() << QString();
}

void TestCodeFormatter::eanFromISBN()
{
    QFETCH(QString, isbn);
    QFETCH(QString, ean);
    const QString result = ZTCodeFormatter::eanFromISBN(isbn);
    QCOMPARE(result, ean);
    QCOMPARE(result.isNull(), ean.isNull());
}

void TestCodeFormatter::isbnFromEAN_data()
{
    QTest::addColumn<QString>("ean");
    QTest::addColumn<QString>("isbn");
    QTest::newRow("EAN") << "9780306406157"
                         << "0306406152";
    QTest::newRow("formatted") << "978-0-306-40615-7"
                               << "0306406152";
    QTest::newRow("check X") << "9780804429573"
                             << "080442957X";
    QTest::newRow("twelve digits") << "978030640615"
                                   << "0306406152";
    QTest::newRow("prefix not tested") << "0000306406157"
                                       << "0306406152";
    QTest::newRow("letter inside") << "9780306X06157" << QString();
    QTest::newRow("strips too short") << "978-03064-06" << QString();
    QTest::newRow("eleven") << "97803064061" << QString();
    QTest::newRow("blank") << "             " << QString();
}

void TestCodeFormatter::isbnFromEAN()
{
    QFETCH(QString, ean);
    QFETCH(QString, isbn);
    const QString result = ZTCodeFormatter::isbnFromEAN(ean);
    QCOMPARE(result, isbn);
    QCOMPARE(result.isNull(), isbn.isNull());
}

void TestCodeFormatter::formattedISBN()
{
    QCOMPARE(ZTCodeFormatter::isbnFromFormattedISBN(QStringLiteral("0-306-40615-2")),
             QStringLiteral("0306406152"));
    QCOMPARE(ZTCodeFormatter::isbnFromFormattedISBN(QStringLiteral("080442957x")),
             QStringLiteral("080442957X"));
    QCOMPARE(ZTCodeFormatter::isbnFromFormattedISBN(QStringLiteral("0 8044 2957 x")),
             QStringLiteral("080442957X"));
    QCOMPARE(ZTCodeFormatter::isbnFromFormattedISBN(QStringLiteral("x")), QStringLiteral("x"));
    QVERIFY(ZTCodeFormatter::isbnFromFormattedISBN(QString()).isNull());
}

void TestCodeFormatter::formattedLCCN_data()
{
    QTest::addColumn<QString>("lccn");
    QTest::addColumn<QString>("expected");
    QTest::newRow("serial padded") << "n78-890"
                                   << "n78000890";
    QTest::newRow("full serial") << "n78-890351"
                                 << "n78890351";
    QTest::newRow("long serial kept") << "85-1234567"
                                      << "851234567";
    QTest::newRow("missing serial") << "85-"
                                    << "85000000";
    QTest::newRow("blanks to plus") << "n 78890351"
                                    << "n+78890351";
    QTest::newRow("no dash") << "2001627090"
                             << "2001627090";
    QTest::newRow("null") << QString() << QString();
}

void TestCodeFormatter::formattedLCCN()
{
    QFETCH(QString, lccn);
    QFETCH(QString, expected);
    const QString result = ZTCodeFormatter::lccnFromFormattedLCCN(lccn);
    QCOMPARE(result, expected);
    QCOMPARE(result.isNull(), expected.isNull());
}

void TestCodeFormatter::predicatesSurviveHostileText()
{
    const QStringList inputs = {
        QString(1 << 20, QLatin1Char('9')), QString(1 << 16, QLatin1Char('-')),
        QString(5000, QChar(0xD800)),       QString(13, QChar(0)),
        fullWidth("978-0-306-40615-7"),     QStringLiteral("1-2-3-4-5-6-7-8-9-0-1-2-3"),
    };
    for (const QString &text : inputs) {
        ZTCodeFormatter::isValidISBN(text);
        ZTCodeFormatter::isValidEAN(text, QStringLiteral("978"));
        ZTCodeFormatter::isValidUPC(text);
        ZTCodeFormatter::isValidASIN(text);
        ZTCodeFormatter::isValidLCCN(text);
        ZTCodeFormatter::eanFromISBN(text);
        ZTCodeFormatter::isbnFromEAN(text);
        ZTCodeFormatter::isbnFromFormattedISBN(text);
        ZTCodeFormatter::lccnFromFormattedLCCN(text);
    }
    // A million digits: the EAN test reads thirteen and ignores the rest.
    QVERIFY(!ZTCodeFormatter::isValidISBN(inputs.first()));
    QVERIFY(ZTCodeFormatter::isValidEAN(inputs.first(), QString()) ==
            ZTCodeFormatter::isValidEAN(QStringLiteral("9999999999999"), QString()));
}

ZT_TEST_MAIN(TestCodeFormatter)
#include "tst_codeformatter.moc"
