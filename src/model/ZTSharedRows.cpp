#include "model/ZTSharedRows.h"

#include "store/ZTOid.h"

namespace {
const QString s_name = QStringLiteral("name");
const QString s_role = QStringLiteral("role");
const QString s_oid = QStringLiteral("oid");
} // namespace

QString ZTSharedName::name() const { return primitiveValueForKey(s_name).toString(); }
void ZTSharedName::setName(const QString &name) { setPrimitiveValueForKey(name, s_name); }
void ZTSharedName::awakeFromInsert()
{
    ZTManagedObject::awakeFromInsert();
    setPrimitiveValueForKey(ZTOid::uuid(), s_oid);
}

QString ZTSharedRole::role() const { return primitiveValueForKey(s_role).toString(); }
QVariant ZTSharedRole::roleValue() const { return primitiveValueForKey(s_role); }
void ZTSharedRole::setRole(const QVariant &role) { setPrimitiveValueForKey(role, s_role); }

ZTManagedObject *ZTSharedRole::person() const
{
    // Every role entity has exactly one to-one relationship: its person.
    return toOne(0);
}

QString ZTSharedRole::personName() const
{
    ZTManagedObject *p = person();
    return p ? p->primitiveValueForKey(s_name).toString() : QString();
}

void ZTSharedRole::awakeFromInsert()
{
    ZTManagedObject::awakeFromInsert();
    setPrimitiveValueForKey(ZTOid::uuid(), s_oid);
}
