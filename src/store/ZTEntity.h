#pragma once

#include <QHash>
#include <QString>
#include <QVariant>
#include <QVector>

#include <functional>
#include <vector>

class ZTManagedObject;

enum class ZTAttributeType { String, Integer, Double, Boolean, Date, Blob };

struct ZTAttribute {
    QString name;
    ZTAttributeType type;
    QVariant defaultValue; // set on insert; invalid for none
    QString column;        // "Z" + upper-cased name
    int slot = -1;         // index into the row's value store
};

struct ZTRelationship {
    QString name;
    QString destination; // entity name
    bool toMany = false;
    QString inverse; // name of the inverse relationship, or empty
    QString column;  // foreign-key column for to-one
    int slot = -1;   // index among the entity's to-one or to-many relationships
};

// One entity of the object model: its attributes, its relationships, the table
// that stores it and the class that stands for a row of it.
class ZTEntity {
public:
    QString name;
    QString parentName;
    QString rootName; // the entity whose table holds this one
    QString tableName;
    int entityNumber = 0; // stored in Z_ENT; never changes meaning
    bool isAbstract = false;
    QVector<ZTAttribute> attributes; // inherited first
    QVector<ZTRelationship> toOne;
    QVector<ZTRelationship> toMany;
    std::function<ZTManagedObject *()> factory;

    int attributeSlot(const QString &key) const { return m_attributeSlots.value(key, -1); }
    int toOneSlot(const QString &key) const { return m_toOneSlots.value(key, -1); }
    int toManySlot(const QString &key) const { return m_toManySlots.value(key, -1); }
    const ZTAttribute *attribute(const QString &key) const
    {
        int s = attributeSlot(key);
        return s < 0 ? nullptr : &attributes[s];
    }
    bool isKindOf(const QString &entityName) const;

    void finalize(); // assigns slots and columns
    // The oid attribute's slot, or -1: read for every row by lists, caches and
    // saving, so it is looked up once here rather than by name each time.
    int oidSlot = -1;
    // The values a new row starts with, in slot order, and which slots they
    // fill: a new row takes them in one step.
    quint64 defaultSlots = 0;
    std::vector<QVariant> defaultValues;
    const ZTEntity *parent = nullptr;

private:
    QHash<QString, int> m_attributeSlots;
    QHash<QString, int> m_toOneSlots;
    QHash<QString, int> m_toManySlots;
};

// The set of entities a library store holds.
class ZTObjectModel {
public:
    ZTObjectModel() = default;
    ZTObjectModel(const ZTObjectModel &) = delete;
    ZTObjectModel &operator=(const ZTObjectModel &) = delete;
    ~ZTObjectModel();

    // Adds an entity; a child names a parent added before it and inherits its
    // attributes and relationships, stored in the parent's table.
    void addEntity(const QString &name, int number, const QString &parentName,
                   std::function<ZTManagedObject *()> factory, const QVector<ZTAttribute> &attributes,
                   const QVector<ZTRelationship> &toOne = {}, const QVector<ZTRelationship> &toMany = {},
                   bool isAbstract = false);

    const ZTEntity *entity(const QString &name) const { return m_entities.value(name, nullptr); }
    const ZTEntity *entityForNumber(int number) const { return m_byNumber.value(number, nullptr); }
    QList<const ZTEntity *> entities() const;
    // The root entities, one table each.
    QList<const ZTEntity *> rootEntities() const;
    // Every concrete entity stored in the table of `root`.
    QList<const ZTEntity *> entitiesInTable(const QString &root) const;

private:
    QHash<QString, ZTEntity *> m_entities;
    QHash<int, ZTEntity *> m_byNumber;
    QStringList m_order;
};
