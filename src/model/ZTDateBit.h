#pragma once

#include <QVariant>

// How much of a stored date is known. Every partial date is kept as a full
// calendar date plus this bit; the unknown parts carry whatever the date was
// built with and are never shown.
class ZTDateBit {
public:
    enum Precision : int { FullDate = 0, YearMonth = 1, Year = 2 };

    constexpr ZTDateBit() = default;
    constexpr ZTDateBit(Precision precision) : m_precision(precision) {}

    // The stored flag is an unsigned number in the library, so anything other
    // than 0 or 1 (a value above 2, or a negative one from a damaged row) reads
    // as the coarsest precision rather than being rejected.
    static constexpr ZTDateBit fromStored(qint64 stored)
    {
        if (stored == FullDate)
            return FullDate;
        if (stored == YearMonth)
            return YearMonth;
        return Year;
    }
    // A missing or non-numeric flag is the item's default, a full date.
    static ZTDateBit fromVariant(const QVariant &stored);

    constexpr Precision precision() const { return m_precision; }
    constexpr int value() const { return int(m_precision); }
    constexpr bool knowsMonth() const { return m_precision != Year; }
    constexpr bool knowsDay() const { return m_precision == FullDate; }

    // The order a click on a date's format field walks through:
    // full date, year and month, year, and back to the full date.
    constexpr ZTDateBit next() const
    {
        switch (m_precision) {
        case FullDate:
            return YearMonth;
        case YearMonth:
            return Year;
        case Year:
            break;
        }
        return FullDate;
    }

    friend constexpr bool operator==(ZTDateBit a, ZTDateBit b) = default;

private:
    Precision m_precision = FullDate;
};
