// The one pass over a list that feeds the filter browser and its counts.
#include "lists/ZTList.h"

#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"
#include "lists/ZTListCompare.h"
#include "lookup/ZTStringExtras.h"
#include "model/ZTItem.h"

#include <QCoreApplication>
#include <QHash>

#include <algorithm>
#include <vector>

namespace {

// One attribute's values in first-seen order, each with the list rows that
// hold it. Rows stand for oids until the result is written, which keeps the
// pass over a large list to integer appends. The blank marker is tallied
// apart so it never joins the values.
struct Column {
    QHash<QString, int> index;
    QStringList values;
    std::vector<std::vector<int>> rows;
    std::vector<int> blankRows;
    bool hasBlank = false;
    QHash<qint64, int> integerIndex;

    void count(const QString &value, int row)
    {
        auto it = index.constFind(value);
        int i;
        if (it == index.constEnd()) {
            i = int(values.size());
            index.insert(value, i);
            values << value;
            rows.emplace_back();
        } else {
            i = *it;
        }
        rows[size_t(i)].push_back(row);
    }
    // Whole numbers skip making their text for every item: it is made once per value.
    void countInteger(qint64 number, int row)
    {
        auto it = integerIndex.constFind(number);
        if (it != integerIndex.constEnd()) {
            rows[size_t(*it)].push_back(row);
            return;
        }
        const QString text = QString::number(number);
        count(text, row);
        integerIndex.insert(number, index.value(text));
    }
    void countBlank(int row)
    {
        hasBlank = true;
        blankRows.push_back(row);
    }
};

bool isBlank(const QString &text)
{
    return text.isNull() || !ZTText::containsNonWhitespace(text);
}

// The yes/no readers of an item by their cache names, which the item answers
// as member functions; any other key is read by valueForKey.
using BooleanReader = bool (ZTItem::*)() const;
BooleanReader booleanReader(const QString &key)
{
    static const QHash<QString, BooleanReader> s_readers{
        {QStringLiteral("isLentOut"), &ZTItem::isLentOut}, {QStringLiteral("isLocked"), &ZTItem::isLocked},
        {QStringLiteral("isOverdue"), &ZTItem::isOverdue}, {QStringLiteral("isOwned"), &ZTItem::isOwned},
        {QStringLiteral("isUsed"), &ZTItem::isUsed},       {QStringLiteral("isSigned"), &ZTItem::isSigned}};
    return s_readers.value(key, nullptr);
}

QString yesText()
{
    return QCoreApplication::translate("Localizable", "Yes");
}
QString noText()
{
    return QCoreApplication::translate("Localizable", "No");
}

} // namespace

