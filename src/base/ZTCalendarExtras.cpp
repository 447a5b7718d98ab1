#include "base/ZTCalendarExtras.h"

const QCalendar &ZTCalendar::gregorianCalendar()
{
    // A function-local static is built once even when threads race to it.
    static const QCalendar s_gregorian(QCalendar::System::Gregorian);
    return s_gregorian;
}

QDateTime ZTCalendar::dateWithYear(int year, int month, int day, int hour, int minute, int second)
{
    const QDate date(year, month, day, gregorianCalendar());
    const QTime time(hour, minute, second);
    if (!date.isValid() || !time.isValid())
        return QDateTime();
    return QDateTime(date, time);
}

QDateTime ZTCalendar::dateInMiddleOfYear(int year)
{
    return dateWithYear(year, 6, 15, 12, 0, 0);
}

QDateTime ZTCalendar::dateAtMiddayWithYear(int year, int month, int day)
{
    return dateWithYear(year, month, day, 12, 0, 0);
}
