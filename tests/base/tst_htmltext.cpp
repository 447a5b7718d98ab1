#include "base/ZTHTMLFlattener.h"
#include "base/ZTStringExtras.h"
#include "support/ZTTestMain.h"

#include <QTest>

using namespace ZTText;

class TestHTMLText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void quickFlatten_data();
    void quickFlatten();
    void flatten_data();
    void flatten();
    void regularText_data();
    void regularText();
    void regularTextReplacementsRunInOrder();
    void decode_data();
    void decode();
    void decodeNullIsNull();
    void entityTable();
    void htmlEscaping();
    void xml_data();
    void xml();
    void hostileInputNeverCrashes();
};

void TestHTMLText::quickFlatten_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("tags go, entities stay") << "<b>Tom</b> &amp; <i>Jerry</i>"
                                            << "Tom &amp; Jerry";
    QTest::newRow("attributes") << "<a href=\"x\">link</a>"
                                << "link";
    QTest::newRow("unclosed bracket stays") << "a < b"
                                            << "a < b";
    QTest::newRow("last tag unclosed") << "a<b>c<d"
                                       << "ac<d";
    QTest::newRow("stray closing bracket") << "a > b"
                                           << "a > b";
    QTest::newRow("blank as it is") << " \n "
                                    << " \n ";
    QTest::newRow("empty") << ""
                           << "";
}

void TestHTMLText::quickFlatten()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(quickFlattenHTML(text), expected);
}

void TestHTMLText::flatten_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("inline tags") << "<b>Tom</b> &amp; <i>Jerry</i>"
                                 << "Tom & Jerry";
    QTest::newRow("named entities") << "caf&eacute; &lt;b&gt; &copy;"
                                    << "caf\u00E9 <b> \u00A9";
    QTest::newRow("decimal reference") << "&#8364;5"
                                       << "\u20AC5";
    QTest::newRow("hexadecimal reference") << "&#x41;BC&#X42;"
                                           << "ABCB";
    QTest::newRow("hex upper digits") << "a&#x263A;b"
                                      << "a\u263Ab";
    QTest::newRow("hex without a number loses its marker") << "&#xZZ; ok"
                                                           << "ZZ; ok";
    QTest::newRow("non-BMP reference") << "x&#128512;" << QString::fromUtf8("x\xF0\x9F\x98\x80");
    QTest::newRow("Windows-1252 range") << "it&#146;s"
                                        << "it\u2019s";
    QTest::newRow("zero and huge references") << "a&#0;b&#99999999999;c"
                                              << "a\uFFFDb\uFFFDc";
    QTest::newRow("legacy entity without semicolon") << "&copy 2020 &amp co"
                                                     << "\u00A9 2020 & co";
    QTest::newRow("unknown entity stays") << "x &bogus; y"
                                          << "x &bogus; y";
    QTest::newRow("bare ampersand") << "R & D"
                                    << "R & D";
    QTest::newRow("white space collapses") << "  a  \n\t b  "
                                           << "a b";
    QTest::newRow("nbsp is not collapsed") << "a&nbsp;&nbsp;b"
                                           << "a\u00A0\u00A0b";
    QTest::newRow("paragraphs") << "<p>Hello</p><p>World</p>"
                                << "Hello\nWorld\n";
    QTest::newRow("line break") << "line<br>break<BR/>end"
                                << "line\nbreak\nend";
    QTest::newRow("two breaks are two lines") << "a<br><br>b"
                                              << "a\n\nb";
    QTest::newRow("div and list") << "<div>T</div><ul><li>one</li><li>two</li></ul>"
                                  << "T\none\ntwo\n";
    QTest::newRow("table cells") << "<table><tr><td>a</td><td>b</td></tr><tr><td>c</td></tr></table>"
                                 << "a\tb\nc\n";
    QTest::newRow("script and style hidden") << "<script>var s='<b>';</script><style>p{}</style>Text"
                                             << "Text";
    QTest::newRow("title hidden") << "<html><head><title>T</title></head><body>B</body></html>"
                                  << "B\n";
    QTest::newRow("comment") << "a<!-- <b>x</b> -->b"
                             << "ab";
    QTest::newRow("quoted bracket in attribute") << "<a title=\"1 > 0\">link</a>"
                                                 << "link";
    QTest::newRow("lone less-than is text") << "1 < 2"
                                            << "1 < 2";
    QTest::newRow("unclosed tag at end dropped") << "text<unclosed"
                                                 << "text";
    QTest::newRow("preformatted keeps blanks") << "<pre>a  b\n c</pre>"
                                               << "a  b\n c\n";
    QTest::newRow("doctype") << "<!DOCTYPE html>x"
                             << "x";
    // Under four units the text takes the Mac OS Roman path: what has no byte
    // there comes back untouched, tags and all.
    QTest::newRow("three units, Mac OS Roman") << "\u00E9<b"
                                               << "\u00E9";
    QTest::newRow("three units, no Mac OS Roman form") << "\u4E2D<b"
                                                       << "\u4E2D<b";
    QTest::newRow("four units, UTF-16") << "\u4E2D<b>"
                                        << "\u4E2D";
    QTest::newRow("short euro has a Mac byte") << "\u20AC&a"
                                               << "\u20AC&a";
}

