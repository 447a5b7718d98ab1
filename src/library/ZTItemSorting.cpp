#include "library/ZTItemSorting.h"

#include "library/ZTDocument.h"
#include "library/ZTItemTable.h"
#include "library/ZTTextOrder.h"
#include "lists/ZTList.h"
#include "model/ZTItem.h"

#include <QCollatorSortKey>
#include <QHash>

#include <algorithm>
#include <optional>
#include <thread>
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
    std::optional<QCollatorSortKey> text;
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
        return sign(a.text->compare(*b.text));
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
    std::vector<SortValue> values(static_cast<size_t>(rows * keys));
    const ZTResolvedItems items = table.items(oids);
    // Collation keys are the costly part: a text met again (a genre, a
    // publisher) reuses its key, and a long list is keyed in two halves side by
    // side, each with its own collator. Each item is read by one thread only.
    auto fill = [&](qsizetype from, qsizetype to) {
        std::vector<QHash<QString, QCollatorSortKey>> known(static_cast<size_t>(keys));
        for (qsizetype r = from; r < to; ++r) {
            const ZTItem *item = items[r];
            if (!item)
                continue;
            for (qsizetype k = 0; k < keys; ++k) {
                const QVariant value = readers[k].read(*item);
                SortValue &slot = values[size_t(r * keys + k)];
                if (value.typeId() != QMetaType::QString || isNil(value)) {
                    slot = sortValueFor(value);
                    continue;
                }
                const QString &text = *static_cast<const QString *>(value.constData());
                QHash<QString, QCollatorSortKey> &memo = known[size_t(k)];
                auto it = memo.constFind(text);
                if (it == memo.constEnd())
                    it = memo.insert(text, ZTTextOrder::sortKey(text));
                slot.kind = SortValue::Kind::Text;
                slot.text = *it;
            }
        }
    };
    if (rows >= s_parallelSortSize) {
        std::thread second(fill, rows / 2, rows);
        fill(0, rows / 2);
        second.join();
    } else {
        fill(0, rows);
    }
    std::vector<qsizetype> order(static_cast<size_t>(rows));
    for (qsizetype r = 0; r < rows; ++r)
        order[size_t(r)] = r;
    std::stable_sort(order.begin(), order.end(), [&](qsizetype x, qsizetype y) {
        for (qsizetype k = 0; k < keys; ++k) {
            const int r = compareSortValues(values[size_t(x * keys + k)], values[size_t(y * keys + k)]);
            if (r != 0)
                return entries[k].ascending ? r < 0 : r > 0;
        }
        return false;
    });
    QStringList sorted;
    sorted.reserve(rows);
    for (qsizetype r : order)
        sorted << oids[r];
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
