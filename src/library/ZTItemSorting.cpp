#include "library/ZTItemSorting.h"

#include "base/ZTHelperThread.h"
#include "library/ZTDocument.h"
#include "library/ZTItemTable.h"
#include "library/ZTTextOrder.h"
#include "lists/ZTList.h"
#include "model/ZTItem.h"

#include <QHash>

#include <algorithm>
#include <cstring>
#include <variant>
#include <vector>

QVariantMap ZTSortEntry::dictionary() const
{
    return {{QStringLiteral("columnIdentifier"), columnIdentifier},
            {QStringLiteral("sortOrdering"), sortOrdering()},
            {QStringLiteral("index"), index}};
}

namespace {

// Below this many rows a second thread costs more than it saves.
constexpr qsizetype s_parallelSortSize = 20000;

bool isNil(const QVariant &v)
{
    return !v.isValid() || v.isNull();
}

// A key read once per row: texts turn into collation keys and numbers, dates
// and flags into doubles, so that a sort of a hundred thousand rows compares
// bytes and numbers rather than going through the collator and QVariant.
struct SortValue {
    enum class Kind : quint8 { Nil, Text, Number, Other };
    Kind kind = Kind::Nil;
    double number = 0;
    QByteArray text; // the collation key
    QVariant other;
};

int sign(double d)
{
    return d < 0 ? -1 : (d > 0 ? 1 : 0);
}

int compareSortValues(const SortValue &a, const SortValue &b)
{
    using K = SortValue::Kind;
    if (a.kind == K::Nil || b.kind == K::Nil)
        return a.kind == b.kind ? 0 : (a.kind == K::Nil ? -1 : 1);
    if (a.kind == K::Text && b.kind == K::Text)
        return sign(std::strcmp(a.text.constData(), b.text.constData()));
    if (a.kind == K::Number && b.kind == K::Number)
        return a.number < b.number ? -1 : (a.number > b.number ? 1 : 0);
    if (a.kind == K::Other && b.kind == K::Other)
        return ZTTextOrder::compareValues(a.other, b.other);
    // Values of unlike kinds in one column: numbers, then texts, then the rest.
    auto rank = [](K kind) { return kind == K::Number ? 0 : (kind == K::Text ? 1 : 2); };
    return rank(a.kind) < rank(b.kind) ? -1 : 1;
}

SortValue sortValueFor(const QVariant &value)
{
    SortValue s;
    if (isNil(value))
        return s;
    switch (value.typeId()) {
    case QMetaType::QString:
    case QMetaType::QStringList:
        s.kind = SortValue::Kind::Text;
        s.text = ZTTextOrder::sortKey(value.typeId() == QMetaType::QStringList
                                          ? value.toStringList().join(QLatin1Char(' '))
                                          : value.toString());
        break;
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Bool:
        s.kind = SortValue::Kind::Number;
        s.number = value.toDouble();
        break;
    case QMetaType::QDateTime:
        s.kind = SortValue::Kind::Number;
        s.number = double(value.toDateTime().toMSecsSinceEpoch());
        break;
    case QMetaType::QDate:
        s.kind = SortValue::Kind::Number;
        s.number = double(value.toDate().toJulianDay());
        break;
    default:
        s.kind = SortValue::Kind::Other;
        s.other = value;
        break;
    }
    return s;
}

} // namespace

int ZTItemSorting::compareNilFirst(const QVariant &a, const QVariant &b)
{
    return compareSortValues(sortValueFor(a), sortValueFor(b));
}

namespace {

// One column's texts, each met once: by address first, since the store keeps
// one copy of a text repeated down a column, then by content, while that
// still finds anything (a column of titles is nearly all distinct, and
// hashing each one would only cost). A text met twice under two addresses
// is simply listed twice; both get the same rank.
struct TextColumn {
    std::vector<QString> texts; // also pins each address for the pass
    QHash<const QChar *, int> byAddress;
    QHash<QString, int> byContent;
    int contentTries = 0;
    int contentHits = 0;
    bool useContent = true;

    int indexOf(const QString &text)
    {
        auto at = byAddress.constFind(text.constData());
        if (at != byAddress.constEnd() && texts[size_t(*at)].size() == text.size())
            return *at;
        if (useContent) {
            ++contentTries;
            auto it = byContent.constFind(text);
            if (it != byContent.constEnd()) {
                ++contentHits;
                return *it;
            }
            if (contentTries >= 4096 && contentHits * 10 < contentTries) {
                useContent = false;
                byContent = {};
            }
        }
        const int index = int(texts.size());
        texts.push_back(text);
        byAddress.insert(text.constData(), index);
        if (useContent)
            byContent.insert(text, index);
        return index;
    }

