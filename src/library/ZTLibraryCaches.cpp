#include "library/ZTLibraryCaches.h"

#include "library/ZTAttributeTables.h"

ZTLibraryCaches ZTLibraryCaches::fromTally(ZTListTally tally, Target target)
{
    ZTLibraryCaches caches;
    caches.m_tally = std::move(tally);
    caches.m_target = target;
    caches.m_counted = true;
    return caches;
}

ZTLibraryCaches ZTLibraryCaches::empty(const ZTCacheableAttributes &attributes)
{
    ZTLibraryCaches caches;
    caches.m_tally.keys = attributes.all;
    caches.m_tally.columns.resize(size_t(attributes.all.size()));
    return caches;
}

const QVariantMap &ZTLibraryCaches::countDictionary() const
{
    // Both dictionaries hold the same table; it is made once and shared.
    if (m_countDictionary)
        return *m_countDictionary;
    QVariantMap &result = m_countDictionary.emplace();
    for (qsizetype k = 0; k < m_tally.keys.size(); ++k) {
        const ZTValueTally &column = m_tally.columns[size_t(k)];
        QVariantMap counts;
        for (qsizetype i = 0; i < column.values.size(); ++i)
            counts.insert(column.values[i], int(column.counts[size_t(i)]));
        if (column.blankCount > 0)
            counts.insert(ZTCacheKey::emptyTag, int(column.blankCount));
        result.insert(m_tally.keys[k], counts);
    }
    return result;
}

const QVariantMap &ZTLibraryCaches::cacheDictionary() const
{
    if (m_cacheDictionary)
        return *m_cacheDictionary;
    QVariantMap &result = m_cacheDictionary.emplace();
    for (qsizetype k = 0; k < m_tally.keys.size(); ++k) {
        QVariantList values;
        values.reserve(m_tally.columns[size_t(k)].values.size());
        for (const QString &value : m_tally.columns[size_t(k)].values)
            values << value;
        result.insert(m_tally.keys[k], values);
    }
    if (!m_counted)
        return result;
    result.insert(ZTCacheKey::count, countDictionary());
    if (m_target == Target::Main) {
        result.insert(ZTCacheKey::personName, m_tally.personNames);
        result.insert(ZTCacheKey::allLanguages, m_tally.languages);
    }
    return result;
}

const QVariantMap &ZTLibraryCaches::tagDictionary() const
{
    if (m_tagDictionary)
        return *m_tagDictionary;
    QVariantMap &result = m_tagDictionary.emplace();
    for (qsizetype k = 0; k < m_tally.keys.size(); ++k) {
        const ZTValueTally &column = m_tally.columns[size_t(k)];
        QVariantList tags;
        tags.reserve(column.values.size());
        for (qsizetype i = 0; i < column.values.size(); ++i)
            tags << QVariantMap{{ZTCacheKey::tag, column.values[i]},
                                {ZTCacheKey::tagCount, int(column.counts[size_t(i)])}};
        result.insert(m_tally.keys[k], tags);
    }
    if (m_counted)
        result.insert(ZTCacheKey::count, countDictionary());
    return result;
}

QStringList ZTLibraryCaches::stringValues(const QString &key) const
{
    const ZTValueTally *column = m_tally.column(key);
    return column ? column->values : QStringList();
}

int ZTLibraryCaches::count(const QString &key, const QString &value) const
{
    const ZTValueTally *column = m_tally.column(key);
    if (!column)
        return 0;
    return int(value == ZTCacheKey::emptyTag ? column->blankCount : column->count(value));
}
