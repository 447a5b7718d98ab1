#include "library/ZTViewPipeline.h"
#include "library/lists/ZTListFilter.h"

#include "library/ZTAttributeTables.h"
#include "library/ZTContacts.h"
#include "library/ZTDocument.h"
#include "library/ZTItemStatistics.h"
#include "library/ZTItemTable.h"
#include "library/ZTTextOrder.h"
#include "lists/ZTList.h"
#include "lists/ZTListTally.h"
#include "model/ZTCodeFormatter.h"
#include "model/ZTItem.h"

#include <QCoreApplication>

#include <algorithm>

namespace {
QString tr(const char *text)
{
    return QCoreApplication::translate("Localizable", text);
}

bool isBlank(const QVariant &value)
{
    if (!value.isValid() || value.isNull())
        return true;
    if (value.typeId() == QMetaType::QStringList || value.typeId() == QMetaType::QVariantList)
        return value.toList().isEmpty();
    if (value.typeId() == QMetaType::QString)
        return value.toString().trimmed().isEmpty();
    return false;
}
} // namespace

ZTViewPipeline::ZTViewPipeline(ZTDocument &document)
    : m_document(document),
      m_statisticsDisplayDictionary(ZTItemStatistics::statisticsDisplayDictionaryFromSettings())
{
    m_subCaches = ZTLibraryCaches::empty(document.attributeTables().cacheableAttributesDictionary());
}

QString ZTViewPipeline::noneLabel()
{
    return tr("<none>");
}
QString ZTViewPipeline::yesLabel()
{
    return tr("Yes");
}
QString ZTViewPipeline::noLabel()
{
    return tr("No");
}

// ---- the list table ----

ZTList *ZTViewPipeline::selectedList() const
{
    const QList<ZTList *> &lists = m_document.itemLists();
    if (m_selectedListRow >= 1 && m_selectedListRow <= lists.size())
        return lists[m_selectedListRow - 1];
    return m_document.mainList();
}

bool ZTViewPipeline::isMainListSelected() const
{
    return m_selectedListRow < 1 || m_selectedListRow > m_document.itemLists().size();
}

void ZTViewPipeline::selectListRow(int row)
{
    m_selectedListRow = row;
    clearSearch();
    updateSubCaches();
    updateItemStatistics();
    // A chosen browser value applies to the new list at once.
    if (!m_browserValue.isEmpty())
        itemBrowserChanged(m_browserFilter, m_browserValue);
    else
        m_subItemOids.clear();
    updateItemStatistics();
}

// ---- oid sources ----

QStringList ZTViewPipeline::rowsOfList() const
{
    ZTList *list = selectedList();
    return list ? list->itemOids() : QStringList();
}

QStringList ZTViewPipeline::baseOids() const
{
    return m_usingSearch ? m_searchedItemOids : rowsOfList();
}

QStringList ZTViewPipeline::displayedOids() const
{
    return m_tab == Tab::Main ? baseOids() : m_subItemOids;
}

QList<ZTItem *> ZTViewPipeline::itemsOfOids(const QStringList &oids) const
{
    const ZTResolvedItems rows = ZTItemTable(m_document).items(oids);
    QList<ZTItem *> items;
    items.reserve(rows.size());
    for (qsizetype row = 0; row < rows.size(); ++row)
        if (ZTItem *item = rows[row])
            items << item;
    return items;
}

QList<ZTItem *> ZTViewPipeline::baseItems() const
{
    return itemsOfOids(baseOids());
}

QStringList *ZTViewPipeline::arrayBehindView(ZTList **list)
{
    if (list)
        *list = nullptr;
    if (m_tab == Tab::Filter)
        return &m_subItemOids;
    if (m_usingSearch)
        return &m_searchedItemOids;
    if (list)
        *list = selectedList();
    return nullptr;
}

// ---- caches ----

ZTListTally ZTViewPipeline::tallyForList(const ZTList &list) const
{
    // The caches keep values and counts, not which items hold them.
    return ZTListFilter::tallyFromDocument(list, m_document, ZTContacts::shared().peopleFromAddressBook(),
                                           false);
}

void ZTViewPipeline::updateMainCaches()
{
    if (ZTList *main = m_document.mainList())
        m_mainCaches = ZTLibraryCaches::fromTally(tallyForList(*main), ZTLibraryCaches::Target::Main);
    else
        m_mainCaches = ZTLibraryCaches::empty(m_document.attributeTables().cacheableAttributesDictionary());
}

