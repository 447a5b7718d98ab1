#include "library/ZTItemTable.h"

#include "library/ZTDocument.h"
#include "store/ZTManagedObjectContext.h"

ZTItemTable::ZTItemTable(const ZTDocument &document)
{
    ZTManagedObjectContext *context = document.managedObjectContext();
    if (!context)
        return;
    const auto &tables = context->oidObjectDictionary();
    auto it = tables.constFind(document.itemEntityName());
    if (it == tables.constEnd())
        return;
    m_table = &*it;
    if (!m_table->isEmpty())
        m_sample = static_cast<const ZTItem *>(m_table->constBegin().value());
}

ZTItem::KeyReader ZTItemTable::reader(const QString &key) const
{
    if (m_sample)
        return m_sample->readerForKey(key);
    ZTItem::KeyReader reader;
    reader.key = key;
    return reader;
}

QList<ZTItem::KeyReader> ZTItemTable::readers(const QStringList &keys) const
{
    QList<ZTItem::KeyReader> result;
    result.reserve(keys.size());
    for (const QString &key : keys)
        result << reader(key);
    return result;
}
