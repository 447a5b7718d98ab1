#include "store/ZTEntity.h"

#include "store/ZTManagedObject.h"

bool ZTEntity::isKindOf(const QString &entityName) const
{
    for (const ZTEntity *e = this; e; e = e->parent)
        if (e->name == entityName)
            return true;
    return false;
}

void ZTEntity::finalize()
{
    m_attributeSlots.clear();
    m_toOneSlots.clear();
    m_toManySlots.clear();
    for (int i = 0; i < attributes.size(); ++i) {
        attributes[i].slot = i;
        attributes[i].column = QStringLiteral("Z") + attributes[i].name.toUpper();
        m_attributeSlots.insert(attributes[i].name, i);
    }
    for (int i = 0; i < toOne.size(); ++i) {
        toOne[i].slot = i;
        toOne[i].column = QStringLiteral("Z") + toOne[i].name.toUpper();
        m_toOneSlots.insert(toOne[i].name, i);
    }
    for (int i = 0; i < toMany.size(); ++i) {
        toMany[i].slot = i;
        m_toManySlots.insert(toMany[i].name, i);
    }
    oidSlot = attributeSlot(QStringLiteral("oid"));
    defaultSlots = 0;
    defaultValues.clear();
    for (const ZTAttribute &attribute : std::as_const(attributes)) {
        if (attribute.slot >= 63 || !attribute.defaultValue.isValid() || attribute.defaultValue.isNull())
            continue;
        const QVariant value = ZTManagedObject::normalized(attribute, attribute.defaultValue);
        if (!value.isValid())
            continue;
        defaultSlots |= quint64(1) << attribute.slot;
        defaultValues.push_back(value);
    }
}

const ZTObjectModel &ZTObjectModel::shared()
{
    static const ZTObjectModel model;
    return model;
}

ZTObjectModel::ZTObjectModel()
{
    build();
}

ZTObjectModel::~ZTObjectModel()
{
    qDeleteAll(m_entities);
}

QList<const ZTEntity *> ZTObjectModel::entities() const
{
    QList<const ZTEntity *> result;
    for (const QString &name : m_order)
        result << m_entities.value(name);
    return result;
}

QList<const ZTEntity *> ZTObjectModel::rootEntities() const
{
    QList<const ZTEntity *> result;
    for (const ZTEntity *e : entities())
        if (e->parentName.isEmpty())
            result << e;
    return result;
}

QList<const ZTEntity *> ZTObjectModel::entitiesInTable(const QString &root) const
{
    QList<const ZTEntity *> result;
    for (const ZTEntity *e : entities())
        if (e->rootName == root && !e->isAbstract)
            result << e;
    return result;
}