QVariantMap ZTList::filterDictionaryFromDocument(const ZTDocument &document,
                                                 const QStringList &addressBookNames) const
{
    const ZTCacheableAttributes &keys = document.attributeTables().cacheableAttributesDictionary();
    const QString yes = yesText();
    const QString no = noText();

    QHash<QString, Column> columns;
    for (const QString &key : keys.all)
        columns.insert(key, Column());
    for (const QString &key : keys.boolean) {
        Column &column = columns[key];
        column.values = {yes, no};
        column.index = {{yes, 0}, {no, 1}};
        column.rows.resize(2);
    }

    // Looked up once, so the pass over the items touches no hash of columns.
    auto columnsFor = [&](const QStringList &names) {
        QList<Column *> list;
        for (const QString &key : names)
            list << &columns[key];
        return list;
    };
    const QList<Column *> stringColumns = columnsFor(keys.string);
    const QList<Column *> arrayColumns = columnsFor(keys.array);
    const QList<Column *> numberColumns = columnsFor(keys.number);
    const QList<Column *> booleanColumns = columnsFor(keys.boolean);
    QList<BooleanReader> booleanReaders;
    for (const QString &key : keys.boolean)
        booleanReaders << booleanReader(key);

    static const QString lentToName = QStringLiteral("lentToName");
    QSet<QString> people(addressBookNames.cbegin(), addressBookNames.cend());
    QStringList seen;
    for (int oid = 0; oid < m_itemOids.size(); ++oid) {
        const ZTItem *item = document.itemForOid(m_itemOids.at(oid));
        if (!item)
            continue;
        for (int k = 0; k < keys.string.size(); ++k) {
            const QString value = item->valueForKey(keys.string[k]).toString();
            if (isBlank(value))
                stringColumns[k]->countBlank(oid);
            else
                stringColumns[k]->count(value, oid);
        }
        for (int k = 0; k < keys.array.size(); ++k) {
            const QStringList values = ZTItem::variantToStrings(item->valueForKey(keys.array[k]));
            Column *column = arrayColumns[k];
            if (values.isEmpty()) {
                column->countBlank(oid);
                continue;
            }
            // An item counts once under each of its values, even a repeated one.
            seen.clear();
            bool blankCounted = false;
            for (const QString &value : values) {
                if (isBlank(value)) {
                    if (!blankCounted)
                        column->countBlank(oid);
                    blankCounted = true;
                } else if (!seen.contains(value)) {
                    seen << value;
                    column->count(value, oid);
                }
            }
        }
        for (int k = 0; k < keys.number.size(); ++k) {
            const QVariant value = item->valueForKey(keys.number[k]);
            const int type = value.typeId();
            if (type == QMetaType::Int || type == QMetaType::LongLong || type == QMetaType::UInt) {
                numberColumns[k]->countInteger(value.toLongLong(), oid);
                continue;
            }
            const QString text = value.isValid() && !value.isNull() ? value.toString() : QString();
            if (text.isNull())
                numberColumns[k]->countBlank(oid);
            else
                numberColumns[k]->count(text, oid);
        }
        for (int k = 0; k < keys.boolean.size(); ++k) {
            const BooleanReader reader = booleanReaders[k];
            const bool set = reader ? (item->*reader)() : item->valueForKey(keys.boolean[k]).toBool();
            booleanColumns[k]->rows[set ? 0 : 1].push_back(oid);
        }
        // Only an item on loan has a borrower.
        if (item->isLentOut()) {
            const QString borrower = item->valueForKey(lentToName).toString();
            if (!isBlank(borrower))
                people.insert(borrower);
        }
    }

    QVariantMap result;
    QVariantMap countTable;
    QVariantMap oidTable;
    auto oidsAt = [this](const std::vector<int> &rows) {
        QStringList oids;
        oids.reserve(qsizetype(rows.size()));
        for (int row : rows)
            oids << m_itemOids.at(row);
        return oids;
    };
    auto publish = [&](const QString &key, const Column &column, const QStringList &sorted) {
        QVariantMap counts;
        QVariantMap oids;
        for (const QString &value : sorted) {
            const std::vector<int> &rows = column.rows[size_t(column.index.value(value))];
            counts.insert(value, QString::number(rows.size()));
            oids.insert(value, oidsAt(rows));
        }
        if (column.hasBlank) {
            counts.insert(ZTFilterDictionaryKey::emptyTag, QString::number(column.blankRows.size()));
            oids.insert(ZTFilterDictionaryKey::emptyTag, oidsAt(column.blankRows));
        }
        result.insert(key, sorted);
        countTable.insert(key, counts);
        oidTable.insert(key, oids);
    };
    for (const QStringList *group : {&keys.string, &keys.array}) {
        for (const QString &key : *group) {
            const Column &column = columns[key];
            publish(key, column, ZTListCompare::sortedCaseInsensitive(column.values));
        }
    }
    for (const QString &key : keys.number) {
        const Column &column = columns[key];
        QStringList sorted = column.values;
        std::stable_sort(sorted.begin(), sorted.end(),
                         [](const QString &a, const QString &b) { return a.toDouble() < b.toDouble(); });
        publish(key, column, sorted);
    }
    for (const QString &key : keys.boolean)
        publish(key, columns[key], columns[key].values);
    result.insert(ZTFilterDictionaryKey::counts, countTable);
    result.insert(ZTFilterDictionaryKey::oids, oidTable);

    QSet<QString> languages;
    for (const char *key : {"language", "originalLanguage"}) {
        auto it = columns.constFind(QLatin1String(key));
        if (it != columns.constEnd())
            for (const QString &language : it->values)
                languages.insert(language);
    }
    result.insert(ZTFilterDictionaryKey::personName, ZTListCompare::sortedCaseInsensitive(people.values()));
    result.insert(ZTFilterDictionaryKey::allLanguages,
                  ZTListCompare::sortedCaseInsensitive(languages.values()));
    return result;
}
