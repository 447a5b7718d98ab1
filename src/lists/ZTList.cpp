#include "lists/ZTList.h"

#include "base/ZTNotificationCenter.h"
#include "store/ZTManagedObjectContext.h"
#include "store/ZTOid.h"
#include "store/ZTPropertyList.h"

namespace {
const QString s_name = QStringLiteral("name");
const QString s_order = QStringLiteral("order");
const QString s_libraryFlag = QStringLiteral("libraryFlag");
const QString s_toItemData = QStringLiteral("toItemData");
} // namespace

ZTList *ZTList::createInManagedObjectContext(ZTManagedObjectContext *context, int order)
{
    if (!context)
        return nullptr;
    auto *list = static_cast<ZTList *>(context->insertNewObject(QStringLiteral("ZTList")));
    if (list)
        list->setOrder(order);
    return list;
}

QString ZTList::name() const
{
    return primitiveValueForKey(s_name).toString();
}
void ZTList::setName(const QString &name)
{
    setPrimitiveValueForKey(name, s_name);
}
int ZTList::order() const
{
    return primitiveValueForKey(s_order).toInt();
}
void ZTList::setOrder(int order)
{
    if (primitiveValueForKey(s_order).toInt() != order || !primitiveValueForKey(s_order).isValid())
        setPrimitiveValueForKey(order, s_order);
}
bool ZTList::isLibrary() const
{
    return primitiveValueForKey(s_libraryFlag).toBool();
}
void ZTList::setLibraryFlag(bool flag)
{
    setPrimitiveValueForKey(flag, s_libraryFlag);
}

void ZTList::setItemOids(const QStringList &oids)
{
    m_itemOids = oids;
    m_oidSetValid = false;
    updateListData();
}

void ZTList::addItem(const QString &itemOid)
{
    insertOid(0, itemOid);
    updateListData();
}

bool ZTList::containsOid(const QString &oid) const
{
    if (!m_oidSetValid) {
        m_oidSet = QSet<QString>(m_itemOids.cbegin(), m_itemOids.cend());
        m_oidSetValid = true;
    }
    return m_oidSet.contains(oid);
}

void ZTList::insertOid(int index, const QString &oid)
{
    m_itemOids.insert(qBound(0, index, int(m_itemOids.size())), oid);
    if (m_oidSetValid)
        m_oidSet.insert(oid);
}

bool ZTList::removeOid(const QString &oid)
{
    if (!containsOid(oid))
        return false;
    m_itemOids.removeAll(oid);
    m_oidSet.remove(oid);
    return true;
}

void ZTList::removeOidAt(int index)
{
    if (index < 0 || index >= m_itemOids.size())
        return;
    m_itemOids.removeAt(index);
    // A reorder may hold the oid twice for a moment: rebuild on the next question.
    m_oidSetValid = false;
}

void ZTList::updateListData()
{
    if (m_batchDepth > 0) {
        m_changedInBatch = true;
        return;
    }
    // Below this many oids the bytes are cheap enough to write at every change;
    // a longer list is written once, just before the row is.
    constexpr qsizetype eagerLimit = 100;
    m_listDataStale = true;
    touchPrimitiveValueForKey(s_toItemData);
    if (m_itemOids.size() <= eagerLimit)
        writeListData();
    ZTNotificationCenter::defaultCenter().post(ZTListNotification::updated, this,
                                               {{QStringLiteral("oid"), m_oid}});
}

void ZTList::writeListData()
{
    if (!m_listDataStale)
        return;
    setPrimitiveValueForKey(ZTPropertyList::serializeStringArray(m_itemOids), s_toItemData);
    m_listDataStale = false;
}

QByteArray ZTList::itemData()
{
    writeListData();
    return primitiveValueForKey(s_toItemData).toByteArray();
}

void ZTList::endUpdates()
{
    if (m_batchDepth == 0 || --m_batchDepth > 0 || !m_changedInBatch)
        return;
    m_changedInBatch = false;
    updateListData();
}

void ZTList::awakeFromInsert()
{
    ZTManagedObject::awakeFromInsert();
    m_oid = ZTOid::uuid();
    updateListData();
}

void ZTList::awakeFromFetch()
{
    m_oid = ZTOid::uuid();
    const QByteArray data = primitiveValueForKey(s_toItemData).toByteArray();
    // Bytes that do not read leave the list empty.
    m_itemOids = data.isEmpty() ? QStringList() : ZTPropertyList::stringArray(data);
    m_oidSetValid = false;
    m_listDataStale = false;
}
