// Reading and writing an item's values by key: the computed keys go through
// the kind's accessors, the rest straight to the stored slots.
#include "model/ZTItem.h"

#include <QMutex>

#include <map>
#include <memory>

const ZTItem::KeyAccessTable &ZTItem::keyAccess() const
{
    // Every item is made by its context for an entity; one without answers
    // to nothing.
    static const KeyAccessTable none;
    const ZTEntity *kind = entity();
    if (!kind)
        return none;
    // Most callers read one kind over and over: the last table is kept per
    // thread, so that the lock is taken once per kind and thread.
    thread_local const ZTEntity *lastKind = nullptr;
    thread_local const KeyAccessTable *lastTable = nullptr;
    if (kind == lastKind)
        return *lastTable;
    static QMutex mutex;
    static std::map<const ZTEntity *, std::unique_ptr<KeyAccessTable>> tables;
    QMutexLocker lock(&mutex);
    std::unique_ptr<KeyAccessTable> &table = tables[kind];
    if (!table) {
        table = std::make_unique<KeyAccessTable>();
        const AccessorTable &methods = accessors();
        for (auto it = methods.constBegin(); it != methods.constEnd(); ++it) {
            const int slot = kind->attributeSlot(it.key());
            table->insert(it.key(), {&it.value(), slot >= 0 ? &kind->attributes[slot] : nullptr, slot,
                                     it.value().set != nullptr});
        }
        for (const ZTAttribute &attribute : kind->attributes) {
            if (table->contains(attribute.name))
                continue;
            // Blobs and the identity change only through their own operations.
            const bool settable =
                !attribute.name.endsWith(QLatin1String("Data")) && attribute.name != ZTItemKey::oid;
            table->insert(attribute.name, {nullptr, &attribute, attribute.slot, settable});
        }
    }
    lastKind = kind;
    lastTable = table.get();
    return *table;
}

QVariant ZTItem::read(const KeyAccess &access) const
{
    if (access.accessor && access.accessor->get)
        return access.accessor->get(*this);
    return primitiveValue(access.slot);
}

void ZTItem::write(const KeyAccess &access, const QVariant &value)
{
    if (!access.settable)
        return;
    if (access.accessor)
        access.accessor->set(*this, value);
    else
        setPrimitiveValue(access.slot, value);
}

bool ZTItem::hasKey(const QString &key) const
{
    return keyAccess().contains(key);
}

QVariant ZTItem::valueForKey(const QString &key) const
{
    const KeyAccessTable &table = keyAccess();
    const auto it = table.constFind(key);
    return it == table.constEnd() ? QVariant() : read(*it);
}

void ZTItem::setValueForKey(const QVariant &value, const QString &key)
{
    const KeyAccessTable &table = keyAccess();
    const auto it = table.constFind(key);
    if (it != table.constEnd())
        write(*it, value);
}

ZTItem::KeyReader ZTItem::readerForKey(const QString &key) const
{
    KeyReader reader;
    reader.key = key;
    reader.entity = entity();
    const KeyAccessTable &table = keyAccess();
    const auto it = table.constFind(key);
    if (it == table.constEnd())
        return reader;
    if (it->accessor && it->accessor->get) {
        reader.get = it->accessor->get;
        reader.rows = it->accessor->rows;
    } else
        reader.slot = it->slot;
    return reader;
}

QVariant ZTItem::KeyReader::read(const ZTItem &item) const
{
    // Items of another kind answer through their own tables.
    if (item.entity() != entity)
        return item.valueForKey(key);
    if (get)
        return get(item);
    return slot >= 0 ? item.primitiveValue(slot) : QVariant();
}
