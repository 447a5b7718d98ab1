#include "lists/ZTSmartList.h"

#include "store/ZTManagedObjectContext.h"
#include "store/ZTPropertyList.h"

namespace {
const QString s_andOrFlag = QStringLiteral("andOrFlag");
const QString s_qualifierData = QStringLiteral("qualifierData");
const QString s_expirationDate = QStringLiteral("expirationDate");
} // namespace

ZTSmartList *ZTSmartList::createInManagedObjectContext(ZTManagedObjectContext *context, int order)
{
    if (!context)
        return nullptr;
    auto *list = static_cast<ZTSmartList *>(context->insertNewObject(QStringLiteral("ZTSmartList")));
    if (list)
        list->setOrder(order);
    return list;
}

int ZTSmartList::andOrFlag() const { return primitiveValueForKey(s_andOrFlag).toInt(); }
void ZTSmartList::setAndOrFlag(int flag) { setPrimitiveValueForKey(flag, s_andOrFlag); }

void ZTSmartList::setQualifiers(const QVariantList &qualifiers)
{
    m_qualifiers = qualifiers;
    m_hasQualifiers = true;
    updateQualifierData();
}

void ZTSmartList::updateQualifierData()
{
    setPrimitiveValueForKey(ZTPropertyList::serialize(QVariant(m_qualifiers)), s_qualifierData);
}

QDateTime ZTSmartList::expirationDate() const { return primitiveValueForKey(s_expirationDate).toDateTime(); }
void ZTSmartList::setExpirationDate(const QDateTime &date)
{
    setPrimitiveValueForKey(date.isValid() ? QVariant(date) : QVariant(), s_expirationDate);
}

void ZTSmartList::awakeFromInsert()
{
    ZTList::awakeFromInsert();
    setAndOrFlag(0);
    setQualifiers({});
}

void ZTSmartList::awakeFromFetch()
{
    ZTList::awakeFromFetch();
    const QByteArray data = primitiveValueForKey(s_qualifierData).toByteArray();
    if (data.isNull()) {
        m_hasQualifiers = false;
        return;
    }
    // Bytes that do not parse leave an empty rule set, silently.
    const QVariant parsed = ZTPropertyList::deserialize(data);
    m_qualifiers = parsed.typeId() == QMetaType::QVariantList ? parsed.toList() : QVariantList();
    m_hasQualifiers = true;
}

bool ZTSmartList::handleItems(const QList<ZTItem *> &items, const ZTDocument &document)
{
    // Rule evaluation arrives with the smart-list rules; until then membership stays as stored.
    Q_UNUSED(items)
    Q_UNUSED(document)
    return false;
}
