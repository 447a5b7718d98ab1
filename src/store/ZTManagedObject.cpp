#include "store/ZTManagedObject.h"

#include "store/ZTManagedObjectContext.h"

#include <QDateTime>
#include <QTimeZone>

#include <bit>

namespace {
const QList<ZTManagedObject *> s_noObjects;

// Every date a library stores goes through local time (a day starts at the
// user's midnight). Without TZ set, the C library looks at /etc/localtime
// again on every such conversion, a file system call per date; an import of
// 100,000 rows spent a third of its time there. Naming the same file in TZ
// lets it read the zone once. A TZ the user set is left as it is.
const bool s_localZoneRead = [] {
    if (!qEnvironmentVariableIsSet("TZ"))
        qputenv("TZ", ":/etc/localtime");
    return true;
}();
} // namespace

ZTManagedObject::ZTManagedObject() = default;
ZTManagedObject::~ZTManagedObject() = default;

void ZTManagedObject::setUp(const ZTEntity *entity, ZTManagedObjectContext *context)
{
    m_entity = entity;
    m_context = context;
    Q_ASSERT(entity->attributes.size() <= 63);
    if (!entity->toOne.isEmpty()) {
        m_toOne.reset(new ZTManagedObject *[size_t(entity->toOne.size())]);
        for (int i = 0; i < entity->toOne.size(); ++i)
            m_toOne[size_t(i)] = nullptr;
    }
    if (!entity->toMany.isEmpty())
        m_toMany.reset(new QList<ZTManagedObject *>[size_t(entity->toMany.size())]);
}

int ZTManagedObject::valueIndex(int slot) const
{
    return std::popcount(m_present & ((quint64(1) << slot) - 1));
}

QVariant ZTManagedObject::primitiveValue(int slot) const
{
    if (slot < 0 || slot >= 63 || !(m_present & (quint64(1) << slot)))
        return {};
    return m_values[size_t(valueIndex(slot))];
}

void ZTManagedObject::setPrimitiveValue(int slot, const QVariant &value)
{
    if (!m_entity || slot < 0 || slot >= m_entity->attributes.size())
        return;
    const quint64 bit = quint64(1) << slot;
    const QVariant v =
        value.isValid() && !value.isNull() ? normalized(m_entity->attributes[slot], value) : QVariant();
    const int index = valueIndex(slot);
    if (m_present & bit) {
        if (!v.isValid()) {
            m_values.erase(m_values.begin() + index);
            m_present &= ~bit;
        } else {
            m_values[size_t(index)] = v;
        }
    } else {
        if (!v.isValid())
            return;
        m_values.insert(m_values.begin() + index, v);
        m_present |= bit;
    }
    markDirty(bit);
}

QVariant ZTManagedObject::primitiveValueForKey(const QString &key) const
{
    return m_entity ? primitiveValue(m_entity->attributeSlot(key)) : QVariant();
}

QVariant ZTManagedObject::primitiveValueForKey(const QString &key, ZTSlotMemo &memo) const
{
    const QVariant *value = primitiveValuePointerForKey(key, memo);
    return value ? *value : QVariant();
}

const QVariant *ZTManagedObject::primitiveValuePointerForKey(const QString &key, ZTSlotMemo &memo) const
{
    if (!m_entity)
        return nullptr;
    if (memo.entity != m_entity) {
        memo.slot = m_entity->attributeSlot(key);
        memo.entity = m_entity;
    }
    return primitiveValuePointer(memo.slot);
}

void ZTManagedObject::setPrimitiveValueForKey(const QVariant &value, const QString &key)
{
    if (m_entity)
        setPrimitiveValue(m_entity->attributeSlot(key), value);
}

ZTManagedObject *ZTManagedObject::toOne(int slot) const
{
    if (!m_entity || slot < 0 || slot >= m_entity->toOne.size())
        return nullptr;
    return m_toOne[size_t(slot)];
}

