#pragma once

#include "library/ZTItemSorting.h"
#include "library/ZTLibraryCaches.h"
#include "library/ZTSearchIndex.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <vector>

class ZTDocument;
class ZTItem;
class ZTList;
struct ZTFilter;

// What a library window shows, as plain state and operations: the chosen list
// and tab, the search, the filter browser, the sort, the caches and the
// statistics line. The window, the command line and the tests drive it alike;
// what the user chose (a row, a tab, a filter value) comes in as arguments.
class ZTViewPipeline {
public:
    enum class Tab { Main, Filter };

    explicit ZTViewPipeline(ZTDocument &document);

    ZTDocument &document() const { return m_document; }

    // ---- the list table: row 0 is the main list, row r the list r-1 of itemLists ----
    int selectedListRow() const { return m_selectedListRow; }
    // The selection of the list table changed: the search ends, the sub caches
    // follow the list, and a chosen browser value is applied to the new list.
    void selectListRow(int row);
    ZTList *selectedList() const; // the main list for row 0 or none
    bool isMainListSelected() const;
    Tab tab() const { return m_tab; }
    void setTab(Tab tab) { m_tab = tab; }

    // ---- oid sources ----
    QStringList baseOids() const;
    QStringList displayedOids() const;
    QList<ZTItem *> baseItems() const;
    const QStringList &searchedItemOids() const { return m_searchedItemOids; }
    const QStringList &subItemOids() const { return m_subItemOids; }
    QStringList &mutableSubItemOids() { return m_subItemOids; }
    QStringList &mutableSearchedItemOids() { return m_searchedItemOids; }
    bool usingSearch() const { return m_usingSearch; }
    QString searchString() const { return m_searchString; }
    int totalItemCount() const { return m_totalItemCount; }

    // ---- caches ----
    void updateMainCaches();
    // Whoever changes items tells the view, so the search forgets what it
    // remembered of them (the operations here do it themselves).
    void itemsDidChange(const QStringList &oids) { m_searchIndex.invalidate(oids); }
    void invalidateSearchIndex() { m_searchIndex.invalidate(); }
    void updateSubCaches();
    const ZTLibraryCaches &mainCaches() const { return m_mainCaches; }
    const ZTLibraryCaches &subCaches() const { return m_subCaches; }
    const QVariantMap &cacheDictionary() const { return m_mainCaches.cacheDictionary(); }
    const QVariantMap &baseTagDictionary() const;
    // The one pass over a list that the caches are made from.
    ZTListTally tallyForList(const ZTList &list) const;

    // ---- statistics ----
    void updateItemStatistics();
    QString itemStatisticsString() const { return m_itemStatistics; }
    QString itemStatisticsStringForOids(const QStringList &oids) const;
    const QVariantMap &statisticsDisplayDictionary() const { return m_statisticsDisplayDictionary; }
    void setStatisticsDisplayDictionary(const QVariantMap &display);

    // ---- search ----
    // The text of the search field changed. Returns the row to select (0), or -1.
    int controlTextDidChange(const QString &text);
    void clearSearch();

    // ---- filter browser ----
    QStringList filterKeys() const;
    // Column two for a filter label: "Yes"/"No", or the list's values after "<none>".
    QStringList browserValues(const QString &filterLabel) const;
    // A path is the filter label and the value; with no value the result empties.
    void itemBrowserChanged(const QString &filterLabel, const QString &value);
    void itemBrowserChanged(const QStringList &path);
    QString browserFilterLabel() const { return m_browserFilter; }
    QString browserValue() const { return m_browserValue; }
    // The count bars: `counts` in column order, `max` and `average`.
    QVariantMap filterCountDictionary() const;
    static bool itemMatchesFilter(const ZTItem &item, const ZTFilter &filter, const QString &value);
    static bool valueMatchesFilter(const QVariant &itemValue, const ZTFilter &filter, const QString &value);
    static QString noneLabel();
    static QString yesLabel();
    static QString noLabel();

    // ---- type-ahead: each returns the row to select, or -1 for none ----
    // On the list table. With no lists at all the text goes to the item table: -1.
    int listTableTypeAhead(const QString &text) const;
    int itemTableTypeAhead(const QString &text) const;
    static int stringsTypeAhead(const QStringList &strings, const QString &text);
    QString typeAheadObjectValue(const QString &column, const QString &oid) const;

    // ---- sorting ----
    const QList<ZTSortEntry> &currentSortedColumnDictArray() const { return m_sortEntries; }
    // A click on a column header. `control` joins the column to the sort.
    // Returns false when nothing was sorted ("cover", or press and release in
    // different columns).
    bool didClickTableColumn(const QString &column, int index, bool control,
                             const QString &releasedColumn = {});
    void setSortEntries(const QList<ZTSortEntry> &entries);
    void sortDisplayedOids();
    void clickListTableHeader();
    int listSortFlag() const { return m_listSortFlag; }

    // ---- stepping through the rows on view ----
    QString nextOid(const QString &oid) const;
    QString previousOid(const QString &oid) const;

    // The array the view shows, for operations that reorder or extend it in place.
    QStringList *arrayBehindView(ZTList **list);

private:
    QList<ZTItem *> itemsOfOids(const QStringList &oids) const;
    QStringList rowsOfList() const;

    ZTDocument &m_document;
    int m_selectedListRow = 0;
    Tab m_tab = Tab::Main;
    QStringList m_searchedItemOids;
    QStringList m_subItemOids;
    bool m_usingSearch = false;
    QString m_searchString;
    ZTLibraryCaches m_mainCaches;
    ZTLibraryCaches m_subCaches;
    QList<ZTSortEntry> m_sortEntries;
    QVariantMap m_statisticsDisplayDictionary;
    QString m_itemStatistics;
    int m_totalItemCount = 0;
    int m_listSortFlag = -1;
    QString m_browserFilter;
    QString m_browserValue;
    ZTSearchIndex m_searchIndex;
    // The index slots of searchedItemOids, valid while it is unchanged (shares the snapshot).
    QStringList m_searchedSnapshot;
    std::vector<int> m_searchedSlots;
};
