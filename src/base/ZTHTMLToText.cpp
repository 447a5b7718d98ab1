#include "base/ZTHTMLToText.h"

#include "base/ZTHTMLEntities.h"

#include <QSet>

namespace {

// Browsers read numeric references 128-159 as Windows-1252, as old pages
// written on Windows meant them.
const char16_t s_windows1252[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

const QSet<QString> &blockElements()
{
    static const QSet<QString> s_blocks = {
        QStringLiteral("address"),    QStringLiteral("article"),    QStringLiteral("aside"),
        QStringLiteral("blockquote"), QStringLiteral("body"),       QStringLiteral("caption"),
        QStringLiteral("center"),     QStringLiteral("dd"),         QStringLiteral("dir"),
        QStringLiteral("div"),        QStringLiteral("dl"),         QStringLiteral("dt"),
        QStringLiteral("fieldset"),   QStringLiteral("figcaption"), QStringLiteral("figure"),
        QStringLiteral("footer"),     QStringLiteral("form"),       QStringLiteral("h1"),
        QStringLiteral("h2"),         QStringLiteral("h3"),         QStringLiteral("h4"),
        QStringLiteral("h5"),         QStringLiteral("h6"),         QStringLiteral("header"),
        QStringLiteral("hr"),         QStringLiteral("html"),       QStringLiteral("li"),
        QStringLiteral("main"),       QStringLiteral("menu"),       QStringLiteral("nav"),
        QStringLiteral("ol"),         QStringLiteral("p"),          QStringLiteral("pre"),
        QStringLiteral("section"),    QStringLiteral("table"),      QStringLiteral("tbody"),
        QStringLiteral("tfoot"),      QStringLiteral("thead"),      QStringLiteral("tr"),
        QStringLiteral("ul"),
    };
    return s_blocks;
}

bool isHtmlSpace(QChar c)
{
    const char16_t u = c.unicode();
    return u == ' ' || u == '\t' || u == '\n' || u == '\r' || u == '\f';
}

int digitValue(QChar c, int base)
{
    const char16_t u = c.unicode();
    int value = -1;
    if (u >= '0' && u <= '9')
        value = u - '0';
    else if (u >= 'a' && u <= 'f')
        value = u - 'a' + 10;
    else if (u >= 'A' && u <= 'F')
        value = u - 'A' + 10;
    return value < base ? value : -1;
}

bool isAsciiAlnum(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9');
}

// Entities a browser also resolves without the closing ";": the Latin-1 ones
// and the four of markup.
char32_t legacyEntityCode(QStringView name)
{
    const ZTHTMLEntity *e = ZTHTMLEntities::find(name);
    if (!e)
        return 0;
    const bool legacy = e->code >= 160
                            ? e->code <= 255
                            : (e->code == '"' || e->code == '&' || e->code == '<' || e->code == '>');
    return legacy ? e->code : 0;
}

} // namespace

QString ZTHTMLToText::convert(const QString &html)
{
    return ZTHTMLToText(html).run();
}

QString ZTHTMLToText::run()
{
    while (m_at < m_html.size()) {
        const QChar c = m_html.at(m_at);
        if (c == QLatin1Char('<')) {
            readTag();
        } else if (c == QLatin1Char('&')) {
            readEntity();
        } else if (m_preformatted == 0 && isHtmlSpace(c)) {
            m_pendingSpace = true;
            ++m_at;
        } else if (c == QLatin1Char('\r')) {
            // Preformatted CR LF or CR alone is one line break.
            if (m_at + 1 >= m_html.size() || m_html.at(m_at + 1) != QLatin1Char('\n'))
                m_out.append(QLatin1Char('\n'));
            ++m_at;
        } else {
            appendText(c);
            ++m_at;
        }
    }
    return m_out;
}

void ZTHTMLToText::appendText(QChar c)
{
    if (m_pendingSpace && !m_out.isEmpty() && !m_out.endsWith(QLatin1Char('\n')) &&
        !m_out.endsWith(QLatin1Char('\t')))
        m_out.append(QLatin1Char(' '));
    m_pendingSpace = false;
    m_out.append(c);
}

void ZTHTMLToText::appendText(char32_t codePoint)
{
    if (QChar::requiresSurrogates(codePoint)) {
        appendText(QChar(QChar::highSurrogate(codePoint)));
        m_out.append(QChar(QChar::lowSurrogate(codePoint)));
    } else {
        appendText(QChar(char16_t(codePoint)));
    }
}

void ZTHTMLToText::lineBreak()
{
    m_pendingSpace = false;
    m_out.append(QLatin1Char('\n'));
}

void ZTHTMLToText::endBlock()
{
    // A block starts on a fresh line, but empty blocks add no blank lines.
    if (!m_out.isEmpty() && !m_out.endsWith(QLatin1Char('\n')))
        lineBreak();
    m_pendingSpace = false;
}

void ZTHTMLToText::separateCell()
{
    m_pendingSpace = false;
    if (!m_out.isEmpty() && !m_out.endsWith(QLatin1Char('\n')) && !m_out.endsWith(QLatin1Char('\t')))
        m_out.append(QLatin1Char('\t'));
}

void ZTHTMLToText::readTag()
{
    const qsizetype start = m_at;
    const QStringView rest = QStringView(m_html).mid(start);
    if (rest.startsWith(QLatin1String("<!--"))) {
        const qsizetype end = m_html.indexOf(QLatin1String("-->"), start + 4);
        m_at = end < 0 ? m_html.size() : end + 3;
        return;
    }
    const QChar next = rest.size() > 1 ? rest.at(1) : QChar();
    const bool closing = next == QLatin1Char('/');
    if (!(next.isLetter() || closing || next == QLatin1Char('!') || next == QLatin1Char('?'))) {
        appendText(QChar(QLatin1Char('<')));
        ++m_at;
        return;
    }

    // Find the closing ">", skipping quoted attribute values.
    qsizetype i = start + 1;
    QChar quote;
    QChar lastNonSpace;
    for (; i < m_html.size(); ++i) {
        const QChar c = m_html.at(i);
        if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
            continue;
        }
        if ((c == QLatin1Char('"') || c == QLatin1Char('\'')) && lastNonSpace == QLatin1Char('='))
            quote = c;
        else if (c == QLatin1Char('>'))
            break;
        if (!isHtmlSpace(c))
            lastNonSpace = c;
    }
    m_at = i < m_html.size() ? i + 1 : m_html.size();
    if (next == QLatin1Char('!') || next == QLatin1Char('?'))
        return;

