#pragma once

#include "model/ZTDateBit.h"

#include <QString>

// How a locale writes a date: one symbol per part, the character between the
// parts and the order of the parts. Symbols are date-pattern symbols ("d",
// "dd", "M", "MM", "yyyy"), the same ones ZTPatternDateFormatter reads.
class ZTDateFormatObject {
public:
    // The order of the parts. Unknown builds formats like MonthDayYear.
    enum FormatOrder : uint {
        Unknown = 0,
        MonthDayYear = 1,
        DayMonthYear = 2,
        YearMonthDay = 3,
        YearDayMonth = 4
    };

    ZTDateFormatObject() = default;
    ZTDateFormatObject(const QString &yearFormat, const QString &monthFormat, const QString &dayFormat,
                       const QString &delimiter, uint formatOrder);

    // "MM/dd/YYYY", month first: what is used when a locale's own short
    // format cannot be understood.
    static ZTDateFormatObject fallback();

    QString yearFormat() const { return m_yearFormat; }
    QString monthFormat() const { return m_monthFormat; }
    QString dayFormat() const { return m_dayFormat; }
    QString delimiter() const { return m_delimiter; }
    uint formatOrder() const { return m_formatOrder; }

    // The pattern for the known parts: all three in the object's order for a
    // full date; month and year (year first for the year-first orders); or the
    // year alone.
    QString dateFormatWithDateBit(ZTDateBit bit) const;
    // The same pattern as the user reads it in a sheet's format field: each
    // part upper-cased and translated ("yyyy" shows as the translation of "YYYY").
    QString localizedDateFormatWithDateBit(ZTDateBit bit) const;

    friend bool operator==(const ZTDateFormatObject &a, const ZTDateFormatObject &b) = default;

private:
    template <typename PartText> QString joinParts(ZTDateBit bit, PartText partText) const;

    QString m_yearFormat;
    QString m_monthFormat;
    QString m_dayFormat;
    QString m_delimiter;
    uint m_formatOrder = Unknown;
};
