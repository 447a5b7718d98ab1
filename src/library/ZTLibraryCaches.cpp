#include "library/ZTLibraryCaches.h"

#include "library/ZTAttributeTables.h"
#include "library/ZTTextOrder.h"
#include "model/ZTItem.h"

#include <QHash>
#include <QMap>
#include <QSet>

#include <algorithm>
#include <cmath>

namespace {

bool isBlankText(const QString &text)
{
    return text.trimmed().isEmpty();
}

// A number's text as it stands in the count tables: whole numbers without a fraction.
QString numberText(double value)
{
    return value == std::floor(value) && std::abs(value) < 1e15 ? QString::number(qlonglong(value))
                                                                : QString::number(value);
}

QVariant numberValue(double value)
{
    return value == std::floor(value) && std::abs(value) < 1e15 ? QVariant(qlonglong(value))
                                                                : QVariant(value);
}

struct TextTally {
    QHash<QString, int> counts;
    int blank = 0;
};

struct NumberTally {
    QMap<double, int> counts;
    int blank = 0;
};

QStringList sortedTexts(const QHash<QString, int> &counts)
{
    QStringList values = counts.keys();
    const QCollator &collator = ZTTextOrder::collator();
    std::sort(values.begin(), values.end(),
              [&](const QString &a, const QString &b) { return collator.compare(a, b) < 0; });
    return values;
}

QStringList sortedSet(const QSet<QString> &set)
{
    QStringList values(set.begin(), set.end());
    const QCollator &collator = ZTTextOrder::collator();
    std::sort(values.begin(), values.end(),
              [&](const QString &a, const QString &b) { return collator.compare(a, b) < 0; });
    return values;
}

QVariantMap textResult(const QHash<QString, int> &counts, int blank, QVariantList *values)
{
    QVariantMap countMap;
    for (const QString &value : sortedTexts(counts)) {
        values->append(value);
        countMap.insert(value, counts.value(value));
    }
    if (blank > 0)
        countMap.insert(ZTCacheKey::emptyTag, blank);
    return countMap;
}

} // namespace