    // Each text's place in the localised order; texts that collate alike share one.
    std::vector<double> ranks() const
    {
        const size_t count = texts.size();
        // Collation keys are the costly part: a long column is keyed in two
        // halves side by side, each thread with its own collator and its own
        // buffer of keys.
        const bool parallel = qsizetype(count) >= s_parallelSortSize;
        const size_t half = parallel ? count / 2 : count;
        QByteArray buffers[2];
        std::vector<qsizetype> starts(count);
        auto fill = [&](QByteArray &buffer, size_t from, size_t to) {
            buffer.reserve(qsizetype(to - from) * 24);
            for (size_t i = from; i < to; ++i) {
                starts[i] = buffer.size();
                ZTTextOrder::appendSortKey(texts[i], buffer);
            }
        };
        if (parallel) {
            ZTHelperThread::runSideBySide([&] { fill(buffers[0], 0, half); },
                                          [&] { fill(buffers[1], half, count); });
        } else {
            fill(buffers[0], 0, count);
        }
        // The sort compares the keys' first eight bytes as one number, held
        // beside the text's index, and goes to the rest of a key only on a tie.
        struct Key {
            quint64 prefix;
            const char *rest; // null when the key ends within the prefix
            int index;
        };
        std::vector<Key> keys(count);
        for (size_t i = 0; i < count; ++i) {
            const char *key = buffers[i < half ? 0 : 1].constData() + starts[i];
            quint64 prefix = 0;
            const char *rest = nullptr;
            for (int b = 0; b < 8; ++b) {
                prefix = (prefix << 8) | quint8(key[b]);
                if (key[b] == 0) {
                    prefix <<= 8 * (7 - b);
                    break;
                }
                if (b == 7)
                    rest = key + 8;
            }
            keys[i] = {prefix, rest, int(i)};
        }
        // Equal prefixes with a zero in them are equal keys; otherwise the rest decides.
        auto order3 = [](const Key &a, const Key &b) {
            if (a.prefix != b.prefix)
                return a.prefix < b.prefix ? -1 : 1;
            if (!a.rest || !b.rest)
                return 0;
            return std::strcmp(a.rest, b.rest);
        };
        auto before = [&](const Key &a, const Key &b) { return order3(a, b) < 0; };
        // Likewise the sort: two halves side by side, then one merge.
        if (parallel) {
            const auto middle = keys.begin() + qsizetype(half);
            ZTHelperThread::runSideBySide([&] { std::sort(keys.begin(), middle, before); },
                                          [&] { std::sort(middle, keys.end(), before); });
            std::inplace_merge(keys.begin(), middle, keys.end(), before);
        } else {
            std::sort(keys.begin(), keys.end(), before);
        }
        std::vector<double> rank(count);
        double place = 0;
        for (size_t i = 0; i < count; ++i) {
            if (i > 0 && order3(keys[i - 1], keys[i]) != 0)
                ++place;
            rank[size_t(keys[i].index)] = place;
        }
        return rank;
    }
};

// A key's value in one row, small enough that the sort compares numbers held
// side by side: a text becomes its rank among the column's texts, dates and
// flags numbers, and any other value an index into the values kept aside.
struct Cell {
    SortValue::Kind kind = SortValue::Kind::Nil;
    double number = 0;
};

} // namespace

