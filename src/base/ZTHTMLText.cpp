// HTML and XML conversions of the text helpers.
#include "base/ZTStringExtras.h"

#include "base/ZTHTMLFlattener.h"
#include "base/ZTHTMLToText.h"
#include "base/ZTMacRoman.h"

#include <utility>
#include <vector>

namespace {

using Replacement = std::pair<QString, QString>;

QString lineFeeds(int count)
{
    return QString(count, QLatin1Char('\n'));
}

// The fixed clean-up list for site descriptions, applied in this order. Pages
// written on old Macs used Mac OS Roman byte values in three numeric
// references, which is why 130, 174 and 191 map through that table.
const std::vector<Replacement> &regularTextReplacements()
{
    static const std::vector<Replacement> s_list = [] {
        std::vector<Replacement> list;
        const auto add = [&list](const char *from, const QString &to) {
            list.emplace_back(QLatin1String(from), to);
        };
        const QString none;
        for (const char *tag : {"</a>", "</A>"})
            add(tag, none);
        add("<p>", lineFeeds(2));
        add("</p>", none);
        add("<P>", lineFeeds(2));
        add("</P>", none);
        for (const char *tag : {"<BR>", "<br>", "<br />"})
            add(tag, lineFeeds(1));
        for (const char *tag : {"<i>", "</i>", "<I>", "</I>", "<b>", "</b>", "<B>", "</B>", "<font>",
                                "</font>", "<FONT>", "</FONT>", "<span>", "</span>", "<SPAN>", "</SPAN>"})
            add(tag, none);
        add("&copy;", QString(QChar(0x00A9)));
        add("&#130;", QString(ZTMacRoman::character(130)));
        add("&#146;", QStringLiteral("'"));
        add("&#150;", QStringLiteral("-"));
        add("&#169;", QString(QChar(0x00A9)));
        add("&#174;", QString(ZTMacRoman::character(174)));
        add("&#191;", QString(ZTMacRoman::character(191)));
        add("&#8212;", QStringLiteral("-"));
        add("&#8217;", QStringLiteral("'"));
        add("&#8220;", QStringLiteral("\""));
        add("&#8221;", QStringLiteral("\""));
        add("&#8230;", QString(QChar(0x2026)));
        add("&quot;", QStringLiteral("\""));
        add("&#8211;", QStringLiteral("-"));
        add("&euml;", QString(QChar(0x00EB)));
        add("<ul>", lineFeeds(1));
        add("</ul>", lineFeeds(2));
        add("<UL>", lineFeeds(1));
        add("</UL>", lineFeeds(2));
        add("<LI>", QStringLiteral("\n    "));
        add("</LI>", none);
        add("<li>", QStringLiteral("\n    "));
        add("</li>", none);
        for (const char *tag : {"<blockquote>", "</blockquote>", "<BLOCKQUOTE>", "</BLOCKQUOTE>"})
            add(tag, none);
        add("\n\n\n", lineFeeds(2));
        add("&nbsp;", QStringLiteral(" "));
        add("&#246;", QString(QChar(0x00F6)));
        add("&#233;", QString(QChar(0x00E9)));
        add("&#252;", QString(QChar(0x00FC)));
        add("&#223;", QString(QChar(0x00DF)));
        add("&#228;", QString(QChar(0x00E4)));
        add("&#36;", QStringLiteral("$"));
        return list;
    }();
    return s_list;
}

bool isHexDigit(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= '0' && u <= '9') || (u >= 'a' && u <= 'f') || (u >= 'A' && u <= 'F');
}

