#include "base/ZTStringExtras.h"

#include <algorithm>

namespace {

bool isBlankOrLineEnd(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\r') ||
           c == QLatin1Char('\n');
}

template <typename Keep> QString filtered(const QString &text, Keep keep)
{
    QString out;
    out.reserve(text.size());
    for (QChar c : text) {
        if (keep(c))
            out.append(c);
    }
    return out;
}

template <typename Drop> QString trimmed(const QString &text, Drop drop)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && drop(text.at(start)))
        ++start;
    while (end > start && drop(text.at(end - 1)))
        --end;
    return text.mid(start, end - start);
}

// The range clamped to the text, so that a caller's stale range never reads
// outside it.
ZTRange clamped(const QString &text, ZTRange range)
{
    if (!range.isFound())
        return ZTRange(0, 0);
    const qsizetype location = std::clamp<qsizetype>(range.location, 0, text.size());
    const qsizetype length = std::clamp<qsizetype>(range.length, 0, text.size() - location);
    return ZTRange(location, length);
}

// Position of tag inside [from, to) of text, or -1. An empty tag is never
// found, as with the platform search this code was modelled on.
qsizetype find(const QString &text, const QString &tag, qsizetype from, qsizetype to, ZTSearchOption options)
{
    if (tag.isEmpty() || to - from < tag.size())
        return -1;
    const QStringView window = QStringView(text).mid(from, to - from);
    const qsizetype at = options == ZTSearchOption::Backwards ? window.lastIndexOf(tag) : window.indexOf(tag);
    return at < 0 ? -1 : from + at;
}

struct TagHit {
    qsizetype firstStart; // where the first tag begins (or the range start)
    qsizetype innerStart; // behind the first tag
    qsizetype innerEnd;   // where the second tag begins (or the range end)
    qsizetype secondEnd;  // behind the second tag
};

bool locate(const QString &text, const QString &first, const QString &second, ZTSearchOption options,
            ZTRange range, TagHit *hit)
{
    const ZTRange r = clamped(text, range);
    hit->firstStart = r.location;
    hit->innerStart = r.location;
    if (!first.isNull()) {
        const qsizetype at = find(text, first, r.location, r.end(), options);
        if (at < 0)
            return false;
        hit->firstStart = at;
        hit->innerStart = at + first.size();
    }
    hit->innerEnd = r.end();
    hit->secondEnd = r.end();
    if (!second.isNull()) {
        const qsizetype at = find(text, second, hit->innerStart, r.end(), options);
        if (at < 0)
            return false;
        hit->innerEnd = at;
        hit->secondEnd = at + second.size();
    }
    return true;
}

int romanDigitValue(QChar c)
{
    switch (c.unicode()) {
    case 'I':
        return 1;
    case 'V':
        return 5;
    case 'X':
        return 10;
    case 'L':
        return 50;
    case 'C':
        return 100;
    case 'D':
        return 500;
    case 'M':
        return 1000;
    default:
        return -1;
    }
}

} // namespace

ZTRange ZTText::rangeBetweenString(const QString &text, const QString &first, const QString &second,
                                   ZTSearchOption options, ZTRange range)
{
    TagHit hit;
    if (!locate(text, first, second, options, range, &hit))
        return ZTRange::notFound();
    return ZTRange(hit.innerStart, hit.innerEnd - hit.innerStart);
}

ZTRange ZTText::rangeFromString(const QString &text, const QString &first, const QString &second,
                                ZTSearchOption options, ZTRange range)
{
    TagHit hit;
    return locate(text, first, second, options, range, &hit)
               ? ZTRange(hit.firstStart, hit.secondEnd - hit.firstStart)
               : ZTRange::notFound();
}

QString ZTText::digitsOnly(const QString &text)
{
    return filtered(text, [](QChar c) { return c.isDigit(); });
}

bool ZTText::containsNonWhitespace(const QString &text)
{
    return std::any_of(text.cbegin(), text.cend(), [](QChar c) { return !c.isSpace(); });
}

QString ZTText::stringByTrimmingWhitespace(const QString &text)
{
    // Only the four ASCII blanks: a leading non-breaking space is content on
    // the pages this is used on.
    return trimmed(text, isBlankOrLineEnd);
}

QString ZTText::stringByTrimmingPunctuation(const QString &text)
{
    return trimmed(text, [](QChar c) { return c.isPunct(); });
}

QString ZTText::stringByStrippingPunctuation(const QString &text)
{
    return filtered(text, [](QChar c) { return !c.isPunct(); });
}

QString ZTText::stringByStrippingDashesAndWhitespace(const QString &text)
{
    return filtered(text, [](QChar c) { return !isBlankOrLineEnd(c) && c != QLatin1Char('-'); });
}

QString ZTText::noSpaces(const QString &text)
{
    return filtered(text, [](QChar c) { return c != QLatin1Char(' '); });
}

QString ZTText::replaceString(const QString &text, const QString &search, const QString &replacement)
{
    if (search.isEmpty() || text.isEmpty())
        return text;
    QString out = text;
    return out.replace(search, replacement.isNull() ? QString(QLatin1String("")) : replacement);
}

QString ZTText::capitalizedFirstLetterString(const QString &text)
{
    if (text.isEmpty())
        return text;
    // A letter outside the basic plane takes two units; upper-case it whole.
    const qsizetype first =
        (text.size() > 1 && text.at(0).isHighSurrogate() && text.at(1).isLowSurrogate()) ? 2 : 1;
    return text.left(first).toUpper() + text.mid(first);
}

QStringList ZTText::componentsSeparatedByLineSeparators(const QString &text)
{
    QStringList lines;
    qsizetype start = 0;
    qsizetype i = 0;
    while (i < text.size()) {
        const char16_t c = text.at(i).unicode();
        if (c == u'\n' || c == u'\r' || c == 0x2028 || c == 0x2029) {
            lines.append(text.mid(start, i - start));
            i += (c == u'\r' && i + 1 < text.size() && text.at(i + 1) == QLatin1Char('\n')) ? 2 : 1;
            start = i;
        } else {
            ++i;
        }
    }
    // Like the platform's line enumeration: a final terminator does not open
    // an empty last line.
    if (start < text.size())
        lines.append(text.mid(start));
    return lines;
}

QString ZTText::reverseFirstLastName(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 2)
        return text;
    return stringByTrimmingWhitespace(parts.at(1)) + QLatin1Char(' ') +
           stringByTrimmingWhitespace(parts.at(0));
}

qint64 ZTText::arabicNumeralFromRomanNumeral(const QString &text)
{
    if (text.isEmpty())
        return -1;
    qint64 total = 0;
    int previous = 0;
    for (QChar c : text.toUpper()) {
        const int value = romanDigitValue(c);
        if (value < 0)
            return -1;
        total += value;
        if (previous < value)
            total -= 2 * previous;
        previous = value;
    }
    return total;
}