    qsizetype nameStart = start + (closing ? 2 : 1);
    qsizetype nameEnd = nameStart;
    while (nameEnd < i && isAsciiAlnum(m_html.at(nameEnd)))
        ++nameEnd;
    const QString name = m_html.mid(nameStart, nameEnd - nameStart).toLower();

    if (name == QLatin1String("br")) {
        lineBreak();
    } else if (name == QLatin1String("td") || name == QLatin1String("th")) {
        if (!closing)
            separateCell();
    } else if (blockElements().contains(name)) {
        endBlock();
        if (name == QLatin1String("pre"))
            m_preformatted = qMax(0, m_preformatted + (closing ? -1 : 1));
    } else if (!closing && (name == QLatin1String("script") || name == QLatin1String("style") ||
                            name == QLatin1String("title") || name == QLatin1String("template"))) {
        skipRawText(name);
    }
}

void ZTHTMLToText::skipRawText(const QString &name)
{
    const QString end = QLatin1String("</") + name;
    const qsizetype at = m_html.indexOf(end, m_at, Qt::CaseInsensitive);
    if (at < 0) {
        m_at = m_html.size();
        return;
    }
    const qsizetype close = m_html.indexOf(QLatin1Char('>'), at);
    m_at = close < 0 ? m_html.size() : close + 1;
}

void ZTHTMLToText::readEntity()
{
    const qsizetype start = m_at;
    qsizetype i = start + 1;
    if (i < m_html.size() && m_html.at(i) == QLatin1Char('#')) {
        ++i;
        const bool hex =
            i < m_html.size() && (m_html.at(i) == QLatin1Char('x') || m_html.at(i) == QLatin1Char('X'));
        if (hex)
            ++i;
        const qsizetype digitsStart = i;
        quint32 value = 0;
        bool tooLarge = false;
        for (; i < m_html.size(); ++i) {
            const int digit = digitValue(m_html.at(i), hex ? 16 : 10);
            if (digit < 0)
                break;
            if (!tooLarge)
                value = value * (hex ? 16 : 10) + quint32(digit);
            tooLarge = tooLarge || value > 0x10FFFF;
        }
        if (i == digitsStart) {
            appendText(QChar(QLatin1Char('&')));
            m_at = start + 1;
            return;
        }
        if (i < m_html.size() && m_html.at(i) == QLatin1Char(';'))
            ++i;
        m_at = i;
        char32_t code = value;
        if (tooLarge || value == 0 || (value >= 0xD800 && value <= 0xDFFF))
            code = 0xFFFD;
        else if (value >= 0x80 && value <= 0x9F)
            code = s_windows1252[value - 0x80];
        appendText(code);
        return;
    }

    qsizetype end = i;
    while (end < m_html.size() && end - i < 32 && isAsciiAlnum(m_html.at(end)))
        ++end;
    const QStringView name = QStringView(m_html).mid(i, end - i);
    if (end < m_html.size() && m_html.at(end) == QLatin1Char(';')) {
        if (const ZTHTMLEntity *e = ZTHTMLEntities::find(name)) {
            appendText(e->code);
            m_at = end + 1;
            return;
        }
    }
    // Without ";" a browser still takes the longest legacy name at the start.
    for (qsizetype length = qMin<qsizetype>(name.size(), 8); length >= 2; --length) {
        if (const char32_t code = legacyEntityCode(name.left(length))) {
            appendText(code);
            m_at = i + length;
            return;
        }
    }
    appendText(QChar(QLatin1Char('&')));
    m_at = start + 1;
}
