#include "model/ZTDateFormatObject.h"

#include <QCoreApplication>
#include <QStringList>

ZTDateFormatObject::ZTDateFormatObject(const QString &yearFormat, const QString &monthFormat,
                                       const QString &dayFormat, const QString &delimiter, uint formatOrder)
    : m_yearFormat(yearFormat), m_monthFormat(monthFormat), m_dayFormat(dayFormat), m_delimiter(delimiter),
      m_formatOrder(formatOrder)
{
}

ZTDateFormatObject ZTDateFormatObject::fallback()
{
    return ZTDateFormatObject(QStringLiteral("YYYY"), QStringLiteral("MM"), QStringLiteral("dd"),
                              QStringLiteral("/"), MonthDayYear);
}

template <typename PartText> QString ZTDateFormatObject::joinParts(ZTDateBit bit, PartText partText) const
{
    const QString year = partText(m_yearFormat);
    const QString month = partText(m_monthFormat);
    const QString day = partText(m_dayFormat);
    QStringList parts;
    switch (bit.precision()) {
    case ZTDateBit::FullDate:
        switch (m_formatOrder) {
        case DayMonthYear:
            parts = {day, month, year};
            break;
        case YearMonthDay:
            parts = {year, month, day};
            break;
        case YearDayMonth:
            parts = {year, day, month};
            break;
        default:
            parts = {month, day, year};
            break;
        }
        break;
    case ZTDateBit::YearMonth:
        // Orders outside the four known ones build like month-day-year.
        if (m_formatOrder == YearMonthDay || m_formatOrder == YearDayMonth)
            parts = {year, month};
        else
            parts = {month, year};
        break;
    case ZTDateBit::Year:
        parts = {year};
        break;
    }
    return parts.join(m_delimiter);
}

QString ZTDateFormatObject::dateFormatWithDateBit(ZTDateBit bit) const
{
    return joinParts(bit, [](const QString &symbol) { return symbol; });
}

QString ZTDateFormatObject::localizedDateFormatWithDateBit(ZTDateBit bit) const
{
    return joinParts(bit, [](const QString &symbol) {
        const QByteArray upper = symbol.toUpper().toUtf8();
        return QCoreApplication::translate("Localizable", upper.constData());
    });
}
