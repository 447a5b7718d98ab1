#include "lists/ZTListTally.h"

#include "lists/ZTList.h"

QVariantMap ZTListTally::filterDictionary(bool withOids) const
{
    QVariantMap result;
    QVariantMap countTable;
    QVariantMap oidTable;
    for (qsizetype k = 0; k < keys.size(); ++k) {
        const ZTValueTally &column = columns[size_t(k)];
        QVariantMap counts;
        QVariantMap oids;
        for (qsizetype i = 0; i < column.values.size(); ++i) {
            counts.insert(column.values[i], QString::number(column.counts[size_t(i)]));
            if (withOids)
                oids.insert(column.values[i], column.oids.value(i));
        }
        if (column.hasBlank) {
            counts.insert(ZTFilterDictionaryKey::emptyTag, QString::number(column.blankCount));
            if (withOids)
                oids.insert(ZTFilterDictionaryKey::emptyTag, column.blankOids);
        }
        result.insert(keys[k], column.values);
        countTable.insert(keys[k], counts);
        if (withOids)
            oidTable.insert(keys[k], oids);
    }
    result.insert(ZTFilterDictionaryKey::counts, countTable);
    if (withOids)
        result.insert(ZTFilterDictionaryKey::oids, oidTable);
    result.insert(ZTFilterDictionaryKey::personName, personNames);
    result.insert(ZTFilterDictionaryKey::allLanguages, languages);
    return result;
}
