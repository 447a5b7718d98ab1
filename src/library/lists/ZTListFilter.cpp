// The one pass over a list that feeds the filter browser and its counts.
#include "library/lists/ZTListFilter.h"

#include "base/ZTHelperThread.h"
#include "base/ZTStringExtras.h"
#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"
#include "library/ZTItemTable.h"
#include "lists/ZTList.h"
#include "lists/ZTListCompare.h"
#include "lists/ZTListTally.h"
#include "model/ZTItem.h"
#include "store/ZTManagedObjectContext.h"

#include <QCoreApplication>
#include <QHash>

#include <algorithm>
#include <atomic>
#include <numeric>
#include <vector>

namespace {

bool isBlank(const QString &text)
{
    return text.isNull() || !ZTText::containsNonWhitespace(text);
}

// One attribute's values in first-seen order, each with the list rows that
// hold it. Rows stand for oids until the result is written, which keeps the
// pass over a large list to integer appends. The blank marker is tallied
// apart so it never joins the values.
// The rows that hold one value, or only how many of them when no oid table
// is asked for: the counts alone are a fraction of the memory.
struct RowSet {
    std::vector<int> rows;
    qsizetype size = 0;
    void add(int row, bool keep)
    {
        ++size;
        if (keep)
            rows.push_back(row);
    }
    // Joins the rows another thread counted: both lists are in row order.
    void append(const RowSet &other)
    {
        size += other.size;
        const auto middle = qsizetype(rows.size());
        rows.insert(rows.end(), other.rows.begin(), other.rows.end());
        std::inplace_merge(rows.begin(), rows.begin() + middle, rows.end());
    }
};

struct Column {
    bool keepRows = true;
    QHash<QString, int> index;
    QStringList values;
    std::vector<RowSet> rows;
    RowSet blankRows;
    bool hasBlank = false;
    QHash<qint64, int> integerIndex;

    int indexOf(const QString &value)
    {
        auto it = index.constFind(value);
        if (it != index.constEnd())
            return *it;
        const int i = int(values.size());
        index.insert(value, i);
        values << value;
        rows.emplace_back();
        return i;
    }
    void count(const QString &value, int row) { rows[size_t(indexOf(value))].add(row, keepRows); }

    // The store keeps one copy of a text repeated down a column, so most rows
    // can be counted by where their characters lie, without hashing or
    // comparing them. Each address is pinned by a copy of its text, so it
    // cannot be freed and taken by another text during the pass. A column
    // whose texts are made afresh for every row (a computed value) stops trying.
    QHash<const QChar *, int> byAddress;
    std::vector<QString> pinned;
    int addressTries = 0;
    int addressMisses = 0;
    bool addressesUseful = true;

