#include "model/ZTItemStatus.h"

namespace ZTItemStatus {

bool isOverdue(const QDate &dateDue, const QDate &today)
{
    return dateDue.isValid() && today.isValid() && dateDue < today;
}

bool isOverdue(const QDateTime &dateDue, const QDate &today)
{
    return dateDue.isValid() && isOverdue(dateDue.toLocalTime().date(), today);
}

} // namespace ZTItemStatus
