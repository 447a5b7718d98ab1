#include "library/ZTLibraryCaches.h"

#include "library/ZTAttributeTables.h"

#include <QHash>
#include <QMap>
#include <QSet>


ZTLibraryCaches ZTLibraryCaches::fromFilterDictionary(const QVariantMap &filter,
                                                      const ZTCacheableAttributes &attributes, Target target)
{
    ZTLibraryCaches caches;
    const QVariantMap counts = filter.value(ZTCacheKey::count).toMap();
    QVariantMap countResult;
    for (const QString &key : attributes.all) {
        const bool isBoolean = attributes.boolean.contains(key);
        QVariantList values = filter.value(key).toList();
        if (isBoolean && values.isEmpty())
            values = {ZTCacheKey::yes, ZTCacheKey::no};
        const QVariantMap keyCounts = counts.value(key).toMap();
        QVariantMap keyCountResult;
        QVariantList tags;
        tags.reserve(values.size());
        for (const QVariant &value : std::as_const(values)) {
            const QString text = value.toString();
            const int n = keyCounts.value(text).toInt();
            tags << QVariantMap{{ZTCacheKey::tag, value}, {ZTCacheKey::tagCount, n}};
            keyCountResult.insert(text, n);
        }
        const int blank = keyCounts.value(ZTCacheKey::emptyTag).toInt();
        if (blank > 0)
            keyCountResult.insert(ZTCacheKey::emptyTag, blank);
        caches.m_cacheDictionary.insert(key, values);
        caches.m_tagDictionary.insert(key, tags);
        countResult.insert(key, keyCountResult);
    }
    caches.m_cacheDictionary.insert(ZTCacheKey::count, countResult);
    caches.m_tagDictionary.insert(ZTCacheKey::count, countResult);
    if (target == Target::Main) {
        caches.m_cacheDictionary.insert(ZTCacheKey::personName,
                                        filter.value(ZTCacheKey::personName).toStringList());
        caches.m_cacheDictionary.insert(ZTCacheKey::allLanguages,
                                        filter.value(ZTCacheKey::allLanguages).toStringList());
    }
    return caches;
}

ZTLibraryCaches ZTLibraryCaches::empty(const ZTCacheableAttributes &attributes)
{
    ZTLibraryCaches caches;
    for (const QString &key : attributes.all) {
        caches.m_cacheDictionary.insert(key, QVariantList());
        caches.m_tagDictionary.insert(key, QVariantList());
    }
    return caches;
}

QStringList ZTLibraryCaches::stringValues(const QString &key) const
{
    QStringList result;
    for (const QVariant &value : m_cacheDictionary.value(key).toList())
        result << value.toString();
    return result;
}

int ZTLibraryCaches::count(const QString &key, const QString &value) const
{
    return m_cacheDictionary.value(ZTCacheKey::count).toMap().value(key).toMap().value(value).toInt();
}