void ZTManagedObject::setToOne(int slot, ZTManagedObject *target)
{
    if (!m_entity || slot < 0 || slot >= m_entity->toOne.size())
        return;
    ZTManagedObject *old = m_toOne[size_t(slot)];
    if (old == target)
        return;
    const ZTRelationship &rel = m_entity->toOne[slot];
    // Keep the in-memory inverse list in step.
    if (!rel.inverse.isEmpty()) {
        if (old && old->m_entity) {
            int inv = old->m_entity->toManySlot(rel.inverse);
            if (inv >= 0)
                old->m_toMany[size_t(inv)].removeOne(this);
        }
        if (target && target->m_entity) {
            int inv = target->m_entity->toManySlot(rel.inverse);
            if (inv >= 0)
                target->m_toMany[size_t(inv)].append(this);
        }
    }
    m_toOne[size_t(slot)] = target;
    m_dirtyRelations |= quint32(1) << slot;
    markDirty(0);
}

ZTManagedObject *ZTManagedObject::toOneForKey(const QString &key) const
{
    return m_entity ? toOne(m_entity->toOneSlot(key)) : nullptr;
}

ZTManagedObject *ZTManagedObject::toOneForKey(const QString &key, ZTSlotMemo &memo) const
{
    if (!m_entity)
        return nullptr;
    if (memo.entity != m_entity) {
        memo.slot = m_entity->toOneSlot(key);
        memo.entity = m_entity;
    }
    return toOne(memo.slot);
}

void ZTManagedObject::setToOneForKey(const QString &key, ZTManagedObject *target)
{
    if (m_entity)
        setToOne(m_entity->toOneSlot(key), target);
}

const QList<ZTManagedObject *> &ZTManagedObject::toMany(int slot) const
{
    if (!m_entity || slot < 0 || slot >= m_entity->toMany.size())
        return s_noObjects;
    return m_toMany[size_t(slot)];
}

const QList<ZTManagedObject *> &ZTManagedObject::toManyForKey(const QString &key) const
{
    return m_entity ? toMany(m_entity->toManySlot(key)) : s_noObjects;
}

QString ZTManagedObject::oid() const
{
    const QVariant *value = m_entity ? primitiveValuePointer(m_entity->oidSlot) : nullptr;
    return value ? value->toString() : QString();
}

QString ZTManagedObject::objectIDURI() const
{
    const QString store = m_context ? m_context->storeIdentifier() : QString();
    if (m_primaryKey > 0)
        return QStringLiteral("x-zettary://%1/%2/p%3").arg(store, entityName()).arg(m_primaryKey);
    return QStringLiteral("x-zettary://%1/%2/t%3").arg(store, entityName()).arg(m_temporaryNumber);
}

QVariant ZTManagedObject::valueForKey(const QString &key) const
{
    if (!m_entity)
        return {};
    int slot = m_entity->attributeSlot(key);
    if (slot >= 0)
        return primitiveValue(slot);
    return {};
}

void ZTManagedObject::setValueForKey(const QVariant &value, const QString &key)
{
    if (!m_entity)
        return;
    int slot = m_entity->attributeSlot(key);
    if (slot >= 0)
        setPrimitiveValue(slot, value);
}

void ZTManagedObject::touchPrimitiveValueForKey(const QString &key)
{
    const int slot = m_entity ? m_entity->attributeSlot(key) : -1;
    if (slot >= 0)
        markDirty(quint64(1) << slot);
}

void ZTManagedObject::forgetPrimitiveValueForKey(const QString &key)
{
    const int slot = m_entity ? m_entity->attributeSlot(key) : -1;
    if (slot < 0 || !(m_present & (quint64(1) << slot)) || (m_dirty & (quint64(1) << slot)))
        return;
    m_values.erase(m_values.begin() + valueIndex(slot));
    m_present &= ~(quint64(1) << slot);
    if (m_values.empty())
        std::vector<QVariant>().swap(m_values);
}

void ZTManagedObject::markDirty(quint64 bits)
{
    m_dirty |= bits;
    if (m_state == State::Stored && m_context && !m_deleted)
        m_context->noteUpdated(this);
}

