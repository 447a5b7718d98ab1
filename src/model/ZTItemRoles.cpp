// An item's role rows (author, actor, artist, character) read as names,
// roles or maps of both.
#include "model/ZTItem.h"

#include "store/ZTManagedObjectContext.h"

namespace {
const QString s_name = QStringLiteral("name");
const QString s_role = QStringLiteral("role");
} // namespace

QVariantList ZTItem::roleDictsForOids(const QStringList &oids, const QString &roleEntity,
                                      const QString &personKey) const
{
    QVariantList dicts;
    for (const ZTItemText::NameAndRole &entry : roleEntriesForOids(oids, roleEntity, personKey))
        dicts << QVariantMap{{s_name, entry.name}, {s_role, entry.role}};
    return dicts;
}

QStringList ZTItem::personOidsForRoleOids(const QStringList &oids, const QString &roleEntity,
                                          const QString &personKey) const
{
    QStringList result;
    ZTManagedObjectContext *context = managedObjectContext();
    if (!context)
        return result;
    for (ZTManagedObject *row : context->objectsForEntity(roleEntity, oids))
        if (ZTManagedObject *person = row->toOneForKey(personKey))
            result << person->oid();
    return result;
}

QList<ZTItemText::NameAndRole> ZTItem::roleEntriesForOids(const QStringList &oids, const QString &roleEntity,
                                                          const QString &personKey) const
{
    QList<ZTItemText::NameAndRole> result;
    ZTManagedObjectContext *context = managedObjectContext();
    if (!context || oids.isEmpty())
        return result;
    const auto &tables = context->oidObjectDictionary();
    const auto table = tables.constFind(roleEntity);
    if (table == tables.constEnd())
        return result;
    // A memo keeps one key's slot per entity; the person key varies with the
    // role entity, so only the fixed keys are memoised.
    static thread_local ZTSlotMemo nameMemo, roleMemo;
    result.reserve(oids.size());
    for (const QString &oid : oids) {
        const ZTManagedObject *row = table->value(oid, nullptr);
        if (!row)
            continue;
        const ZTManagedObject *person = row->toOneForKey(personKey);
        result.append({person ? person->primitiveValueForKey(s_name, nameMemo).toString() : QString(),
                       row->primitiveValueForKey(s_role, roleMemo).toString()});
    }
    return result;
}

QStringList ZTItem::roleStringsForOids(const QStringList &oids, const QString &roleEntity,
                                       const QString &personKey, RoleField field) const
{
    QStringList result;
    for (const ZTItemText::NameAndRole &entry : roleEntriesForOids(oids, roleEntity, personKey)) {
        const QString &value = field == RoleField::Role ? entry.role : entry.name;
        if (value.trimmed().isEmpty() || result.contains(value))
            continue;
        result << value;
    }
    return result;
}

QVariantList ZTItem::roleDictsFromValue(const QVariant &value)
{
    if (value.typeId() == QMetaType::QString)
        return value.toString().isEmpty() ? QVariantList() : QVariantList{QVariantMap{{s_name, value}}};
    QVariantList dicts;
    for (const QVariant &entry : value.toList())
        dicts << (entry.typeId() == QMetaType::QVariantMap
                      ? entry
                      : QVariant(QVariantMap{{s_name, entry.toString()}}));
    return dicts;
}

QStringList ZTItem::stringsForArray(const QVariantList &dicts, const QString &key)
{
    QStringList result;
    for (const QVariant &entry : dicts) {
        const QString value = entry.toMap().value(key).toString();
        if (value.trimmed().isEmpty() || result.contains(value))
            continue;
        result << value;
    }
    return result;
}
