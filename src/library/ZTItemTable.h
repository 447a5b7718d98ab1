#pragma once

#include "model/ZTItem.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class ZTDocument;
class ZTManagedObject;
class ZTManagedObjectContext;

// The items of a list of oids, row for row; nullptr where an oid has none.
class ZTResolvedItems {
public:
    ZTResolvedItems() = default;
    explicit ZTResolvedItems(std::shared_ptr<const std::vector<ZTManagedObject *>> rows)
        : m_rows(std::move(rows))
    {
    }
    qsizetype size() const { return m_rows ? qsizetype(m_rows->size()) : 0; }
    // Items derive from ZTManagedObject alone, so the cast is free.
    ZTItem *operator[](qsizetype row) const { return static_cast<ZTItem *>((*m_rows)[size_t(row)]); }

    // Called once per row by a pass about to read `row`: fetches the rows a
    // little further on in stages (the object, then its values, then the
    // characters of its texts), each stage already loaded by the one before.
    void prefetchAhead(qsizetype row,
                       ZTManagedObject::PrefetchTexts texts = ZTManagedObject::PrefetchTexts::No) const
    {
        constexpr qsizetype objectDistance = 12, valueDistance = 6, textDistance = 3;
        const qsizetype count = size();
        if (row + objectDistance < count)
            if (const ZTManagedObject *object = (*m_rows)[size_t(row + objectDistance)]) {
                __builtin_prefetch(object);
                __builtin_prefetch(reinterpret_cast<const char *>(object) + 64);
            }
        if (row + valueDistance < count)
            if (const ZTManagedObject *object = (*m_rows)[size_t(row + valueDistance)])
                object->prefetchValues();
        if (texts == ZTManagedObject::PrefetchTexts::Yes && row + textDistance < count)
            if (const ZTManagedObject *object = (*m_rows)[size_t(row + textDistance)])
                object->prefetchValues(texts);
    }

private:
    std::shared_ptr<const std::vector<ZTManagedObject *>> m_rows;
};

// A document's items by oid, for loops over many oids: the kind's table is
// found once, not at every row.
class ZTItemTable {
public:
    explicit ZTItemTable(const ZTDocument &document);

    ZTItem *item(const QString &oid) const
    {
        if (!m_table)
            return nullptr;
        auto it = m_table->constFind(oid);
        return it == m_table->constEnd() ? nullptr : static_cast<ZTItem *>(*it);
    }

    // The items of `oids` row for row. Asking again for the same list is
    // free until items come or go, so passes over whole lists use this rather
    // than item() per row.
    ZTResolvedItems items(const QStringList &oids) const;
    // Tells the table the items of a list picked from resolved rows.
    void rememberItems(const QStringList &oids, std::vector<ZTManagedObject *> rows) const;

    // Readers for keys of this document's items (see ZTItem::readerForKey).
    ZTItem::KeyReader reader(const QString &key) const;
    QList<ZTItem::KeyReader> readers(const QStringList &keys) const;

private:
    const QHash<QString, ZTManagedObject *> *m_table = nullptr;
    const ZTManagedObjectContext *m_context = nullptr;
    QString m_entityName;
    const ZTItem *m_sample = nullptr;
};
