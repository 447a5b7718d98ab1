#include "base/ZTStringExtras.h"
#include "support/ZTTestMain.h"

#include <QTest>

using namespace ZTText;

Q_DECLARE_METATYPE(ZTRange)
Q_DECLARE_METATYPE(ZTSearchOption)

class TestTextLocating : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rangeBetween_data();
    void rangeBetween();
    void rangeFrom_data();
    void rangeFrom();
    void notFoundIsLargestSignedValue();
    void rangeOfTextIsNullWhenNotInside();
};

namespace {
const ZTRange whole = ZTRange::all();
}

void TestTextLocating::rangeBetween_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<ZTSearchOption>("options");
    QTest::addColumn<ZTRange>("range");
    QTest::addColumn<ZTRange>("expected");

    const auto fwd = ZTSearchOption::None;
    const auto back = ZTSearchOption::Backwards;
    const QString b = QStringLiteral("<b>");
    const QString eb = QStringLiteral("</b>");
    QTest::newRow("simple") << "a<b>x</b>c" << b << eb << fwd << whole << ZTRange(4, 1);
    QTest::newRow("first pair wins") << "<b>1</b><b>2</b>" << b << eb << fwd << whole << ZTRange(3, 1);
    QTest::newRow("empty between") << "<b></b>" << b << eb << fwd << whole << ZTRange(3, 0);
    QTest::newRow("end tag only before start tag")
        << "</b>a<b>x" << b << eb << fwd << whole << ZTRange::notFound();
    QTest::newRow("start tag missing") << "x</b>" << b << eb << fwd << whole << ZTRange::notFound();
    QTest::newRow("null first starts at range start")
        << "abc</b>d" << QString() << eb << fwd << whole << ZTRange(0, 3);
    QTest::newRow("null second ends at range end")
        << "<b>abc" << b << QString() << fwd << whole << ZTRange(3, 3);
    QTest::newRow("both null") << "abc" << QString() << QString() << fwd << whole << ZTRange(0, 3);
    QTest::newRow("empty tag is never found")
        << "abc" << QString("") << QString() << fwd << whole << ZTRange::notFound();
    QTest::newRow("same tag twice") << "|a|b|"
                                    << "|"
                                    << "|" << fwd << whole << ZTRange(1, 1);
    QTest::newRow("tags overlap not") << "<b>"
                                      << "<b"
                                      << "b>" << fwd << whole << ZTRange::notFound();
    // Backwards: the last start tag, then the last end tag behind it.
    QTest::newRow("backwards last pair") << "<b>1</b><b>2</b>" << b << eb << back << whole << ZTRange(11, 1);
    QTest::newRow("backwards last end tag") << "<b>1</b>2</b>" << b << eb << back << whole << ZTRange(3, 6);
    QTest::newRow("backwards start tag last")
        << "<b>1</b><b>" << b << eb << back << whole << ZTRange::notFound();
    // Inside a range only.
    QTest::newRow("range picks second pair")
        << "<b>1</b><b>2</b>" << b << eb << fwd << ZTRange(8, 8) << ZTRange(11, 1);
    QTest::newRow("range cuts end tag")
        << "<b>1</b><b>2</b>" << b << eb << fwd << ZTRange(0, 6) << ZTRange::notFound();
    QTest::newRow("null tags span the range")
        << "abcdef" << QString() << QString() << fwd << ZTRange(2, 3) << ZTRange(2, 3);
    QTest::newRow("range past the end is clamped")
        << "a<b>x</b>" << b << eb << fwd << ZTRange(1, 500) << ZTRange(4, 1);
    QTest::newRow("range before the start is clamped")
        << "a<b>x</b>" << b << eb << fwd << ZTRange(-10, 20) << ZTRange(4, 1);
    QTest::newRow("range outside the text")
        << "a<b>x</b>" << b << eb << fwd << ZTRange(100, 5) << ZTRange::notFound();
    QTest::newRow("empty text") << "" << b << eb << fwd << whole << ZTRange::notFound();
    // Positions count UTF-16 units: the emoji takes two.
    QTest::newRow("surrogates count twice")
        << QString::fromUtf8("\xF0\x9F\x98\x80<b>x</b>") << b << eb << fwd << whole << ZTRange(5, 1);
}

void TestTextLocating::rangeBetween()
{
    QFETCH(QString, text);
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(ZTSearchOption, options);
    QFETCH(ZTRange, range);
    QFETCH(ZTRange, expected);
    const ZTRange found = rangeBetweenString(text, first, second, options, range);
    QCOMPARE(found.location, expected.location);
    QCOMPARE(found.length, expected.length);
    if (range == whole) {
        const ZTRange overWhole = rangeBetweenString(text, first, second, options);
        QCOMPARE(overWhole.location, expected.location);
        QCOMPARE(overWhole.length, expected.length);
    }
}

void TestTextLocating::rangeFrom_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<ZTSearchOption>("options");
    QTest::addColumn<QString>("expected");

    const auto fwd = ZTSearchOption::None;
    QTest::newRow("tags included") << "a<b>x</b>c"
                                   << "<b>"
                                   << "</b>" << fwd << "<b>x</b>";
    QTest::newRow("null first") << "a<b>x</b>c" << QString() << "</b>" << fwd << "a<b>x</b>";
    QTest::newRow("null second") << "a<b>x</b>c"
                                 << "<b>" << QString() << fwd << "<b>x</b>c";
    QTest::newRow("backwards") << "<i>1</i><i>2</i>"
                               << "<i>"
                               << "</i>" << ZTSearchOption::Backwards << "<i>2</i>";
    QTest::newRow("missing end") << "a<b>x"
                                 << "<b>"
                                 << "</b>" << fwd << QString();
}

void TestTextLocating::rangeFrom()
{
    QFETCH(QString, text);
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(ZTSearchOption, options);
    QFETCH(QString, expected);
    const QString found = rangeFromString(text, first, second, options).of(text);
    QCOMPARE(found, expected);
    QCOMPARE(found.isNull(), expected.isNull());
}

void TestTextLocating::notFoundIsLargestSignedValue()
{
    const ZTRange missing =
        rangeBetweenString(QStringLiteral("abc"), QStringLiteral("x"), QStringLiteral("y"));
    QVERIFY(!missing.isFound());
    QCOMPARE(missing.location, std::numeric_limits<qsizetype>::max());
}

void TestTextLocating::rangeOfTextIsNullWhenNotInside()
{
    const QString text = QStringLiteral("abcdef");
    QCOMPARE(ZTRange(2, 2).of(text), QStringLiteral("cd"));
    QVERIFY(ZTRange(5, 3).of(text).isNull());
    QVERIFY(ZTRange(-1, 2).of(text).isNull());
    QVERIFY(ZTRange::notFound().of(text).isNull());
    QCOMPARE(ZTRange(6, 0).of(text), QString(""));
}

ZT_TEST_MAIN(TestTextLocating)
#include "tst_textlocating.moc"
