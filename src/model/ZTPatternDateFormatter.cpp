#include "model/ZTPatternDateFormatter.h"

#include "model/ZTDateFormatter.h"

ZTPatternDateFormatter::ZTPatternDateFormatter(const QString &dateFormat)
    : m_dateFormat(dateFormat), m_segments(segments(dateFormat))
{
}

QList<ZTPatternDateFormatter::Segment> ZTPatternDateFormatter::segments(const QString &pattern)
{
    QList<Segment> result;
    for (qsizetype i = 0; i < pattern.size();) {
        const QChar c = pattern.at(i);
        qsizetype end = i + 1;
        while (end < pattern.size() && pattern.at(end) == c)
            ++end;
        const int width = int(end - i);
        Segment::Kind kind = Segment::Literal;
        if (c == QLatin1Char('d'))
            kind = Segment::Day;
        else if (c == QLatin1Char('M'))
            kind = Segment::Month;
        else if (c == QLatin1Char('y') || c == QLatin1Char('Y'))
            kind = Segment::Year;
        if (kind == Segment::Literal) {
            if (result.isEmpty() || result.last().kind != Segment::Literal)
                result.append(Segment());
            result.last().literal += pattern.mid(i, width);
        } else {
            // "YYYY" is read as the calendar year: the week-based year it means
            // in some pattern languages would print the wrong year around New Year.
            result.append(Segment{kind, width, QString()});
        }
        i = end;
    }
    return result;
}

// Appends the number in ASCII digits, with leading zeros up to the width.
static void appendPadded(QString &text, int number, int width)
{
    char digits[16];
    int count = 0;
    const bool negative = number < 0;
    unsigned value = negative ? 0u - unsigned(number) : unsigned(number);
    do {
        digits[count++] = char('0' + value % 10);
        value /= 10;
    } while (value != 0 && count < int(sizeof digits));
    if (negative)
        text += QLatin1Char('-');
    for (int i = count; i < width; ++i)
        text += QLatin1Char('0');
    while (count > 0)
        text += QLatin1Char(digits[--count]);
}

QString ZTPatternDateFormatter::stringFromDate(const QDate &date) const
{
    if (!date.isValid())
        return QString();
    QString text;
    text.reserve(m_dateFormat.size() + 4);
    for (const Segment &segment : m_segments) {
        switch (segment.kind) {
        case Segment::Literal:
            text += segment.literal;
            break;
        case Segment::Day:
            appendPadded(text, date.day(), std::min(segment.width, 2));
            break;
        case Segment::Month:
            appendPadded(text, date.month(), std::min(segment.width, 2));
            break;
        case Segment::Year: {
            const int year = ZTDateFormatter::eraYear(date);
            appendPadded(text, segment.width == 2 ? year % 100 : year, segment.width);
            break;
        }
        }
    }
    return text;
}

QString ZTPatternDateFormatter::stringFromDate(const QDateTime &date) const
{
    return date.isValid() ? stringFromDate(date.toLocalTime().date()) : QString();
}

QDateTime ZTPatternDateFormatter::dateFromString(const QString &text) const
{
    QList<const Segment *> fields;
    for (const Segment &segment : m_segments) {
        if (segment.kind != Segment::Literal)
            fields.append(&segment);
    }
    const QList<qint64> runs = ZTDateFormatter::digitRuns(text, int(fields.size()));
    if (fields.isEmpty() || runs.size() < fields.size())
        return QDateTime();

    qint64 year = -1, month = 1, day = 1;
    bool twoDigitYear = false;
    for (qsizetype i = 0; i < fields.size(); ++i) {
        switch (fields[i]->kind) {
        case Segment::Day:
            day = runs[i];
            break;
        case Segment::Month:
            month = runs[i];
            break;
        case Segment::Year:
            year = runs[i];
            twoDigitYear = fields[i]->width == 2;
            break;
        case Segment::Literal:
            break;
        }
    }
    if (year < 0 || day < 1 || day > 31 || month < 1 || month > 12)
        return QDateTime();
    if (twoDigitYear && year < 100) {
        const int thisYear = QDate::currentDate().year();
        year += thisYear - thisYear % 100;
        if (year > thisYear + 20)
            year -= 100;
    }
    return ZTDateFormatter::dateAtMidnight(year, int(month), int(day));
}
