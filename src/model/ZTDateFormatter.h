#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QVariant>

#include <limits>

// The text-to-date formatter of the edit sheets. Its format text uses tokens
// rather than locale symbols:
//   "%d" two-digit day      "%e"  day without padding
//   "%m" two-digit month    "%1m" month without padding
//   "%Y" full year          "%y"  two-digit year
// Parsing reads the first three runs of digits and lets the token positions
// say which is the day, the month and the year, so any separator works.
class ZTDateFormatter {
public:
    explicit ZTDateFormatter(const QString &dateFormat = QString()) : m_dateFormat(dateFormat) {}
    // The token format matching a date pattern such as "dd.MM.yyyy" ("%d.%m.%Y").
    static ZTDateFormatter fromDatePattern(const QString &pattern);

    QString dateFormat() const { return m_dateFormat; }
    void setDateFormat(const QString &dateFormat) { m_dateFormat = dateFormat; }

    // A QDate or QDateTime (read in local time) printed through the format;
    // a null string for anything else.
    QString stringForObjectValue(const QVariant &value) const;
    // On success a non-blank string sets *value to a local QDateTime at
    // midnight; blank text succeeds and leaves *value alone. A null string,
    // fewer than three numbers, a format without all three tokens or a day or
    // month out of range fails, leaving *value alone.
    bool getObjectValue(QVariant *value, const QString &string, QString *errorDescription = nullptr) const;

    // Shared with ZTPatternDateFormatter.
    // The first `maximum` runs of decimal digits (any script) in text, as
    // numbers; separators of any length sit between runs. A number too large
    // for an int reads as tooLarge, which every range check rejects.
    static constexpr qint64 tooLarge = qint64(std::numeric_limits<int>::max()) + 1;
    static QList<qint64> digitRuns(const QString &text, int maximum);
    // Day and month already range-checked; the day may pass the month's end and
    // then runs on into the next month, as the Gregorian calendar does it. Year
    // 0 is the year before 1. Invalid when the calendar cannot hold the year.
    static QDateTime dateAtMidnight(qint64 year, int month, int day);
    // The year as written: the year of the era, so 1 BC prints as 1.
    static int eraYear(const QDate &date);

private:
    QString m_dateFormat;
};
