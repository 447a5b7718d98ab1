#include "library/ZTItemSorting.h"

#include "library/ZTDocument.h"
#include "library/ZTTextOrder.h"
#include "lists/ZTList.h"
#include "model/ZTItem.h"

#include <QCollatorSortKey>

#include <algorithm>
#include <optional>
#include <variant>
#include <vector>

QVariantMap ZTSortEntry::dictionary() const
{
    return {{QStringLiteral("columnIdentifier"), columnIdentifier},
            {QStringLiteral("sortOrdering"), sortOrdering()},
            {QStringLiteral("index"), index}};
}

namespace {

bool isNil(const QVariant &v)
{
    if (!v.isValid() || v.isNull())
        return true;
    return false;
}

// A key read once per row: texts turn into collation keys so that a sort of a
// hundred thousand rows compares bytes, not strings through the collator.
struct SortValue {
    std::optional<QCollatorSortKey> text;
    QVariant other;
    bool nil = true;
};

int compareSortValues(const SortValue &a, const SortValue &b)
{
    if (a.nil && b.nil)
        return 0;
    if (a.nil)
        return -1;
    if (b.nil)
        return 1;
    if (a.text && b.text) {
        const int r = a.text->compare(*b.text);
        return r < 0 ? -1 : (r > 0 ? 1 : 0);
    }
    return ZTTextOrder::compareValues(a.text ? QVariant() : a.other, b.text ? QVariant() : b.other);
}

SortValue sortValueFor(const QVariant &value)
{
    SortValue s;
    if (isNil(value))
        return s;
    s.nil = false;
    if (ZTTextOrder::isText(value)) {
        const QString text = value.typeId() == QMetaType::QStringList
                                 ? value.toStringList().join(QLatin1Char(' '))
                                 : value.toString();
        s.text = ZTTextOrder::sortKey(text);
    }
    s.other = value;
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
    const qsizetype rows = oids.size();
    const qsizetype keys = entries.size();
    std::vector<SortValue> values(size_t(rows * keys));
    for (qsizetype r = 0; r < rows; ++r) {
        const ZTItem *item = document.itemForOid(oids[r]);
        if (!item)
            continue;
        for (qsizetype k = 0; k < keys; ++k)
            values[size_t(r * keys + k)] = sortValueFor(item->valueForKey(entries[k].columnIdentifier));
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
