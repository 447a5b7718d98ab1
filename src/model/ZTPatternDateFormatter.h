#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

// A date-only formatter over a date pattern of the kind ZTDateFormatObject
// builds: "d"/"dd" day, "M"/"MM" month, "yy" two-digit year, any other run of
// "y" or "Y" the full year; every other character is written as it stands.
// Digits are ASCII whatever the locale, so what it prints reads back.
class ZTPatternDateFormatter {
public:
    struct Segment {
        enum Kind { Literal, Day, Month, Year };
        Kind kind = Literal;
        int width = 0;
        QString literal;
    };

    explicit ZTPatternDateFormatter(const QString &dateFormat = QString());

    QString dateFormat() const { return m_dateFormat; }

    // Null for an invalid date. A QDateTime is read in local time.
    QString stringFromDate(const QDate &date) const;
    QString stringFromDate(const QDateTime &date) const;
    // The numbers are taken in the pattern's order from the runs of digits, so
    // the separators need not match. Parts the pattern lacks are the first
    // month or day; a two-digit year under "yy" falls within the 80 years
    // before and 20 after this year. Invalid when a number is missing or out of
    // range.
    QDateTime dateFromString(const QString &text) const;

    static QList<Segment> segments(const QString &pattern);

private:
    QString m_dateFormat;
    QList<Segment> m_segments;
};
