#include "base/ZTStringExtras.h"
#include "support/ZTTestMain.h"

#include <QTest>

using namespace ZTText;

namespace {
const QString nbsp(QChar(0x00A0));
const QString arabicThree(QChar(0x0663));
const QString fullWidthFive(QChar(0xFF15));
} // namespace

class TestTextCleaning : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void digitsOnlyKeepsUnicodeDigits();
    void whitespace_data();
    void whitespace();
    void punctuation();
    void dashesAndSpaces();
    void replaceString_data();
    void replaceString();
    void capitalizedFirstLetter_data();
    void capitalizedFirstLetter();
    void lines_data();
    void lines();
    void reverseFirstLastName_data();
    void reverseFirstLastName();
    void romanNumerals_data();
    void romanNumerals();
};

void TestTextCleaning::digitsOnlyKeepsUnicodeDigits()
{
    QCOMPARE(digitsOnly(QStringLiteral("ISBN 0-306-40615-2")), QStringLiteral("0306406152"));
    QCOMPARE(digitsOnly("a1" + arabicThree + "b" + fullWidthFive + "\u00B2"),
             "1" + arabicThree + fullWidthFive);
    QCOMPARE(digitsOnly(QString()), QString());
}

void TestTextCleaning::whitespace_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("hasContent");
    QTest::addColumn<QString>("trimmed");

    QTest::newRow("empty") << "" << false << "";
    QTest::newRow("blanks and line ends") << " \t\r\n " << false << "";
    QTest::newRow("word with blanks") << " \tword\r\n" << true << "word";
    QTest::newRow("inner blanks kept") << "  a  b  " << true << "a  b";
    // A non-breaking space is white space to the content test but content to
    // the trim, which only knows the four ASCII blanks.
    QTest::newRow("non-breaking space alone") << nbsp << false << nbsp;
    QTest::newRow("leading non-breaking space") << nbsp + " x " << true << nbsp + " x";
    QTest::newRow("line separator") << QString(QChar(0x2028)) << false << QString(QChar(0x2028));
    QTest::newRow("ideographic space")
        << QString(QChar(0x3000)) + "a" << true << QString(QChar(0x3000)) + "a";
}

void TestTextCleaning::whitespace()
{
    QFETCH(QString, text);
    QFETCH(bool, hasContent);
    QFETCH(QString, trimmed);
    QCOMPARE(containsNonWhitespace(text), hasContent);
    QCOMPARE(stringByTrimmingWhitespace(text), trimmed);
}

void TestTextCleaning::punctuation()
{
    QCOMPARE(stringByTrimmingPunctuation(QStringLiteral("\"Hello, world!\"")),
             QStringLiteral("Hello, world"));
    QCOMPARE(stringByTrimmingPunctuation(QStringLiteral("\u00BFQu\u00E9?")), QStringLiteral("Qu\u00E9"));
    QCOMPARE(stringByTrimmingPunctuation(QStringLiteral("...")), QStringLiteral(""));
    QCOMPARE(stringByStrippingPunctuation(QStringLiteral("O'Brien-Smith, J. (ed.)")),
             QStringLiteral("OBrienSmith J ed"));
    // Symbols are no punctuation.
    QCOMPARE(stringByStrippingPunctuation(QStringLiteral("1+1=2 $5")), QStringLiteral("1+1=2 $5"));
}

void TestTextCleaning::dashesAndSpaces()
{
    QCOMPARE(stringByStrippingDashesAndWhitespace(QStringLiteral(" 978-0\t306\r\n40615-7 ")),
             QStringLiteral("9780306406157"));
    QCOMPARE(stringByStrippingDashesAndWhitespace(nbsp + "1\u20132"), nbsp + "1\u20132"); // en dash stays
    QCOMPARE(noSpaces(QStringLiteral(" a b\tc ")), QStringLiteral("ab\tc"));
}