void ZTViewPipeline::updateSubCaches()
{
    if (isMainListSelected())
        m_subCaches = ZTLibraryCaches::empty(m_document.attributeTables().cacheableAttributesDictionary());
    else
        m_subCaches = ZTLibraryCaches::fromTally(tallyForList(*selectedList()), ZTLibraryCaches::Target::Sub);
}

const QVariantMap &ZTViewPipeline::baseTagDictionary() const
{
    return isMainListSelected() ? m_mainCaches.tagDictionary() : m_subCaches.tagDictionary();
}

// ---- statistics ----

QString ZTViewPipeline::itemStatisticsStringForOids(const QStringList &oids) const
{
    return ZTItemStatistics::itemStatisticsStringForOids(m_document, oids, m_statisticsDisplayDictionary);
}

void ZTViewPipeline::updateItemStatistics()
{
    m_totalItemCount = m_document.mainList() ? m_document.mainList()->count() : 0;
    m_itemStatistics = itemStatisticsStringForOids(displayedOids());
}

void ZTViewPipeline::setStatisticsDisplayDictionary(const QVariantMap &display)
{
    if (display == m_statisticsDisplayDictionary)
        return;
    m_statisticsDisplayDictionary = display;
    updateItemStatistics();
}

// ---- search ----

int ZTViewPipeline::controlTextDidChange(const QString &text)
{
    const QString lowered = text.toLower();
    QString searchText = lowered;
    if (lowered.isEmpty()) {
        m_searchedItemOids.clear();
        m_usingSearch = false;
        updateItemStatistics();
    } else {
        if (!m_usingSearch)
            m_tab = Tab::Main;
        m_usingSearch = true;
        bool converted = false;
        if (ZTCodeFormatter::isValidEAN(lowered, QStringLiteral("978"))) {
            const QString isbn = ZTCodeFormatter::isbnFromEAN(lowered);
            if (!isbn.isEmpty()) {
                searchText = isbn.toLower();
                converted = true;
            }
        }
        // One more letter at the end can only narrow what is already found.
        const bool narrows = lowered.size() >= 2 && lowered.size() == m_searchString.size() + 1 &&
                             lowered.startsWith(m_searchString) && !converted;
        const QStringList candidates = narrows ? m_searchedItemOids : rowsOfList();
        const ZTItemTable table(m_document);
        const QByteArray needle = ZTSearchIndex::foldedNeedle(searchText);
        // A narrowing keystroke knows the slots of what it narrows.
        const std::vector<int> rowSlots = narrows && m_searchedItemOids.isSharedWith(m_searchedSnapshot)
                                              ? m_searchedSlots
                                              : m_searchIndex.slotsForOids(table, candidates);
        // The candidates' items are known (a list's, or the last result's), so
        // the result's are too, and the statistics below need not look them up.
        const ZTResolvedItems items = table.items(candidates);
        // Without a needle the index cannot answer (a text holding its
        // separator): the items are asked one by one.
        std::vector<qsizetype> matches;
        if (!needle.isEmpty()) {
            matches = m_searchIndex.matching(table, rowSlots, needle);
        } else {
            for (qsizetype i = 0; i < candidates.size(); ++i)
                if (const ZTItem *item = items[i]; item && item->containsString(searchText))
                    matches.push_back(i);
        }
        QStringList found;
        found.reserve(qsizetype(matches.size()));
        std::vector<int> foundSlots;
        foundSlots.reserve(matches.size());
        std::vector<ZTManagedObject *> foundItems;
        foundItems.reserve(matches.size());
        // Keeping a found oid touches its shared text's count, which lies
        // anywhere in memory: when most candidates are found (a new text), the
        // counts are asked for a few matches ahead.
        constexpr size_t ahead = 8;
        const bool prefetch = !narrows;
        for (size_t m = 0; m < matches.size(); ++m) {
            if (prefetch && m + ahead < matches.size())
                __builtin_prefetch(
                    reinterpret_cast<const char *>(candidates[matches[m + ahead]].constData()) - 16, 1);
            const qsizetype i = matches[m];
            found << candidates[i];
            foundSlots.push_back(rowSlots[size_t(i)]);
            foundItems.push_back(items[i]);
        }
        table.rememberItems(found, std::move(foundItems));
        m_searchedSlots = std::move(foundSlots);
        m_searchedSnapshot = found;
        m_searchedItemOids = found;
        updateItemStatistics();
    }
    m_searchString = searchText;
    return displayedOids().isEmpty() ? -1 : 0;
}

void ZTViewPipeline::clearSearch()
{
    m_searchedItemOids.clear();
    m_searchString.clear();
    m_usingSearch = false;
}

