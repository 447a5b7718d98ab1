#pragma once

#include <QCalendar>
#include <QDateTime>

// The date conventions of partial dates: a year alone is stored as the middle
// of that year, a day alone as its midday, so that a time-zone shift never
// moves the value into the neighbouring year or day. Times are local.
namespace ZTCalendar {

// One shared Gregorian calendar; safe to use from any thread.
const QCalendar &gregorianCalendar();
// An invalid QDateTime when the fields name no date or time.
QDateTime dateWithYear(int year, int month, int day, int hour, int minute, int second);
QDateTime dateInMiddleOfYear(int year);                       // June 15th, 12:00:00
QDateTime dateAtMiddayWithYear(int year, int month, int day); // 12:00:00

} // namespace ZTCalendar
