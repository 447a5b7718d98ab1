#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

class ZTDocument;
class ZTList;

// One column of the active sort. `columnIdentifier` holds the sort key the
// items are read by (the column's own key when it has no sort key).
struct ZTSortEntry {
    QString columnIdentifier;
    bool ascending = true;
    int index = -1; // the column's position in the table

    QString sortOrdering() const
    {
        return ascending ? QStringLiteral("ascending") : QStringLiteral("descending");
    }
    QVariantMap dictionary() const;
};

// Orders item oids by several keys. Per key: two nils tie, a nil comes first
// ascending and last descending, texts compare by the localised case-blind
// rule and everything else by value. The first key that does not tie decides.
namespace ZTItemSorting {

// Sorts in place; a stable sort, so ties keep their order. Unknown oids sort as all-nil rows.
void sortOids(const ZTDocument &document, QStringList &oids, const QList<ZTSortEntry> &entries);
// -1, 0 or 1 for two values of one key under the rule above (ascending).
int compareNilFirst(const QVariant &a, const QVariant &b);

// How the list table was last sorted; each click moves to the next.
enum class ListSort { NameAscending = 0, NameDescending, CountAscending, CountDescending };
// Sorts the lists (not the main list) by the flag, stores their new order and
// returns the new flag; the caller passes the last one (-1 at start).
int sortLists(QList<ZTList *> &lists, int listSortFlag);
void updateListOrderings(const QList<ZTList *> &lists);

} // namespace ZTItemSorting
