#include "model/ZTLendingContext.h"

#include "model/ZTItemText.h"
#include "store/ZTManagedObjectContext.h"

ZTLendingContext *ZTLendingContext::clone(ZTManagedObjectContext *target) const
{
    if (!target)
        return nullptr;
    auto *copy = static_cast<ZTLendingContext *>(target->insertNewObject(QStringLiteral("ZTLendingContext")));
    if (!copy)
        return nullptr;
    for (const char *key : {"name", "email", "dateLent", "dateDue"})
        copy->setPrimitiveValueForKey(primitiveValueForKey(QLatin1String(key)), QLatin1String(key));
    copy->updateName();
    return copy;
}

void ZTLendingContext::updateName()
{
    const QString borrower = name();
    m_nameLastNameFirst = borrower.isEmpty() ? QString() : ZTItemText::lastNameFirst(borrower);
}

void ZTLendingContext::awakeFromFetch()
{
    ZTManagedObject::awakeFromFetch();
    updateName();
}