// ---- filter browser ----

QStringList ZTViewPipeline::filterKeys() const
{
    return m_document.attributeTables().filterKeys();
}

QStringList ZTViewPipeline::browserValues(const QString &filterLabel) const
{
    const ZTFilter *filter = m_document.attributeTables().filter(filterLabel);
    if (!filter)
        return {};
    if (filter->type == QLatin1String("boolean"))
        return {yesLabel(), noLabel()};
    const ZTLibraryCaches &caches = isMainListSelected() ? m_mainCaches : m_subCaches;
    QStringList values;
    if (!filter->prohibitNone)
        values << noneLabel();
    values << caches.stringValues(filter->key2.isEmpty() ? filter->key : filter->key2);
    return values;
}

bool ZTViewPipeline::itemMatchesFilter(const ZTItem &item, const ZTFilter &filter, const QString &value)
{
    return valueMatchesFilter(item.valueForKey(filter.key2.isEmpty() ? filter.key : filter.key2), filter,
                              value);
}

bool ZTViewPipeline::valueMatchesFilter(const QVariant &itemValue, const ZTFilter &filter,
                                        const QString &value)
{
    if (filter.type == QLatin1String("boolean"))
        return itemValue.toBool() == (value == yesLabel());
    if (value == noneLabel())
        return isBlank(itemValue);
    if (filter.type == QLatin1String("rating") || filter.type == QLatin1String("integer")) {
        bool ok = false;
        const double wanted = value.toDouble(&ok);
        return ok && !isBlank(itemValue) && itemValue.toDouble() == wanted;
    }
    if (filter.toMany)
        return ZTItem::variantToStrings(itemValue).contains(value);
    return !isBlank(itemValue) && itemValue.toString() == value;
}

void ZTViewPipeline::itemBrowserChanged(const QStringList &path)
{
    itemBrowserChanged(path.value(0), path.value(1));
}

void ZTViewPipeline::itemBrowserChanged(const QString &filterLabel, const QString &value)
{
    m_browserFilter = filterLabel;
    m_browserValue = value;
    m_subItemOids.clear();
    const ZTFilter *filter = m_document.attributeTables().filter(filterLabel);
    if (!filter || value.isEmpty())
        return;
    const ZTItemTable table(m_document);
    const ZTItem::KeyReader reader = table.reader(filter->key2.isEmpty() ? filter->key : filter->key2);
    const QStringList rows = rowsOfList();
    const ZTResolvedItems items = table.items(rows);
    for (qsizetype row = 0; row < rows.size(); ++row) {
        const ZTItem *item = items[row];
        if (item && valueMatchesFilter(reader.read(*item), *filter, value))
            m_subItemOids << rows[row];
    }
}

QVariantMap ZTViewPipeline::filterCountDictionary() const
{
    const ZTFilter *filter = m_document.attributeTables().filter(m_browserFilter);
    if (!filter)
        return {};
    const ZTLibraryCaches &caches = isMainListSelected() ? m_mainCaches : m_subCaches;
    const QString key = filter->key2.isEmpty() ? filter->key : filter->key2;
    QVariantList counts;
    if (filter->type == QLatin1String("boolean")) {
        counts << caches.count(key, ZTCacheKey::yes) << caches.count(key, ZTCacheKey::no);
    } else {
        if (!filter->prohibitNone)
            counts << caches.count(key, ZTCacheKey::emptyTag);
        for (const QString &value : caches.stringValues(key))
            counts << caches.count(key, value);
    }
    int max = 0;
    double sum = 0;
    for (const QVariant &c : std::as_const(counts)) {
        max = std::max(max, c.toInt());
        sum += c.toInt();
    }
    return {{QStringLiteral("counts"), counts},
            {QStringLiteral("max"), max},
            {QStringLiteral("average"), counts.isEmpty() ? 0.0 : sum / double(counts.size())}};
}

// ---- type-ahead ----

int ZTViewPipeline::stringsTypeAhead(const QStringList &strings, const QString &text)
{
    if (text.isEmpty() || strings.isEmpty())
        return -1;
    for (int i = 0; i < strings.size(); ++i)
        if (ZTTextOrder::compare(strings[i], text) >= 0)
            return i;
    return int(strings.size()) - 1;
}

