#pragma once

#include "model/ZTItem.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

class ZTDocument;
class ZTManagedObject;

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

    // Readers for keys of this document's items (see ZTItem::readerForKey).
    ZTItem::KeyReader reader(const QString &key) const;
    QList<ZTItem::KeyReader> readers(const QStringList &keys) const;

private:
    const QHash<QString, ZTManagedObject *> *m_table = nullptr;
    const ZTItem *m_sample = nullptr;
};
