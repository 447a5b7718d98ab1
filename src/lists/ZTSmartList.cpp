#include "lists/ZTSmartList.h"

#include "lists/ZTListClock.h"
#include "model/ZTItem.h"
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

int ZTSmartList::andOrFlag() const
{
    return primitiveValueForKey(s_andOrFlag).toInt();
}
void ZTSmartList::setAndOrFlag(int flag)
{
    setPrimitiveValueForKey(flag ? 1 : 0, s_andOrFlag);
}

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

QDateTime ZTSmartList::expirationDate() const
{
    return primitiveValueForKey(s_expirationDate).toDateTime();
}
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

void ZTSmartList::updateExpirationDate()
{
    bool dependsOnToday = false;
    for (const QVariant &entry : std::as_const(m_qualifiers)) {
        const QVariantMap qualifier = entry.toMap();
        const QString op = qualifier.value(ZTQualifierKey::op).toString();
        if (qualifier.value(ZTQualifierKey::type).toString() == QLatin1String("date") &&
            (op == ZTQualifierOperator::isInTheLast || op == ZTQualifierOperator::isNotInTheLast)) {
            dependsOnToday = true;
            break;
        }
    }
    setExpirationDate(dependsOnToday ? ZTListClock::now().addDays(1) : QDateTime());
}
