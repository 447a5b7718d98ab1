#include "library/ZTItemTable.h"

#include "library/ZTDocument.h"
#include "store/ZTManagedObjectContext.h"

ZTItemTable::ZTItemTable(const ZTDocument &document)
{
    ZTManagedObjectContext *context = document.managedObjectContext();
    if (!context)
        return;
    m_context = context;
    m_entityName = document.itemEntityName();
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

ZTResolvedItems ZTItemTable::items(const QStringList &oids) const
{
    if (!m_context)
        return ZTResolvedItems(
            std::make_shared<const std::vector<ZTManagedObject *>>(size_t(oids.size()), nullptr));
    return ZTResolvedItems(m_context->resolvedObjects(m_entityName, oids));
}

void ZTItemTable::rememberItems(const QStringList &oids, std::vector<ZTManagedObject *> rows) const
{
    if (m_context)
        m_context->rememberResolved(m_entityName, oids, std::move(rows));
}
