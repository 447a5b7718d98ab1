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

void ZTObjectModel::addEntity(const QString &name, int number, const QString &parentName,
                              std::function<ZTManagedObject *()> factory,
                              const QVector<ZTAttribute> &attributes, const QVector<ZTRelationship> &toOne,
                              const QVector<ZTRelationship> &toMany, bool isAbstract)
{
    auto *e = new ZTEntity;
    e->name = name;
    e->entityNumber = number;
    e->parentName = parentName;
    e->isAbstract = isAbstract;
    e->factory = std::move(factory);
    if (const ZTEntity *p = m_entities.value(parentName)) {
        e->parent = p;
        e->rootName = p->rootName;
        e->attributes = p->attributes + attributes;
        e->toOne = p->toOne + toOne;
        e->toMany = p->toMany + toMany;
    } else {
        e->rootName = e->name;
        e->attributes = attributes;
        e->toOne = toOne;
        e->toMany = toMany;
    }
    e->tableName = QStringLiteral("Z") + e->rootName.toUpper();
    e->finalize();
    m_entities.insert(e->name, e);
    m_byNumber.insert(number, e);
    m_order << e->name;
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