QVariantMap ZTLibraryCaches::filterDictionaryForItems(const QList<ZTItem *> &items,
                                                      const ZTCacheableAttributes &attributes,
                                                      const QStringList &contacts)
{
    QList<TextTally> strings(attributes.string.size());
    QList<TextTally> arrays(attributes.array.size());
    QList<NumberTally> numbers(attributes.number.size());
    QList<QPair<int, int>> booleans(attributes.boolean.size(), {0, 0});
    QSet<QString> people(contacts.begin(), contacts.end());
    QSet<QString> languages;
    const QString language = QStringLiteral("language");
    const QString originalLanguage = QStringLiteral("originalLanguage");

    // Keys are resolved once against the kind, then read item after item.
    auto readersFor = [&items](const QStringList &keys) {
        QList<ZTItem::KeyReader> readers;
        const ZTItem *sample = items.isEmpty() ? nullptr : items.first();
        for (const QString &key : keys) {
            ZTItem::KeyReader reader;
            reader.key = key;
            readers << (sample ? sample->readerForKey(key) : reader);
        }
        return readers;
    };
    const QList<ZTItem::KeyReader> stringReaders = readersFor(attributes.string);
    const QList<ZTItem::KeyReader> arrayReaders = readersFor(attributes.array);
    const QList<ZTItem::KeyReader> numberReaders = readersFor(attributes.number);
    const QList<ZTItem::KeyReader> booleanReaders = readersFor(attributes.boolean);
    const qsizetype languageIndex = attributes.string.indexOf(language);
    const qsizetype originalLanguageIndex = attributes.string.indexOf(originalLanguage);
    const ZTItem::KeyReader languageReader = readersFor({language}).first();
    const ZTItem::KeyReader originalLanguageReader = readersFor({originalLanguage}).first();

    QStringList seen;
    QString itemLanguages[2];
    for (ZTItem *item : items) {
        if (!item)
            continue;
        itemLanguages[0].clear();
        itemLanguages[1].clear();
        for (qsizetype k = 0; k < stringReaders.size(); ++k) {
            const QString value = stringReaders[k].read(*item).toString();
            if (k == languageIndex)
                itemLanguages[0] = value;
            else if (k == originalLanguageIndex)
                itemLanguages[1] = value;
            if (isBlankText(value))
                ++strings[k].blank;
            else
                ++strings[k].counts[value];
        }
        for (qsizetype k = 0; k < arrayReaders.size(); ++k) {
            const QStringList values = ZTItem::variantToStrings(arrayReaders[k].read(*item));
            if (values.isEmpty()) {
                ++arrays[k].blank;
                continue;
            }
            seen.clear();
            bool blankSeen = false;
            for (const QString &value : values) {
                if (isBlankText(value)) {
                    if (!blankSeen)
                        ++arrays[k].blank;
                    blankSeen = true;
                } else if (!seen.contains(value)) {
                    seen << value;
                    ++arrays[k].counts[value];
                }
            }
        }
        for (qsizetype k = 0; k < numberReaders.size(); ++k) {
            const QVariant value = numberReaders[k].read(*item);
            bool ok = false;
            const double number = value.isNull() ? 0.0 : value.toDouble(&ok);
            if (ok)
                ++numbers[k].counts[number];
            else
                ++numbers[k].blank;
        }
        for (qsizetype k = 0; k < booleanReaders.size(); ++k) {
            if (booleanReaders[k].read(*item).toBool())
                ++booleans[k].first;
            else
                ++booleans[k].second;
        }
        if (item->isLentOut()) {
            const QString borrower = item->lentToName();
            if (!isBlankText(borrower))
                people.insert(borrower);
        }
        // The languages come from the string pass when they are cached keys.
        if (languageIndex < 0)
            itemLanguages[0] = languageReader.read(*item).toString();
        if (originalLanguageIndex < 0)
            itemLanguages[1] = originalLanguageReader.read(*item).toString();
        for (const QString &value : itemLanguages)
            if (!isBlankText(value))
                languages.insert(value);
    }

    QVariantMap result;
    QVariantMap counts;
    for (qsizetype k = 0; k < attributes.string.size(); ++k) {
        QVariantList values;
        counts.insert(attributes.string[k], textResult(strings[k].counts, strings[k].blank, &values));
        result.insert(attributes.string[k], values);
    }
    for (qsizetype k = 0; k < attributes.array.size(); ++k) {
        QVariantList values;
        counts.insert(attributes.array[k], textResult(arrays[k].counts, arrays[k].blank, &values));
        result.insert(attributes.array[k], values);
    }
    for (qsizetype k = 0; k < attributes.number.size(); ++k) {
        QVariantList values;
        QVariantMap countMap;
        for (auto it = numbers[k].counts.constBegin(); it != numbers[k].counts.constEnd(); ++it) {
            values << numberValue(it.key());
            countMap.insert(numberText(it.key()), it.value());
        }
        if (numbers[k].blank > 0)
            countMap.insert(ZTCacheKey::emptyTag, numbers[k].blank);
        counts.insert(attributes.number[k], countMap);
        result.insert(attributes.number[k], values);
    }
    for (qsizetype k = 0; k < attributes.boolean.size(); ++k) {
        result.insert(attributes.boolean[k], QVariantList{ZTCacheKey::yes, ZTCacheKey::no});
        counts.insert(attributes.boolean[k], QVariantMap{{ZTCacheKey::yes, booleans[k].first},
                                                         {ZTCacheKey::no, booleans[k].second}});
    }
    result.insert(ZTCacheKey::count, counts);
    result.insert(ZTCacheKey::personName, sortedSet(people));
    result.insert(ZTCacheKey::allLanguages, sortedSet(languages));
    return result;
}

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
