#pragma once

#include "store/ZTManagedObject.h"

#include <QDateTime>

// One loan of one item; present exactly while the item is lent out.
class ZTLendingContext : public ZTManagedObject {
public:
    QString name() const { return primitiveValueForKey(QStringLiteral("name")).toString(); }
    QString email() const { return primitiveValueForKey(QStringLiteral("email")).toString(); }
    QDateTime dateLent() const { return primitiveValueForKey(QStringLiteral("dateLent")).toDateTime(); }
    QDateTime dateDue() const { return primitiveValueForKey(QStringLiteral("dateDue")).toDateTime(); }
    ZTLendingContext *clone(ZTManagedObjectContext *target) const;

    // The borrower as lists sort them: "Last, First"; kept in memory only.
    QString nameLastNameFirst() const { return m_nameLastNameFirst; }
    void updateName();
    void awakeFromFetch() override;

private:
    QString m_nameLastNameFirst;
};