void ZTManagedObject::awakeFromInsert()
{
    if (m_present == 0) {
        // Room for what a filled-in row usually holds, so that the values set
        // next do not grow the store one step at a time.
        m_values.reserve(std::min<size_t>(size_t(m_entity->attributes.size()), 24));
        m_values.assign(m_entity->defaultValues.begin(), m_entity->defaultValues.end());
        m_present = m_entity->defaultSlots;
        markDirty(m_entity->defaultSlots);
        return;
    }
    for (const ZTAttribute &a : m_entity->attributes)
        if (a.defaultValue.isValid())
            setPrimitiveValue(a.slot, a.defaultValue);
}

void ZTManagedObject::awakeFromFetch() {}

QVariant ZTManagedObject::normalized(const ZTAttribute &attribute, const QVariant &value)
{
    // Values arrive from dictionaries, imports and JSON in many shapes; each
    // attribute keeps one type so that comparisons and storage stay exact.
    switch (attribute.type) {
    case ZTAttributeType::String:
        if (value.typeId() == QMetaType::QString)
            return value;
        if (value.typeId() == QMetaType::Double) {
            double d = value.toDouble();
            if (d == double(qint64(d)))
                return QString::number(qint64(d));
        }
        if (value.canConvert<QString>())
            return value.toString();
        return {};
    case ZTAttributeType::Integer: {
        if (value.typeId() == QMetaType::LongLong)
            return value;
        bool ok = false;
        qlonglong v = 0;
        if (value.typeId() == QMetaType::QString) {
            const QString s = value.toString().trimmed();
            v = s.toLongLong(&ok);
            if (!ok) {
                double d = s.toDouble(&ok);
                v = qlonglong(d);
            }
        } else if (value.typeId() == QMetaType::Double) {
            v = qlonglong(value.toDouble());
            ok = true;
        } else {
            v = value.toLongLong(&ok);
        }
        return ok ? QVariant(v) : QVariant();
    }
    case ZTAttributeType::Double: {
        bool ok = false;
        double d = value.typeId() == QMetaType::QString ? value.toString().trimmed().toDouble(&ok)
                                                        : value.toDouble(&ok);
        return ok ? QVariant(d) : QVariant();
    }
    case ZTAttributeType::Boolean:
        if (value.typeId() == QMetaType::QString) {
            const QString s = value.toString().trimmed().toLower();
            return s == QLatin1String("1") || s == QLatin1String("yes") || s == QLatin1String("true");
        }
        return value.toBool();
    case ZTAttributeType::Date: {
        if (value.typeId() == QMetaType::QDateTime) {
            QDateTime dt = value.toDateTime();
            return dt.isValid() ? QVariant(dt.toUTC()) : QVariant();
        }
        if (value.typeId() == QMetaType::QDate) {
            QDate d = value.toDate();
            // A date without a time means that day where the user is.
            return d.isValid() ? QVariant(d.startOfDay().toUTC()) : QVariant();
        }
        if (value.typeId() == QMetaType::QString) {
            const QString s = value.toString().trimmed();
            QDateTime dt = QDateTime::fromString(s, Qt::ISODateWithMs);
            if (!dt.isValid()) {
                QDate d = QDate::fromString(s, Qt::ISODate);
                if (d.isValid())
                    dt = d.startOfDay();
            }
            return dt.isValid() ? QVariant(dt.toUTC()) : QVariant();
        }
        return {};
    }
    case ZTAttributeType::Blob:
        if (value.typeId() == QMetaType::QByteArray)
            return value;
        return {};
    }
    return {};
}

void ZTManagedObject::prefetchValues(PrefetchTexts texts) const
{
    const auto *bytes = reinterpret_cast<const char *>(m_values.data());
    const size_t size = m_values.size() * sizeof(QVariant);
    for (size_t offset = 0; offset < size; offset += 64)
        __builtin_prefetch(bytes + offset);
    if (m_toOne)
        __builtin_prefetch(m_toOne.get());
    if (texts == PrefetchTexts::No)
        return;
    // Only worth it once the values themselves are at hand: the caller asks
    // for the texts a little later than for the values.
    for (const QVariant &value : m_values)
        if (value.typeId() == QMetaType::QString)
            __builtin_prefetch(static_cast<const QString *>(value.constData())->constData());
}