void TestTextCleaning::replaceString_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("search");
    QTest::addColumn<QString>("replacement");
    QTest::addColumn<QString>("expected");

    QTest::newRow("all occurrences") << "a-b-c"
                                     << "-"
                                     << "+"
                                     << "a+b+c";
    QTest::newRow("literal, not a pattern") << "a.b"
                                            << "."
                                            << "!"
                                            << "a!b";
    QTest::newRow("null replacement removes") << "aXbX"
                                              << "X" << QString() << "ab";
    QTest::newRow("null search") << "abc" << QString() << "z"
                                 << "abc";
    QTest::newRow("empty search") << "abc"
                                  << ""
                                  << "z"
                                  << "abc";
    QTest::newRow("empty text") << ""
                                << "a"
                                << "b"
                                << "";
    QTest::newRow("case matters") << "Aa"
                                  << "a"
                                  << "b"
                                  << "Ab";
}

void TestTextCleaning::replaceString()
{
    QFETCH(QString, text);
    QFETCH(QString, search);
    QFETCH(QString, replacement);
    QFETCH(QString, expected);
    QCOMPARE(ZTText::replaceString(text, search, replacement), expected);
}

void TestTextCleaning::capitalizedFirstLetter_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("word") << "hello World"
                          << "Hello World";
    QTest::newRow("rest untouched") << "hELLO"
                                    << "HELLO";
    QTest::newRow("accented") << "\u00E9lan"
                              << "\u00C9lan";
    QTest::newRow("sharp s grows") << "\u00DFa"
                                   << "SSa";
    QTest::newRow("digit") << "1st"
                           << "1st";
    QTest::newRow("empty") << ""
                           << "";
    // U+10428 DESERET SMALL LETTER LONG I, two units, upper-cases to U+10400.
    QTest::newRow("outside the basic plane")
        << QString::fromUcs4(U"\U00010428x") << QString::fromUcs4(U"\U00010400x");
}

void TestTextCleaning::capitalizedFirstLetter()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(capitalizedFirstLetterString(text), expected);
}

void TestTextCleaning::lines_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("all terminators") << "a\nb\r\nc\rd\u2028e\u2029f"
                                     << QStringList{"a", "b", "c", "d", "e", "f"};
    QTest::newRow("final terminator") << "a\n" << QStringList{"a"};
    QTest::newRow("empty lines kept") << "a\n\nb" << QStringList{"a", "", "b"};
    QTest::newRow("CR LF is one break") << "a\r\n\r\nb" << QStringList{"a", "", "b"};
    QTest::newRow("LF CR is two") << "a\n\rb" << QStringList{"a", "", "b"};
    QTest::newRow("empty") << "" << QStringList{};
    QTest::newRow("no terminator") << "one line" << QStringList{"one line"};
}

void TestTextCleaning::lines()
{
    QFETCH(QString, text);
    QFETCH(QStringList, expected);
    QCOMPARE(componentsSeparatedByLineSeparators(text), expected);
}

void TestTextCleaning::reverseFirstLastName_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("last, first") << "Knuth, Donald"
                                 << "Donald Knuth";
    QTest::newRow("parts trimmed") << " Knuth ,  Donald E. "
                                   << "Donald E. Knuth";
    QTest::newRow("no comma") << "Donald Knuth"
                              << "Donald Knuth";
    QTest::newRow("two commas") << "King, Martin Luther, Jr."
                                << "King, Martin Luther, Jr.";
    QTest::newRow("empty first name") << "Plato,"
                                      << " Plato";
}

void TestTextCleaning::reverseFirstLastName()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(ZTText::reverseFirstLastName(text), expected);
}

void TestTextCleaning::romanNumerals_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("XIV") << "XIV" << qint64(14);
    QTest::newRow("lower case") << "mcmxcix" << qint64(1999);
    QTest::newRow("MMXXIV") << "MMXXIV" << qint64(2024);
    QTest::newRow("CDXLIV") << "CDXLIV" << qint64(444);
    QTest::newRow("malformed IIX is summed") << "IIX" << qint64(10);
    QTest::newRow("empty") << "" << qint64(-1);
    QTest::newRow("other letter") << "XA" << qint64(-1);
    QTest::newRow("trailing blank") << "IV " << qint64(-1);
    QTest::newRow("digits") << "12" << qint64(-1);
}

void TestTextCleaning::romanNumerals()
{
    QFETCH(QString, text);
    QFETCH(qint64, expected);
    QCOMPARE(arabicNumeralFromRomanNumeral(text), expected);
}

ZT_TEST_MAIN(TestTextCleaning)
#include "tst_textcleaning.moc"