void ZTItemSorting::sortOids(const ZTDocument &document, QStringList &oids, const QList<ZTSortEntry> &entries)
{
    if (entries.isEmpty() || oids.size() < 2)
        return;
    const ZTItemTable table(document);
    QList<ZTItem::KeyReader> readers;
    for (const ZTSortEntry &entry : entries)
        readers << table.reader(entry.columnIdentifier);
    const qsizetype rows = oids.size();
    const qsizetype keys = entries.size();
    std::vector<Cell> cells(static_cast<size_t>(rows * keys));
    std::vector<TextColumn> texts(static_cast<size_t>(keys));
    std::vector<QVariant> others;
    const ZTResolvedItems items = table.items(oids);
    for (qsizetype r = 0; r < rows; ++r) {
        items.prefetchAhead(r);
        const ZTItem *item = items[r];
        if (!item)
            continue; // an unknown oid sorts as a row of nils
        for (qsizetype k = 0; k < keys; ++k) {
            Cell &cell = cells[size_t(r * keys + k)];
            const QVariant *stored = nullptr;
            QVariant read;
            if (!readers[k].peek(*item, &stored)) {
                read = readers[k].read(*item);
                stored = &read;
            }
            if (!stored || isNil(*stored))
                continue;
            const int type = stored->typeId();
            if (type == QMetaType::QString || type == QMetaType::QStringList) {
                cell.kind = SortValue::Kind::Text;
                cell.number = texts[size_t(k)].indexOf(
                    type == QMetaType::QString ? *static_cast<const QString *>(stored->constData())
                                               : stored->toStringList().join(QLatin1Char(' ')));
                continue;
            }
            const SortValue value = sortValueFor(*stored);
            cell.kind = value.kind;
            if (value.kind == SortValue::Kind::Number) {
                cell.number = value.number;
            } else if (value.kind == SortValue::Kind::Other) {
                cell.number = double(others.size());
                others.push_back(value.other);
            }
        }
    }
    for (qsizetype k = 0; k < keys; ++k) {
        if (texts[size_t(k)].texts.empty())
            continue;
        const std::vector<double> rank = texts[size_t(k)].ranks();
        for (qsizetype r = 0; r < rows; ++r) {
            Cell &cell = cells[size_t(r * keys + k)];
            if (cell.kind == SortValue::Kind::Text)
                cell.number = rank[size_t(cell.number)];
        }
    }
    auto compareCells = [&others](const Cell &a, const Cell &b) {
        using K = SortValue::Kind;
        if (a.kind == K::Nil || b.kind == K::Nil)
            return a.kind == b.kind ? 0 : (a.kind == K::Nil ? -1 : 1);
        if (a.kind == b.kind && a.kind != K::Other)
            return a.number < b.number ? -1 : (a.number > b.number ? 1 : 0);
        if (a.kind == K::Other && b.kind == K::Other)
            return ZTTextOrder::compareValues(others[size_t(a.number)], others[size_t(b.number)]);
        // Values of unlike kinds in one column: numbers, then texts, then the rest.
        auto rank = [](K kind) { return kind == K::Number ? 0 : (kind == K::Text ? 1 : 2); };
        return rank(a.kind) < rank(b.kind) ? -1 : 1;
    };
    std::vector<qsizetype> order(static_cast<size_t>(rows));
    for (qsizetype r = 0; r < rows; ++r)
        order[size_t(r)] = r;
    std::stable_sort(order.begin(), order.end(), [&](qsizetype x, qsizetype y) {
        for (qsizetype k = 0; k < keys; ++k) {
            const int c = compareCells(cells[size_t(x * keys + k)], cells[size_t(y * keys + k)]);
            if (c != 0)
                return entries[k].ascending ? c < 0 : c > 0;
        }
        return false;
    });
    QStringList sorted;
    sorted.reserve(rows);
    // Copying an oid touches its shared text's count, just before the
    // characters; in sorted order those lie all over memory, so they are
    // asked for a few rows ahead.
    constexpr size_t ahead = 8;
    for (size_t i = 0; i < order.size(); ++i) {
        if (i + ahead < order.size())
            __builtin_prefetch(reinterpret_cast<const char *>(oids.at(order[i + ahead]).constData()) - 16);
        sorted << oids.at(order[i]);
    }
    oids = sorted;
}

int ZTItemSorting::sortLists(QList<ZTList *> &lists, int listSortFlag)
{
    const int flag = (listSortFlag + 1) % 4;
    const auto sort = ListSort(flag);
    std::stable_sort(lists.begin(), lists.end(), [sort](const ZTList *a, const ZTList *b) {
        switch (sort) {
        case ListSort::NameAscending:
            return ZTTextOrder::compare(a->name(), b->name()) < 0;
        case ListSort::NameDescending:
            return ZTTextOrder::compare(a->name(), b->name()) > 0;
        case ListSort::CountAscending:
            return a->count() < b->count();
        case ListSort::CountDescending:
            return a->count() > b->count();
        }
        return false;
    });
    updateListOrderings(lists);
    return flag;
}

void ZTItemSorting::updateListOrderings(const QList<ZTList *> &lists)
{
    for (int i = 0; i < lists.size(); ++i)
        if (lists[i]->order() != i)
            lists[i]->setOrder(i);
}
