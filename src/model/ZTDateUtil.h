#pragma once

#include "model/ZTDateBit.h"
#include "model/ZTDateFormatObject.h"
#include "model/ZTPatternDateFormatter.h"

#include <QDateTime>
#include <QLocale>
#include <QString>

// The date formats of the program, learnt from the locale's short date format.
// Every operation takes the locale to learn from; by default that is QLocale(),
// which follows QLocale::setDefault.
class ZTDateUtil {
public:
    // How the locale orders and separates a date, always with the full year.
    // Formats that cannot be understood give ZTDateFormatObject::fallback().
    static ZTDateFormatObject dateFormatObject(const QLocale &locale = QLocale());
    // The same learning applied to a given short-format text.
    static ZTDateFormatObject dateFormatObjectForFormat(const QString &shortFormat);

    // The full-date pattern.
    static QString dateFormatString(const QLocale &locale = QLocale());
    static QString standardDateFormatString(const QLocale &locale = QLocale());
    // The localised pattern a sheet's format field shows for a bit.
    static QString standardDateFormatStringForDateBit(ZTDateBit bit, const QLocale &locale = QLocale());

    static ZTPatternDateFormatter standardDateFormatter(const QLocale &locale = QLocale());
    static ZTPatternDateFormatter standardDateWithYearFormatter(const QLocale &locale = QLocale());
    static ZTPatternDateFormatter standardDateWithYearMonthFormatter(const QLocale &locale = QLocale());
    static ZTPatternDateFormatter standardDateWithYearMonthDayFormatter(const QLocale &locale = QLocale());
    static ZTPatternDateFormatter standardDateFormatterForDateBit(ZTDateBit bit,
                                                                  const QLocale &locale = QLocale());

    // An item's date as shown: only the parts the bit says are known; empty
    // when there is no date. Dates without a bit of their own (lent, due,
    // added, modified) pass ZTDateBit::FullDate.
    static QString displayString(const QDateTime &date, ZTDateBit bit, const QLocale &locale = QLocale());
    static QString displayString(const QDate &date, ZTDateBit bit, const QLocale &locale = QLocale());
    // The date used, or without one the translated "Yes" or "No" by isUsed.
    static QString dateUsedString(const QDateTime &date, ZTDateBit bit, bool isUsed,
                                  const QLocale &locale = QLocale());

    // "dateUsedBitFlag" for "dateUsed", and likewise for "datePublished",
    // "originalDatePublished" and "dateObtained"; empty for every other key,
    // whose dates are always full dates.
    static QString bitFlagKeyForDateKey(const QString &key);
};