// The HTML reader we stand in for knows no hexadecimal references, so they
// are rewritten as decimal ones first. A "&#x" without a number is lost.
QString decimalCharacterReferences(const QString &text)
{
    const QLatin1String marker("&#x");
    if (!text.contains(marker))
        return text;
    const QStringList pieces = text.split(marker);
    QString out = pieces.first();
    for (qsizetype p = 1; p < pieces.size(); ++p) {
        const QString &piece = pieces.at(p);
        qsizetype digits = 0;
        while (digits < piece.size() && digits < 8 && isHexDigit(piece.at(digits)))
            ++digits;
        bool ok = false;
        const quint32 value = piece.left(digits).toUInt(&ok, 16);
        if (digits == 0 || !ok) {
            out += piece;
            continue;
        }
        out += QLatin1String("&#") + QString::number(value) + piece.mid(digits);
    }
    return out;
}

} // namespace

QString ZTText::quickFlattenHTML(const QString &text)
{
    if (!containsNonWhitespace(text))
        return text;
    QString out;
    out.reserve(text.size());
    qsizetype at = 0;
    while (at < text.size()) {
        const qsizetype open = text.indexOf(QLatin1Char('<'), at);
        const qsizetype close = open < 0 ? -1 : text.indexOf(QLatin1Char('>'), open);
        if (close < 0) {
            out += QStringView(text).mid(at);
            break;
        }
        out += QStringView(text).mid(at, open - at);
        at = close + 1;
    }
    return out;
}

QString ZTText::flattenHTML(const QString &text)
{
    if (text.isEmpty())
        return text;
    const QString decimal = decimalCharacterReferences(text);
    // Texts under four units went through Mac OS Roman, longer ones through
    // UTF-16; a short text with no Mac OS Roman form comes back untouched.
    if (decimal.size() < 4) {
        QByteArray bytes;
        if (!ZTMacRoman::encode(decimal, &bytes))
            return text;
        return ZTHTMLToText::convert(ZTMacRoman::decode(bytes));
    }
    return ZTHTMLToText::convert(decimal);
}

QString ZTText::convertHTMLToRegularText(const QString &text)
{
    if (text.isEmpty())
        return text;
    QString out = text;
    for (const Replacement &r : regularTextReplacements())
        out.replace(r.first, r.second);
    return out;
}

QString ZTText::decodeHTML(const QString &text)
{
    ZTHTMLFlattener flattener;
    return flattener.convertEntitiesInString(text);
}

QString ZTText::htmlString(const QString &text)
{
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text.at(i).unicode();
        switch (c) {
        case '"':
            out += QLatin1String("&quot;");
            continue;
        case '&':
            out += QLatin1String("&amp;");
            continue;
        case '<':
            out += QLatin1String("&lt;");
            continue;
        case '>':
            out += QLatin1String("&gt;");
            continue;
        default:
            break;
        }
        if (c < 128) {
            out += QChar(c);
            continue;
        }
        // A surrogate pair is one character: one reference to its code point,
        // which a browser can show, rather than two to its halves.
        char32_t code = c;
        if (QChar::isHighSurrogate(c) && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            code = QChar::surrogateToUcs4(c, text.at(++i).unicode());
        out += QLatin1String("&#") + QString::number(quint32(code)) + QLatin1Char(';');
    }
    return out;
}

QString ZTText::nonBreakingSpaceString(const QString &text)
{
    if (text.isEmpty())
        return text;
    return QString(text).replace(QLatin1Char(' '), QLatin1String("&nbsp;"));
}

QString ZTText::convertToXML(const QString &text)
{
    if (text.isEmpty())
        return text;
    // Escaped ampersands are parked first so that they are not escaped twice.
    const QLatin1String marker("[[[AMPERSAND PLACEHOLDER]]]");
    QString out = text;
    out.replace(QLatin1String("&amp;"), marker);
    out.replace(QLatin1String("&"), QLatin1String("&amp;"));
    out.replace(marker, QLatin1String("&amp;"));
    out.replace(QLatin1String("<"), QLatin1String("&lt;"));
    return out;
}

QString ZTText::convertFromXML(const QString &text)
{
    if (text.isEmpty())
        return text;
    QString out = text;
    out.replace(QLatin1String("&lt;"), QLatin1String("<"));
    out.replace(QLatin1String("&amp;"), QLatin1String("&"));
    return out;
}
