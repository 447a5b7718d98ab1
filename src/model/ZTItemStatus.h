#pragma once

#include <QDate>
#include <QDateTime>

// Status flags derived from an item's dates.
namespace ZTItemStatus {

// A loan is overdue from the day after its due date: the comparison is by
// calendar day in local time, so an item due today is not yet overdue. A
// missing or invalid due date is never overdue.
bool isOverdue(const QDate &dateDue, const QDate &today = QDate::currentDate());
bool isOverdue(const QDateTime &dateDue, const QDate &today = QDate::currentDate());

} // namespace ZTItemStatus