int ZTViewPipeline::listTableTypeAhead(const QString &text) const
{
    const QList<ZTList *> &lists = m_document.itemLists();
    if (text.isEmpty() || lists.isEmpty())
        return -1;
    struct Row {
        QString name;
        int row;
    };
    QList<Row> rows{{tr("Library"), 0}};
    for (int i = 0; i < lists.size(); ++i)
        rows.append({lists[i]->name(), i + 1});
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row &a, const Row &b) { return ZTTextOrder::compare(a.name, b.name) < 0; });
    for (const Row &row : std::as_const(rows))
        if (ZTTextOrder::compare(row.name, text) >= 0)
            return row.row;
    return rows.last().row;
}

QString ZTViewPipeline::typeAheadObjectValue(const QString &column, const QString &oid) const
{
    const ZTItem *item = m_document.itemForOid(oid);
    if (!item)
        return {};
    const ZTAttributeTables &tables = m_document.attributeTables();
    const ZTCellReader *entry = tables.typeAheadEntry(column);
    const ZTCellReader reader = entry ? *entry : tables.tableViewEntry(column);
    if (column == QLatin1String("cover") || reader.type == QLatin1String("image"))
        return {};
    const QVariant value = item->valueForKey(reader.key.isEmpty() ? column : reader.key);
    if (reader.type == QLatin1String("boolean"))
        return value.toBool() ? yesLabel() : noLabel();
    if (reader.toMany)
        return ZTItem::variantToStrings(value).join(QLatin1Char(' '));
    return value.toString();
}

int ZTViewPipeline::itemTableTypeAhead(const QString &text) const
{
    if (text.isEmpty() || m_sortEntries.isEmpty())
        return -1;
    const ZTSortEntry &first = m_sortEntries.first();
    const QString column = m_document.attributeTables().columnForSortKey(first.columnIdentifier);
    const QStringList oids = displayedOids();
    if (oids.isEmpty())
        return -1;
    for (int row = 0; row < oids.size(); ++row) {
        const int r = ZTTextOrder::compare(typeAheadObjectValue(column, oids[row]), text);
        if (first.ascending ? r >= 0 : r <= 0)
            return row;
    }
    return int(oids.size()) - 1;
}

// ---- sorting ----

bool ZTViewPipeline::didClickTableColumn(const QString &column, int index, bool control,
                                         const QString &releasedColumn)
{
    if (column == QLatin1String("cover"))
        return false;
    if (!releasedColumn.isEmpty() && releasedColumn != column)
        return false;
    const QString sortKey = m_document.attributeTables().sortKeyForColumn(column);
    auto existing = std::find_if(m_sortEntries.begin(), m_sortEntries.end(),
                                 [&](const ZTSortEntry &e) { return e.columnIdentifier == sortKey; });
    if (control) {
        if (existing != m_sortEntries.end())
            existing->ascending = !existing->ascending;
        else
            m_sortEntries.append({sortKey, true, index});
    } else {
        const bool ascending = existing != m_sortEntries.end() ? !existing->ascending : true;
        m_sortEntries = {{sortKey, ascending, index}};
    }
    sortDisplayedOids();
    return true;
}

void ZTViewPipeline::setSortEntries(const QList<ZTSortEntry> &entries)
{
    m_sortEntries = entries;
    sortDisplayedOids();
}

void ZTViewPipeline::sortDisplayedOids()
{
    ZTList *list = nullptr;
    if (QStringList *array = arrayBehindView(&list)) {
        ZTItemSorting::sortOids(m_document, *array, m_sortEntries);
        return;
    }
    if (!list)
        return;
    // A list's order is stored with it, so sorting it is a change to the library.
    // Sorting an already sorted list changes nothing, and asks no save.
    QStringList oids = list->itemOids();
    ZTItemSorting::sortOids(m_document, oids, m_sortEntries);
    if (oids == list->itemOids())
        return;
    list->setItemOids(oids);
    m_document.updateChangeCount(ZTDocument::ChangeType::Done);
}

void ZTViewPipeline::clickListTableHeader()
{
    m_listSortFlag = ZTItemSorting::sortLists(m_document.mutableItemLists(), m_listSortFlag);
    m_document.updateChangeCount(ZTDocument::ChangeType::Done);
}

// ---- stepping ----

QString ZTViewPipeline::nextOid(const QString &oid) const
{
    const QStringList oids = displayedOids();
    const qsizetype at = oids.indexOf(oid);
    return at >= 0 && at + 1 < oids.size() ? oids[at + 1] : QString();
}

QString ZTViewPipeline::previousOid(const QString &oid) const
{
    const QStringList oids = displayedOids();
    const qsizetype at = oids.indexOf(oid);
    return at > 0 ? oids[at - 1] : QString();
}
