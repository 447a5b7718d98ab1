#include "lists/ZTList.h"

#include "app/ZTNotificationCenter.h"
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

QString ZTList::name() const { return primitiveValueForKey(s_name).toString(); }
void ZTList::setName(const QString &name) { setPrimitiveValueForKey(name, s_name); }
int ZTList::order() const { return primitiveValueForKey(s_order).toInt(); }
void ZTList::setOrder(int order) { setPrimitiveValueForKey(order, s_order); }
bool ZTList::isLibrary() const { return primitiveValueForKey(s_libraryFlag).toBool(); }
void ZTList::setLibraryFlag(bool flag) { setPrimitiveValueForKey(flag, s_libraryFlag); }

void ZTList::setItemOids(const QStringList &oids)
{
    m_itemOids = oids;
    updateListData();
}

void ZTList::addItem(const QString &itemOid)
{
    m_itemOids.prepend(itemOid);
    updateListData();
}

void ZTList::updateListData()
{
    if (m_batchDepth > 0) {
        m_changedInBatch = true;
        return;
    }
    // Encoding a long list at every change would make adding n items cost n²;
    // the blob is written once, just before the row is.
    m_itemDataStale = true;
    touchPrimitiveValueForKey(s_toItemData);
    ZTNotificationCenter::defaultCenter().post(ZTListNotification::updated, this,
                                               {{QStringLiteral("oid"), m_oid}});
}

void ZTList::willSave() { itemData(); }

QByteArray ZTList::itemData()
{
    if (m_itemDataStale) {
        setPrimitiveValueForKey(ZTPropertyList::serializeStringArray(m_itemOids), s_toItemData);
        m_itemDataStale = false;
    }
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
    m_itemOids = data.isEmpty() ? QStringList() : ZTPropertyList::stringArray(data);
}
