#pragma once

#include "store/ZTEntity.h"

#include <QList>
#include <QString>
#include <QVariant>

#include <memory>
#include <vector>

class ZTManagedObjectContext;

// One row of the object store. Stored attribute values live in a compact,
// sparse array (only values that are set take room), so that a library of a
// hundred thousand items stays small in memory.
// A fixed key resolved once per entity. Readers that run over every item
// (sorting, filtering, counting) keep one per call site, thread_local, so a read
// is an index into the row rather than a hash of the key's text.
struct ZTSlotMemo {
    const ZTEntity *entity = nullptr;
    int slot = -1;
};

class ZTManagedObject {
public:
    ZTManagedObject();
    virtual ~ZTManagedObject();
    ZTManagedObject(const ZTManagedObject &) = delete;
    ZTManagedObject &operator=(const ZTManagedObject &) = delete;

    const ZTEntity *entity() const { return m_entity; }
    QString entityName() const { return m_entity ? m_entity->name : QString(); }
    ZTManagedObjectContext *managedObjectContext() const { return m_context; }

    // Generic key-value access. Unknown keys read as nothing and writes to them
    // are ignored; subclasses add derived and computed keys.
    virtual QVariant valueForKey(const QString &key) const;
    virtual void setValueForKey(const QVariant &value, const QString &key);

    // Raw access to stored attributes by slot, without side effects beyond
    // change tracking.
    QVariant primitiveValue(int slot) const;
    // The stored value itself, or null when the slot holds nothing: passes that
    // only look at a value need not copy it.
    const QVariant *primitiveValuePointer(int slot) const
    {
        if (slot < 0 || slot >= 63 || !(m_present & (quint64(1) << slot)))
            return nullptr;
        return &m_values[size_t(valueIndex(slot))];
    }
    void setPrimitiveValue(int slot, const QVariant &value);
    // Asks the processor to bring this row's stored values (and, with
    // Texts::Yes, the characters of its texts) into the cache ahead of a read.
    // Passes over thousands of rows wait on memory far more than they compute;
    // asking a few rows ahead lets those waits overlap.
    enum class PrefetchTexts : bool { No, Yes };
    void prefetchValues(PrefetchTexts texts = PrefetchTexts::No) const;
    QVariant primitiveValueForKey(const QString &key) const;
    QVariant primitiveValueForKey(const QString &key, ZTSlotMemo &memo) const;
    // The stored value of the key itself, or null: primitiveValuePointer by name.
    const QVariant *primitiveValuePointerForKey(const QString &key, ZTSlotMemo &memo) const;
    void setPrimitiveValueForKey(const QVariant &value, const QString &key);

    ZTManagedObject *toOne(int slot) const;
    void setToOne(int slot, ZTManagedObject *target);
    ZTManagedObject *toOneForKey(const QString &key) const;
    ZTManagedObject *toOneForKey(const QString &key, ZTSlotMemo &memo) const;
    void setToOneForKey(const QString &key, ZTManagedObject *target);
    const QList<ZTManagedObject *> &toMany(int slot) const;
    const QList<ZTManagedObject *> &toManyForKey(const QString &key) const;

    // The oid attribute, for entities that have one.
    QString oid() const;

    // Identity: the primary key once committed; 0 while the identity is temporary.
    qint64 primaryKey() const { return m_primaryKey; }
    bool isTemporaryID() const { return m_primaryKey == 0; }
    // Text form of the identity: "x-zettary://STORE/Entity/pN", or ".../tN" while temporary.
    QString objectIDURI() const;

    bool isInserted() const { return m_state == State::Inserted; }
    bool isDeleted() const { return m_deleted; }
    bool isUpdated() const { return m_state == State::Stored && m_dirty != 0 && !m_deleted; }
    bool hasChanges() const { return isInserted() || isUpdated() || m_deleted; }

    virtual void awakeFromInsert();
    virtual void awakeFromFetch();
    // Runs just before the row is written, for values kept in a cheaper form until then.
    virtual void willSave() {}
    // Runs after the row was written.
    virtual void didSave() {}

    // The value as the attribute stores it (a number for an integer, UTC for a date …).
    static QVariant normalized(const ZTAttribute &attribute, const QVariant &value);

protected:
    // Marks a stored value as changed without setting it (it is set in willSave).
    void touchPrimitiveValueForKey(const QString &key);
    // Drops a stored value from memory without counting it as a change; the
    // store keeps it. For bytes kept in a decoded form instead.
    void forgetPrimitiveValueForKey(const QString &key);

private:
    friend class ZTManagedObjectContext;
    friend class ZTObjectStore;
    enum class State : quint8 { New, Inserted, Stored };

    void setUp(const ZTEntity *entity, ZTManagedObjectContext *context);
    void markDirty(quint64 bits);
    int valueIndex(int slot) const;

    const ZTEntity *m_entity = nullptr;
    ZTManagedObjectContext *m_context = nullptr;
    qint64 m_primaryKey = 0;
    quint64 m_temporaryNumber = 0;
    quint64 m_present = 0; // which attribute slots hold a value
    quint64 m_dirty = 0;   // attribute slots changed since load (bit 63: relationships)
    quint32 m_dirtyRelations = 0;
    State m_state = State::New;
    bool m_deleted = false;
    bool m_inUpdatedList = false;
    std::vector<QVariant> m_values;                       // dense over present slots, in slot order
    std::unique_ptr<ZTManagedObject *[]> m_toOne;         // by to-one slot
    std::unique_ptr<QList<ZTManagedObject *>[]> m_toMany; // by to-many slot, kept in memory only
    std::unique_ptr<qint64[]> m_pendingKeys;              // foreign keys read at load, until resolved
};
