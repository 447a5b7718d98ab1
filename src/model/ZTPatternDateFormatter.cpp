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

static QString padded(int number, int width)
{
    return QStringLiteral("%1").arg(number, width, 10, QLatin1Char('0'));
}

QString ZTPatternDateFormatter::stringFromDate(const QDate &date) const
{
    if (!date.isValid())
        return QString();
    QString text;
    for (const Segment &segment : m_segments) {
        switch (segment.kind) {
        case Segment::Literal:
            text += segment.literal;
            break;
        case Segment::Day:
            text += padded(date.day(), std::min(segment.width, 2));
            break;
        case Segment::Month:
            text += padded(date.month(), std::min(segment.width, 2));
            break;
        case Segment::Year: {
            const int year = ZTDateFormatter::eraYear(date);
            text += segment.width == 2 ? padded(year % 100, 2) : padded(year, segment.width);
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