void TestHTMLText::flatten()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(flattenHTML(text), expected);
}

void TestHTMLText::regularText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("paragraphs") << "<p>One</p><P>Two</P>"
                                << "\n\nOne\n\nTwo";
    QTest::newRow("breaks") << "a<br>b<BR>c<br />d<br/>e"
                            << "a\nb\nc\nd<br/>e";
    QTest::newRow("inline tags") << "<b>B</b><I>i</I><span>s</span><FONT>f</FONT>"
                                 << "Bisf";
    QTest::newRow("tags with attributes stay") << "<font size=2>x</font><a href=\"y\">z</a>"
                                               << "<font size=2>x<a href=\"y\">z";
    // 130, 174 and 191 are Mac OS Roman bytes: Ç, Æ and ø.
    QTest::newRow("Mac OS Roman codes") << "&#130;&#174;&#191;"
                                        << "\u00C7\u00C6\u00F8";
    QTest::newRow("quotes and dashes") << "&#8220;a&#8221; &#8211; &#8212; it&#146;s &#150; &#8217;"
                                       << "\"a\" - - it's - '";
    QTest::newRow("symbols") << "&copy;&#169;&#8230;&quot;&euml;&#36;"
                             << "\u00A9\u00A9\u2026\"\u00EB$";
    QTest::newRow("German letters") << "&#246;&#233;&#252;&#223;&#228;"
                                    << "\u00F6\u00E9\u00FC\u00DF\u00E4";
    QTest::newRow("lists") << "<ul><li>x</li><LI>y</LI></ul>"
                           << "\n\n    x\n    y\n\n";
    QTest::newRow("blockquote") << "<blockquote>q</blockquote>"
                                << "q";
    QTest::newRow("nbsp") << "a&nbsp;b"
                          << "a b";
    QTest::newRow("three line feeds once through") << "a\n\n\n\n\nb"
                                                   << "a\n\n\n\nb";
    QTest::newRow("other entities untouched") << "&amp; &lt;"
                                              << "&amp; &lt;";
}

void TestHTMLText::regularText()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(convertHTMLToRegularText(text), expected);
}

void TestHTMLText::regularTextReplacementsRunInOrder()
{
    // "<p>" becomes two line feeds before the triple is folded, so a
    // paragraph followed by a line feed folds to two.
    QCOMPARE(convertHTMLToRegularText(QStringLiteral("<p>\nx")), QStringLiteral("\n\nx"));
    // "&nbsp;" is replaced after the triple fold, so it cannot join one.
    QCOMPARE(convertHTMLToRegularText(QStringLiteral("\n\n&nbsp;\n")), QStringLiteral("\n\n \n"));
}

void TestHTMLText::decode_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("plain") << "plain text"
                           << "plain text";
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("amp") << "Tom &amp; Jerry"
                         << "Tom & Jerry";
    // The table has always mapped "lt" to 38: "&lt;" gives an ampersand.
    QTest::newRow("lt gives ampersand") << "a &lt; b"
                                        << "a & b";
    QTest::newRow("gt") << "a &gt; b"
                        << "a > b";
    QTest::newRow("apos") << "it&apos;s"
                          << "it's";
    QTest::newRow("HTML names") << "caf&eacute; &euro;5 &mdash;"
                                << "caf\u00E9 \u20AC5 \u2014";
    QTest::newRow("numeric") << "&#233;&#x263A;"
                             << "\u00E9\u263A";
    QTest::newRow("tags vanish") << "<b>bold</b> text"
                                 << "bold text";
    // The reader stops at the unclosed <br>: at the closing wrapper tag, so
    // everything before it has been gathered.
    QTest::newRow("unclosed br") << "line<br>more"
                                 << "linemore";
    QTest::newRow("bare ampersand stops the reader") << "R&D dept"
                                                     << "R";
    QTest::newRow("name left out of the table stops it") << "20&deg;C"
                                                         << "20";
    QTest::newRow("stray less-than") << "1 < 2"
                                     << "1 ";
    QTest::newRow("references before the fault") << "a&#233;b&amp;c & d"
                                                 << "a\u00E9b&c ";
    QTest::newRow("fault after an element") << "<i>x</i>y&bogus; z"
                                            << "xy";
    QTest::newRow("fault after a comment") << "a<!-- c -->b&x"
                                           << "ab";
    QTest::newRow("control character stops it") << QStringLiteral("ab\u0001cd&x") << "ab";
    QTest::newRow("fault after CDATA") << "<![CDATA[<b>]]>c&x"
                                       << "<b>c";
}

