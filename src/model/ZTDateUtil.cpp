#include "model/ZTDateUtil.h"

#include <QCoreApplication>
#include <QHash>
#include <QMutex>
#include <QStringList>

namespace {
// Learnt objects by the short-format text they came from.
QMutex s_tableLock;
QHash<QString, ZTDateFormatObject> s_table;

// Short-format parts (lower-cased) and the symbol each becomes. The year is
// always written in full, whatever the locale's short style does; Qt spells a
// plain year as "yyyy", hence the last row.
QString symbolForPart(const QString &part)
{
    static const QHash<QString, QString> symbols = {
        {QStringLiteral("d"), QStringLiteral("d")},       {QStringLiteral("dd"), QStringLiteral("dd")},
        {QStringLiteral("m"), QStringLiteral("M")},       {QStringLiteral("mm"), QStringLiteral("MM")},
        {QStringLiteral("y"), QStringLiteral("yyyy")},    {QStringLiteral("yy"), QStringLiteral("yyyy")},
        {QStringLiteral("yyyy"), QStringLiteral("yyyy")},
    };
    return symbols.value(part);
}
} // namespace

ZTDateFormatObject ZTDateUtil::dateFormatObjectForFormat(const QString &shortFormat)
{
    {
        QMutexLocker locker(&s_tableLock);
        const auto found = s_table.constFind(shortFormat);
        if (found != s_table.constEnd())
            return *found;
    }

    const QString text = shortFormat.toLower();
    const auto delimiterAt = std::find_if(text.cbegin(), text.cend(), [](QChar c) { return !c.isLetter(); });
    if (delimiterAt == text.cend())
        return ZTDateFormatObject::fallback();
    const QString delimiter(*delimiterAt);
    const QStringList parts = text.split(delimiter);
    if (parts.size() != 3)
        return ZTDateFormatObject::fallback();

    // Each part names at most one letter, and each letter counts only the
    // first time it is seen.
    QString day, month, year;
    bool dayTaken = false, monthTaken = false, yearTaken = false;
    for (const QString &part : parts) {
        if (!dayTaken && part.contains(QLatin1Char('d'))) {
            dayTaken = true;
            day = symbolForPart(part);
        } else if (!monthTaken && part.contains(QLatin1Char('m'))) {
            monthTaken = true;
            month = symbolForPart(part);
        } else if (!yearTaken && part.contains(QLatin1Char('y'))) {
            yearTaken = true;
            year = symbolForPart(part);
        }
    }

    const auto holds = [&parts](int index, char letter) {
        return parts[index].contains(QLatin1Char(letter));
    };
    uint order = ZTDateFormatObject::Unknown;
    if (holds(0, 'y'))
        order = holds(2, 'm') ? ZTDateFormatObject::YearDayMonth : ZTDateFormatObject::YearMonthDay;
    else if (holds(2, 'y'))
        order = holds(0, 'm') ? ZTDateFormatObject::MonthDayYear : ZTDateFormatObject::DayMonthYear;

    if (day.isEmpty() || month.isEmpty() || year.isEmpty() || order == ZTDateFormatObject::Unknown)
        return ZTDateFormatObject::fallback();
    const ZTDateFormatObject object(year, month, day, delimiter, order);
    QMutexLocker locker(&s_tableLock);
    s_table.insert(shortFormat, object);
    return object;
}

ZTDateFormatObject ZTDateUtil::dateFormatObject(const QLocale &locale)
{
    return dateFormatObjectForFormat(locale.dateFormat(QLocale::ShortFormat));
}

QString ZTDateUtil::dateFormatString(const QLocale &locale)
{
    return dateFormatObject(locale).dateFormatWithDateBit(ZTDateBit::FullDate);
}

QString ZTDateUtil::standardDateFormatString(const QLocale &locale)
{
    return dateFormatString(locale);
}

QString ZTDateUtil::standardDateFormatStringForDateBit(ZTDateBit bit, const QLocale &locale)
{
    return dateFormatObject(locale).localizedDateFormatWithDateBit(bit);
}

ZTPatternDateFormatter ZTDateUtil::standardDateFormatterForDateBit(ZTDateBit bit, const QLocale &locale)
{
    return ZTPatternDateFormatter(dateFormatObject(locale).dateFormatWithDateBit(bit));
}

ZTPatternDateFormatter ZTDateUtil::standardDateFormatter(const QLocale &locale)
{
    return standardDateFormatterForDateBit(ZTDateBit::FullDate, locale);
}

ZTPatternDateFormatter ZTDateUtil::standardDateWithYearFormatter(const QLocale &locale)
{
    return standardDateFormatterForDateBit(ZTDateBit::Year, locale);
}

ZTPatternDateFormatter ZTDateUtil::standardDateWithYearMonthFormatter(const QLocale &locale)
{
    return standardDateFormatterForDateBit(ZTDateBit::YearMonth, locale);
}

ZTPatternDateFormatter ZTDateUtil::standardDateWithYearMonthDayFormatter(const QLocale &locale)
{
    return standardDateFormatterForDateBit(ZTDateBit::FullDate, locale);
}

QString ZTDateUtil::displayString(const QDateTime &date, ZTDateBit bit, const QLocale &locale)
{
    return date.isValid() ? standardDateFormatterForDateBit(bit, locale).stringFromDate(date) : QString();
}

QString ZTDateUtil::displayString(const QDate &date, ZTDateBit bit, const QLocale &locale)
{
    return date.isValid() ? standardDateFormatterForDateBit(bit, locale).stringFromDate(date) : QString();
}

QString ZTDateUtil::dateUsedString(const QDateTime &date, ZTDateBit bit, bool isUsed, const QLocale &locale)
{
    if (date.isValid())
        return displayString(date, bit, locale);
    return QCoreApplication::translate("Localizable", isUsed ? "Yes" : "No");
}

QString ZTDateUtil::bitFlagKeyForDateKey(const QString &key)
{
    static const QStringList partialDates = {QStringLiteral("dateObtained"), QStringLiteral("dateUsed"),
                                             QStringLiteral("datePublished"),
                                             QStringLiteral("originalDatePublished")};
    return partialDates.contains(key) ? key + QStringLiteral("BitFlag") : QString();
}
