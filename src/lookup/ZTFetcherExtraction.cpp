// The tag-extraction family of ZTFetcher: each member cuts one value out of a
// page and stores it in dict when the key is wanted. A missing tag or a value
// that breaks a rule leaves the key as it was.
#include "lookup/ZTFetcher.h"

#include "base/ZTCalendarExtras.h"
#include "base/ZTStringExtras.h"

#include <cmath>

using namespace ZTText;

namespace {

QString between(const QString &text, const QString &startTag, const QString &endTag)
{
    return rangeBetweenString(text, startTag, endTag).of(text);
}

// The value of a run of decimal digits of any script; -1 when it does not fit.
qint64 digitsValue(const QString &digits, qint64 limit)
{
    qint64 value = 0;
    for (const QChar c : digits) {
        const int digit = c.digitValue();
        if (digit < 0)
            return -1;
        value = value * 10 + digit;
        if (value > limit)
            return -1;
    }
    return value;
}

double digitsDouble(const QString &digits)
{
    double value = 0;
    for (const QChar c : digits)
        value = value * 10 + qMax(0, c.digitValue());
    return value;
}

// Leading blanks, an optional sign, then digits, as C's atoi reads a text;
// anything else gives 0.
int leadingInteger(const QString &text)
{
    qsizetype i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    bool negative = false;
    if (i < text.size() && (text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+')))
        negative = text.at(i++) == QLatin1Char('-');
    qint64 value = 0;
    for (; i < text.size() && text.at(i).isDigit() && value < 100000000; ++i)
        value = value * 10 + text.at(i).digitValue();
    return int(negative ? -value : value);
}

} // namespace

void ZTFetcher::updateStringForKey(const QString &key, const QString &text, const QString &startTag,
                                   const QString &endTag)
{
    if (!isRequested(key))
        return;
    const QString stretch = between(text, startTag, endTag);
    if (stretch.isNull())
        return;
    // Twice, because sites deliver text that was escaped twice.
    const QString value = flattenHTML(flattenHTML(stringByTrimmingWhitespace(stretch)));
    if (containsNonWhitespace(value))
        m_dict.insert(key, value);
}

void ZTFetcher::updateStringForKey(const QString &key, const QString &text, const QString &startTag,
                                   const QString &endTag, const QString &subStartTag,
                                   const QString &subEndTag)
{
    if (!isRequested(key))
        return;
    const QString outer = stringByTrimmingWhitespace(between(text, startTag, endTag));
    if (containsNonWhitespace(outer))
        updateStringForKey(key, outer, subStartTag, subEndTag);
}

void ZTFetcher::updateMultipleStringForKey(const QString &key, const QString &text, const QString &startTag,
                                           const QString &endTag, ZTFlatten flatten)
{
    if (!isRequested(key))
        return;
    QStringList values;
    // Walks by offset rather than cutting copies, so that a page with many
    // matches costs one pass.
    qsizetype offset = 0;
    for (;;) {
        const ZTRange range = rangeBetweenString(text, startTag, endTag, ZTSearchOption::None,
                                                 ZTRange(offset, text.size() - offset));
        if (!range.isFound())
            break;
        QString value = stringByTrimmingWhitespace(range.of(text));
        if (flatten == ZTFlatten::Yes)
            value = flattenHTML(value);
        if (containsNonWhitespace(value))
            values << value;
        // Go on behind the first start tag, then behind the first end tag in
        // what remains; a null or absent tag moves nothing.
        qsizetype next = offset;
        const qsizetype start = startTag.isEmpty() ? -1 : text.indexOf(startTag, next);
        if (start >= 0)
            next = start + startTag.size();
        const qsizetype end = endTag.isEmpty() ? -1 : text.indexOf(endTag, next);
        if (end >= 0)
            next = end + endTag.size();
        if (next <= offset)
            break;
        offset = next;
    }
    if (!values.isEmpty())
        m_dict.insert(key, values);
}

void ZTFetcher::updateMultipleStringForKey(const QString &key, const QString &text, const QString &startTag,
                                           const QString &endTag, const QString &subStartTag,
                                           const QString &subEndTag, ZTFlatten flatten)
{
    if (!isRequested(key))
        return;
    const QString outer = between(text, startTag, endTag);
    if (containsNonWhitespace(outer))
        updateMultipleStringForKey(key, outer, subStartTag, subEndTag, flatten);
}

void ZTFetcher::updatePriceForKey(const QString &key, const QString &text, const QString &startTag,
                                  const QString &endTag, std::optional<double> divisor)
{
    if (!isRequested(key))
        return;
    const QString digits = digitsOnly(between(text, startTag, endTag));
    if (!containsNonWhitespace(digits))
        return;
    double value = digitsDouble(digits);
    if (divisor)
        value /= *divisor;
    // Rounded to cents so that 1299 / 100 is stored as 12.99 exactly as shown.
    value = std::round(value * 100.0) / 100.0;
    if (value >= 0 && value < 10000)
        m_dict.insert(key, value);
}

void ZTFetcher::updatePriceForKey(const QString &key, const QString &text, const QString &startTag,
                                  const QString &endTag, const QString &subStartTag, const QString &subEndTag,
                                  std::optional<double> divisor)
{
    if (!isRequested(key))
        return;
    const QString outer = between(text, startTag, endTag);
    if (containsNonWhitespace(outer))
        updatePriceForKey(key, outer, subStartTag, subEndTag, divisor);
}

void ZTFetcher::updateYearForKey(const QString &key, const QString &text, const QString &startTag,
                                 const QString &endTag, ZTYearEnd end)
{
    if (!isRequested(key))
        return;
    const QString stretch = stringByTrimmingWhitespace(between(text, startTag, endTag));
    if (stretch.size() < 4)
        return;
    const int year = leadingInteger(end == ZTYearEnd::FromEnd ? stretch.right(4) : stretch.left(4));
    if (year >= 1 && year <= 9999)
        m_dict.insert(key, year);
}

void ZTFetcher::updateYearForKey(const QString &key, const QString &text, const QString &startTag,
                                 const QString &endTag, const QString &subStartTag, const QString &subEndTag,
                                 ZTYearEnd end)
{
    if (!isRequested(key))
        return;
    const QString outer = stringByTrimmingWhitespace(between(text, startTag, endTag));
    if (containsNonWhitespace(outer))
        updateYearForKey(key, outer, subStartTag, subEndTag, end);
}

void ZTFetcher::updateIntegerForKey(const QString &key, const QString &text, const QString &startTag,
                                    const QString &endTag)
{
    if (!isRequested(key))
        return;
    const QString digits = digitsOnly(between(text, startTag, endTag));
    if (digits.isEmpty())
        return;
    const qint64 value = digitsValue(digits, 1000000);
    if (value > 0 && value < 100000)
        m_dict.insert(key, int(value));
}

void ZTFetcher::updateIntegerForKey(const QString &key, const QString &text, const QString &startTag,
                                    const QString &endTag, const QString &subStartTag,
                                    const QString &subEndTag)
{
    if (!isRequested(key))
        return;
    const QString outer = stringByTrimmingWhitespace(between(text, startTag, endTag));
    if (!containsNonWhitespace(outer))
        return;
    const QString digits = digitsOnly(between(outer, subStartTag, subEndTag));
    if (digits.isEmpty())
        return;
    // Narrower than the plain form: these are counts read inside a block.
    const qint64 value = digitsValue(digits, 1000000);
    if (value >= 1 && value <= 9999)
        m_dict.insert(key, int(value));
}

void ZTFetcher::updateDateForKey(const QString &key, const QString &text, const QString &startTag,
                                 const QString &endTag, const QString &)
{
    if (!isRequested(key))
        return;
    const QString stretch = between(text, startTag, endTag);
    if (!stretch.isNull())
        setDate(key, stretch);
}

void ZTFetcher::updateDateForKey(const QString &key, const QString &text, const QString &startTag,
                                 const QString &endTag, const QString &subStartTag, const QString &subEndTag,
                                 const QString &dateFormat)
{
    if (!isRequested(key))
        return;
    const QString outer = stringByTrimmingWhitespace(between(text, startTag, endTag));
    if (containsNonWhitespace(outer))
        updateDateForKey(key, outer, subStartTag, subEndTag, dateFormat);
}

void ZTFetcher::setDate(const QString &key, const QString &stretch)
{
    const QStringList pieces = stretch.split(QLatin1Char('-'));
    const QString yearDigits = digitsOnly(pieces.value(0));
    if (yearDigits.size() != 4)
        return;
    const int year = int(digitsValue(yearDigits, 9999));
    int month = 6;
    int day = 15;
    int flag = 2;
    if (pieces.size() > 1) {
        const qint64 m = digitsValue(digitsOnly(pieces.at(1)), 99);
        if (m >= 1 && m <= 12) {
            month = int(m);
            flag = 1;
            if (pieces.size() > 2) {
                const qint64 d = digitsValue(digitsOnly(pieces.at(2)), 99);
                if (d >= 1 && d <= 31) {
                    day = int(d);
                    flag = 0;
                }
            }
        }
    }
    // A day past the month's end rolls into the next month, as a calendar's
    // date arithmetic does, rather than losing the date.
    const QDate first(year, month, 1, ZTCalendar::gregorianCalendar());
    if (!first.isValid())
        return;
    const QDateTime date(first.addDays(day - 1), QTime(12, 0, 0));
    if (!date.isValid())
        return;
    m_dict.insert(key, date);
    m_dict.insert(key + QStringLiteral("BitFlag"), flag);
}