void TestHTMLText::decode()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(decodeHTML(text), expected);
}

void TestHTMLText::decodeNullIsNull()
{
    QVERIFY(decodeHTML(QString()).isNull());
    QVERIFY(!decodeHTML(QStringLiteral("")).isNull());
}

void TestHTMLText::entityTable()
{
    const QHash<QString, QString> &dict = ZTHTMLFlattener::entityDict();
    QCOMPARE(dict.size(), 240);
    QCOMPARE(dict.value("lt"), QStringLiteral("38"));
    QCOMPARE(dict.value("amp"), QStringLiteral("38"));
    QCOMPARE(dict.value("apos"), QStringLiteral("39"));
    QCOMPARE(dict.value("euro"), QStringLiteral("8364"));
    QCOMPARE(dict.value("thetasym"), QStringLiteral("977"));
    for (const char *missing : {"Prime", "acute", "brvbar", "cap", "cedil", "cup", "deg", "image", "int",
                                "nabla", "or", "sup1", "sup3"})
        QVERIFY2(!dict.contains(QLatin1String(missing)), missing);
}

void TestHTMLText::htmlEscaping()
{
    QCOMPARE(htmlString(QStringLiteral("<a href=\"x\">&</a>")),
             QStringLiteral("&lt;a href=&quot;x&quot;&gt;&amp;&lt;/a&gt;"));
    QCOMPARE(htmlString(QStringLiteral("caf\u00E9 \u20AC'")), QStringLiteral("caf&#233; &#8364;'"));
    QCOMPARE(htmlString(QString::fromUtf8("\xF0\x9F\x98\x80")), QStringLiteral("&#128512;"));
    QCOMPARE(htmlString(QString(QChar(0xD800))), QStringLiteral("&#55296;"));
    QCOMPARE(htmlString(QString()), QString());
    QCOMPARE(nonBreakingSpaceString(QStringLiteral("a b  c")), QStringLiteral("a&nbsp;b&nbsp;&nbsp;c"));
    QCOMPARE(nonBreakingSpaceString(QStringLiteral("")), QStringLiteral(""));
}

void TestHTMLText::xml_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("toXML");
    QTest::addColumn<QString>("fromXML");
    QTest::newRow("escaped and bare ampersand") << "Tom &amp; Jerry & Co"
                                                << "Tom &amp; Jerry &amp; Co"
                                                << "Tom & Jerry & Co";
    QTest::newRow("less-than only") << "a<b>c"
                                    << "a&lt;b>c"
                                    << "a<b>c";
    QTest::newRow("escaped less-than doubled") << "&lt;"
                                               << "&amp;lt;"
                                               << "<";
    QTest::newRow("empty") << ""
                           << ""
                           << "";
    QTest::newRow("nested entity decoded once") << "&amp;lt;"
                                                << "&amp;lt;"
                                                << "&lt;";
}

void TestHTMLText::xml()
{
    QFETCH(QString, text);
    QFETCH(QString, toXML);
    QFETCH(QString, fromXML);
    QCOMPARE(convertToXML(text), toXML);
    QCOMPARE(convertFromXML(text), fromXML);
}

void TestHTMLText::hostileInputNeverCrashes()
{
    const QStringList inputs = {
        QString(200000, QLatin1Char('<')),
        QString(200000, QLatin1Char('&')),
        QString(200000, QLatin1Char('&')) + QLatin1Char(';'),
        QStringLiteral("&#x") + QString(100, QLatin1Char('F')) + QLatin1Char(';'),
        QStringLiteral("&#") + QString(1000, QLatin1Char('9')),
        QStringLiteral("<a title=\"") + QString(1000, QLatin1Char('>')),
        QStringLiteral("<script>") + QString(1000, QLatin1Char('x')),
        QStringLiteral("<!--"),
        QString(QChar(0xDC00)) + QChar(0xD800) + QStringLiteral("&#xD800;<pre>\r"),
        QStringLiteral("</pre></pre></pre>x"),
    };
    for (const QString &input : inputs) {
        QVERIFY(flattenHTML(input).size() <= input.size() + 2);
        QVERIFY(quickFlattenHTML(input).size() <= input.size());
        decodeHTML(input);
        convertHTMLToRegularText(input);
        htmlString(input);
    }
    QCOMPARE(flattenHTML(QStringLiteral("</pre></pre>a  b")), QStringLiteral("a b"));
}

ZT_TEST_MAIN(TestHTMLText)
#include "tst_htmltext.moc"