    void countText(const QString &value, int row)
    {
        if (!addressesUseful) {
            count(value, row);
            return;
        }
        ++addressTries;
        auto it = byAddress.constFind(value.constData());
        // The same characters at the same address and of the same length are the same text.
        if (it != byAddress.constEnd() && values[*it].size() == value.size()) {
            rows[size_t(*it)].add(row, keepRows);
            return;
        }
        ++addressMisses;
        if (addressTries >= 4096 && addressMisses * 2 > addressTries) {
            addressesUseful = false;
            byAddress = {};
            pinned = {};
            count(value, row);
            return;
        }
        const int i = indexOf(value);
        byAddress.insert(value.constData(), i);
        pinned.push_back(value);
        rows[size_t(i)].add(row, keepRows);
    }
    // Whole numbers skip making their text for every item: it is made once per value.
    void countInteger(qint64 number, int row)
    {
        auto it = integerIndex.constFind(number);
        if (it != integerIndex.constEnd()) {
            rows[size_t(*it)].add(row, keepRows);
            return;
        }
        const QString text = QString::number(number);
        count(text, row);
        integerIndex.insert(number, index.value(text));
    }
    // A list whose values stand on shared rows is counted by row: each row's
    // value is made once, the first time the row is met, and remembered by
    // where its oid's characters lie (the items share their rows' oid texts,
    // and a pinned copy keeps each address from being taken by another text).
    // An item counts once under each of its values, and as blank when no row
    // gives it a value or when one of its rows has a blank one it keeps.
    static constexpr int blankRow = -1;
    static constexpr int droppedRow = -2;
    QHash<const QChar *, int> byRow;
    std::vector<QString> pinnedRows;
    std::vector<int> seenValues;
    void countRows(const QStringList &oids, const QHash<QString, ZTManagedObject *> *table,
                   const ZTItem::RowValues &source, int row)
    {
        seenValues.clear();
        bool blank = false;
        for (const QString &oid : oids) {
            int value;
            const auto it = byRow.constFind(oid.constData());
            if (it != byRow.constEnd()) {
                value = *it;
            } else {
                const ZTManagedObject *shared = table ? table->value(oid, nullptr) : nullptr;
                if (!shared) {
                    value = droppedRow;
                } else {
                    const QString text = source.value(*shared);
                    if (!isBlank(text))
                        value = indexOf(text);
                    else
                        value = source.dropsBlanks ? droppedRow : blankRow;
                }
                byRow.insert(oid.constData(), value);
                pinnedRows.push_back(oid);
            }
            if (value == droppedRow)
                continue;
            if (value == blankRow) {
                blank = true;
                continue;
            }
            if (std::find(seenValues.begin(), seenValues.end(), value) == seenValues.end()) {
                seenValues.push_back(value);
                rows[size_t(value)].add(row, keepRows);
            }
        }
        if (blank || seenValues.empty())
            countBlank(row);
    }
    void countBlank(int row)
    {
        hasBlank = true;
        blankRows.add(row, keepRows);
    }
    // Joins the tally another thread made of other rows: the values it met
    // first follow this one's, and the rows of each value stay in row order.
    void append(const Column &later)
    {
        for (size_t i = 0; i < later.rows.size(); ++i) {
            const QString &value = later.values[qsizetype(i)];
            auto it = index.constFind(value);
            int at;
            if (it == index.constEnd()) {
                at = int(values.size());
                index.insert(value, at);
                values << value;
                rows.emplace_back();
            } else {
                at = *it;
            }
            rows[size_t(at)].append(later.rows[i]);
        }
        hasBlank = hasBlank || later.hasBlank;
        blankRows.append(later.blankRows);
    }
};

// Below this many items a second thread costs more than it saves.
constexpr size_t s_parallelListSize = 20000;

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

ZTListTally ZTListFilter::tallyFromDocument(const ZTList &list, const ZTDocument &document,
                                            const QStringList &addressBookNames, bool withOids)
{
    const QStringList &itemOids = list.itemOids();
    const ZTCacheableAttributes &keys = document.attributeTables().cacheableAttributesDictionary();
    const QString yes = yesText();
    const QString no = noText();
    QList<BooleanReader> booleanReaders;
    for (const QString &key : keys.boolean)
        booleanReaders << booleanReader(key);

    // Each key is resolved once; the pass then reads through direct calls.
    const ZTItemTable table(document);
    const QList<ZTItem::KeyReader> stringReaders = table.readers(keys.string);
    const QList<ZTItem::KeyReader> arrayReaders = table.readers(keys.array);
    const QList<ZTItem::KeyReader> numberReaders = table.readers(keys.number);
    const QList<ZTItem::KeyReader> booleanValueReaders = table.readers(keys.boolean);
    const int rowCount = int(itemOids.size());
    const ZTResolvedItems items = table.items(itemOids);
    // The shared rows of the lists counted by row; the pass only reads them.
    std::vector<const QHash<QString, ZTManagedObject *> *> rowTables;
    for (const ZTItem::KeyReader &reader : arrayReaders) {
        const QHash<QString, ZTManagedObject *> *rows = nullptr;
        if (reader.rows && document.managedObjectContext()) {
            const auto &tables = document.managedObjectContext()->oidObjectDictionary();
            const auto found = tables.constFind(reader.rows->entity);
            if (found != tables.constEnd())
                rows = &*found;
        }
        rowTables.push_back(rows);
    }

    // A large list is counted by two threads side by side (the calling one
    // and the helper), each by its own tally, and the tallies are then joined.
    // Each item is read by one thread only (a computed
    // value may be remembered by its item), shared rows are only read, and
    // stored texts are looked at in place, so the threads share no writes.
    struct Tally {
        std::vector<Column> strings, arrays, numbers, booleans;
        QSet<QString> people;
    };
    auto newTally = [&] {
        Tally tally;
        tally.strings.resize(size_t(keys.string.size()));
        tally.arrays.resize(size_t(keys.array.size()));
        tally.numbers.resize(size_t(keys.number.size()));
        tally.booleans.resize(size_t(keys.boolean.size()));
        for (Column &column : tally.booleans) {
            column.values = {yes, no};
            column.index = {{yes, 0}, {no, 1}};
            column.rows.resize(2);
        }
        for (std::vector<Column> *columns : {&tally.strings, &tally.arrays, &tally.numbers, &tally.booleans})
            for (Column &column : *columns)
                column.keepRows = withOids;
        return tally;
    };
    auto count = [&](Tally &tally, int from, int to) {
        QStringList seen;
        for (int row = from; row < to; ++row) {
            items.prefetchAhead(row);
            const ZTItem *item = items[row];
            if (!item)
                continue;
            for (int k = 0; k < stringReaders.size(); ++k) {
                Column &column = tally.strings[size_t(k)];
                const QVariant *stored = nullptr;
                if (stringReaders[k].peek(*item, &stored) &&
                    (!stored || stored->typeId() == QMetaType::QString)) {
                    const QString *value =
                        stored ? static_cast<const QString *>(stored->constData()) : nullptr;
                    if (!value || isBlank(*value))
                        column.countBlank(row);
                    else
                        column.countText(*value, row);
                    continue;
                }
                const QString value = stringReaders[k].read(*item).toString();
                if (isBlank(value))
                    column.countBlank(row);
                else
                    column.count(value, row);
            }
            for (int k = 0; k < arrayReaders.size(); ++k) {
                const ZTItem::KeyReader &reader = arrayReaders[k];
                if (reader.rows && item->entity() == reader.entity) {
                    tally.arrays[size_t(k)].countRows(reader.rows->oids(*item), rowTables[size_t(k)],
                                                      *reader.rows, row);
                    continue;
                }
                const QVariant variant = reader.read(*item);
                const QStringList values = variant.typeId() == QMetaType::QStringList
                                               ? *static_cast<const QStringList *>(variant.constData())
                                               : ZTItem::variantToStrings(variant);
                Column &column = tally.arrays[size_t(k)];
                if (values.isEmpty()) {
                    column.countBlank(row);
                    continue;
                }
                // An item counts once under each of its values, even a repeated one.
                seen.clear();
                bool blankCounted = false;
                for (const QString &value : values) {
                    if (isBlank(value)) {
                        if (!blankCounted)
                            column.countBlank(row);
                        blankCounted = true;
                    } else if (values.size() == 1 || !seen.contains(value)) {
                        seen << value;
                        column.countText(value, row);
                    }
                }
            }
            for (int k = 0; k < numberReaders.size(); ++k) {
                Column &column = tally.numbers[size_t(k)];
                const QVariant value = numberReaders[k].read(*item);
                const int type = value.typeId();
                if (type == QMetaType::Int || type == QMetaType::LongLong || type == QMetaType::UInt) {
                    column.countInteger(value.toLongLong(), row);
                    continue;
                }
                const QString text = value.isValid() && !value.isNull() ? value.toString() : QString();
                if (text.isNull())
                    column.countBlank(row);
                else
                    column.count(text, row);
            }
            for (int k = 0; k < booleanReaders.size(); ++k) {
                const BooleanReader reader = booleanReaders[k];
                const bool set = reader ? (item->*reader)() : booleanValueReaders[k].read(*item).toBool();
                tally.booleans[size_t(k)].rows[set ? 0 : 1].add(row, withOids);
            }
            // Only an item on loan has a borrower.
            if (item->isLentOut()) {
                const QString borrower = item->lentToName();
                if (!isBlank(borrower))
                    tally.people.insert(borrower);
            }
        }
    };

    Tally tally = newTally();
    tally.people = QSet<QString>(addressBookNames.cbegin(), addressBookNames.cend());
    const bool parallel = size_t(rowCount) >= s_parallelListSize;
    const int half = parallel ? rowCount / 2 : rowCount;
    if (parallel) {
        // The threads take the rows a block at a time, so that neither waits
        // long for the other when one of them runs slower (a cold cache, a
        // busy core).
        Tally second = newTally();
        std::atomic<int> next = 0;
        auto take = [&](Tally &into) {
            constexpr int block = 2048;
            for (int from = next.fetch_add(block); from < rowCount; from = next.fetch_add(block))
                count(into, from, std::min(from + block, rowCount));
        };
        ZTHelperThread::runSideBySide([&] { take(tally); }, [&] { take(second); });
        auto join = [](std::vector<Column> &into, const std::vector<Column> &from) {
            for (size_t k = 0; k < into.size(); ++k)
                into[k].append(from[k]);
        };
        join(tally.strings, second.strings);
        join(tally.arrays, second.arrays);
        join(tally.numbers, second.numbers);
        join(tally.booleans, second.booleans);
        tally.people.unite(second.people);
    } else {
        count(tally, 0, rowCount);
    }

    // Each column's values in display order, with their counts and places.
    ZTListTally result;
    result.keys = keys.string + keys.array + keys.number + keys.boolean;
    result.columns.resize(size_t(result.keys.size()));
    // The oid lists are made at their full size first and filled in afterwards,
    // again in the two halves side by side, so each oid is copied by one thread.
    struct OidFill {
        const std::vector<int> *rows;
        QString *out;
    };
    std::vector<OidFill> fills;
    auto oidsAt = [&fills](const std::vector<int> &rows) {
        QStringList oids(qsizetype(rows.size()));
        fills.push_back({&rows, oids.data()});
        return oids;
    };
    auto fill = [&](int from, int to) {
        for (const OidFill &job : fills) {
            const std::vector<int> &rows = *job.rows;
            auto it = std::lower_bound(rows.begin(), rows.end(), from);
            const auto end = std::lower_bound(it, rows.end(), to);
            for (; it != end; ++it)
                job.out[it - rows.begin()] = itemOids.at(*it);
        }
    };
    qsizetype at = 0;
    auto publish = [&](const Column &column, const std::vector<int> &order) {
        ZTValueTally &out = result.columns[size_t(at++)];
        const size_t n = order.size();
        std::vector<qsizetype> rank(n);
        out.values.reserve(qsizetype(n));
        out.counts.reserve(n);
        for (size_t i = 0; i < n; ++i) {
            const RowSet &rows = column.rows[size_t(order[i])];
            rank[size_t(order[i])] = qsizetype(i);
            out.values << column.values[order[i]];
            out.counts.push_back(rows.size);
            if (withOids)
                out.oids << oidsAt(rows.rows);
        }
        // The first-seen index becomes the display place, without hashing the values again.
        for (auto it = column.index.constBegin(); it != column.index.constEnd(); ++it)
            out.position.insert(it.key(), rank[size_t(it.value())]);
        out.hasBlank = column.hasBlank;
        out.blankCount = column.blankRows.size;
        if (withOids && column.hasBlank)
            out.blankOids = oidsAt(column.blankRows.rows);
    };
    for (const Column &column : tally.strings)
        publish(column, ZTListCompare::caseInsensitiveOrder(column.values));
    for (const Column &column : tally.arrays)
        publish(column, ZTListCompare::caseInsensitiveOrder(column.values));
    for (const Column &column : tally.numbers) {
        std::vector<double> numbers;
        numbers.reserve(size_t(column.values.size()));
        for (const QString &value : std::as_const(column.values))
            numbers.push_back(value.toDouble());
        std::vector<int> order(numbers.size());
        std::iota(order.begin(), order.end(), 0);
        std::stable_sort(order.begin(), order.end(),
                         [&](int a, int b) { return numbers[size_t(a)] < numbers[size_t(b)]; });
        publish(column, order);
    }
    for (const Column &column : tally.booleans)
        publish(column, {0, 1});
    if (parallel) {
        ZTHelperThread::runSideBySide([&] { fill(0, half); }, [&] { fill(half, rowCount); });
    } else {
        fill(0, rowCount);
    }

    QSet<QString> languages;
    for (const char *key : {"language", "originalLanguage"}) {
        const qsizetype k = keys.string.indexOf(QLatin1String(key));
        if (k >= 0)
            for (const QString &language : tally.strings[size_t(k)].values)
                languages.insert(language);
    }
    result.personNames = ZTListCompare::sortedCaseInsensitive(tally.people.values());
    result.languages = ZTListCompare::sortedCaseInsensitive(languages.values());
    return result;
}

QVariantMap ZTListFilter::filterDictionaryFromDocument(const ZTList &list, const ZTDocument &document,
                                                       const QStringList &addressBookNames, bool withOids)
{
    return tallyFromDocument(list, document, addressBookNames, withOids).filterDictionary(withOids);
}
