#pragma once

#include <QHash>
#include <QList>
#include <QStringList>
#include <QVariantMap>

#include <vector>

// How the items of a list spread over one cacheable attribute's values: the
// values in display order, each with how many items hold it (and which, when
// asked for). Blank values are counted apart and never join the values.
struct ZTValueTally {
    QStringList values;
    std::vector<qsizetype> counts;
    // Where each value stands in `values`.
    QHash<QString, qsizetype> position;
    qsizetype blankCount = 0;
    bool hasBlank = false;
    QList<QStringList> oids;
    QStringList blankOids;

    // How many items hold the value; 0 for one no item holds.
    qsizetype count(const QString &value) const
    {
        const auto it = position.constFind(value);
        return it == position.constEnd() ? 0 : counts[size_t(*it)];
    }
};

// One pass over a list for every cacheable attribute, in the order of the
// attribute tables (texts, lists of texts, numbers, yes/no), with the
// borrowers' and contacts' names and the languages seen.
struct ZTListTally {
    QStringList keys;
    std::vector<ZTValueTally> columns;
    QStringList personNames;
    QStringList languages;

    const ZTValueTally *column(const QString &key) const
    {
        const qsizetype k = keys.indexOf(key);
        return k < 0 ? nullptr : &columns[size_t(k)];
    }
    // The property-list form a shared library publishes: per key the values,
    // under "[[[COUNT]]]" the counts as decimal texts and, when the tally kept
    // them, under "[[[OID]]]" the oids of every value.
    QVariantMap filterDictionary(bool withOids) const;
};
