#include "library/ZTItemOperations.h"

#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"
#include "library/ZTItemSorting.h"
#include "library/ZTViewPipeline.h"
#include "lists/ZTList.h"
#include "model/ZTItem.h"
#include "store/ZTManagedObjectContext.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QSet>

namespace {
QString tr(const char *text)
{
    return QCoreApplication::translate("Localizable", text);
}

void insertBehind(QStringList &oids, const QString &source, const QString &copy)
{
    const qsizetype at = oids.indexOf(source);
    if (at >= 0)
        oids.insert(at + 1, copy);
}

bool isBlankValue(const QVariant &v)
{
    return !v.isValid() || v.isNull() || v.toString().trimmed().isEmpty();
}
} // namespace

ZTItemOperations::ZTItemOperations(ZTViewPipeline &pipeline) : m_pipeline(pipeline) {}

QString ZTItemOperations::removeItemTitle(int count)
{
    return count == 1 ? tr("Remove Item") : tr("Remove Items");
}

QString ZTItemOperations::removeItemMessage(int count)
{
    return count == 1 ? tr("Are you sure you want to remove the selected item from your library?")
                      : tr("Are you sure you want to remove the selected items from your library?");
}

void ZTItemOperations::itemsChanged(SubCaches sub)
{
    m_pipeline.updateMainCaches();
    if (sub == SubCaches::Update)
        m_pipeline.updateSubCaches();
    if (!m_pipeline.browserValue().isEmpty())
        m_pipeline.itemBrowserChanged(m_pipeline.browserFilterLabel(), m_pipeline.browserValue());
    m_pipeline.updateItemStatistics();
    m_pipeline.document().updateChangeCount(ZTDocument::ChangeType::Done);
}

QList<ZTItem *> ZTItemOperations::duplicateItems(const QList<int> &rows)
{
    ZTDocument &document = m_pipeline.document();
    const QStringList displayed = m_pipeline.displayedOids();
    QList<int> ascending = rows;
    std::sort(ascending.begin(), ascending.end());
    ascending.erase(std::unique(ascending.begin(), ascending.end()), ascending.end());
    // Rows are taken in ascending order but worked last first.
    QStringList work;
    for (int row : std::as_const(ascending))
        if (row >= 0 && row < displayed.size())
            work.prepend(displayed[row]);

    ZTList *main = document.mainList();
    ZTList *viewList = nullptr;
    QStringList *viewArray = m_pipeline.arrayBehindView(&viewList);
    if (viewList == main)
        viewList = nullptr;
    QStringList mainOids = main ? main->itemOids() : QStringList();
    QStringList listOids = viewList ? viewList->itemOids() : QStringList();
    QList<ZTItem *> copies;
    for (const QString &oid : std::as_const(work)) {
        ZTItem *source = document.itemForOid(oid);
        if (!source)
            continue;
        ZTItem *copy = source->clone(document.managedObjectContext());
        if (!copy)
            continue;
        document.managedObjectContext()->setOidObject(document.itemEntityName(), copy->oid(), copy);
        insertBehind(mainOids, oid, copy->oid());
        if (viewArray)
            insertBehind(*viewArray, oid, copy->oid());
        else if (viewList)
            insertBehind(listOids, oid, copy->oid());
        copies << copy;
    }
    if (copies.isEmpty())
        return copies;
    if (main)
        main->setItemOids(mainOids);
    if (viewList)
        viewList->setItemOids(listOids);
    for (ZTItem *copy : std::as_const(copies)) {
        document.updateSmartListsWithItem(copy);
        document.insertOid(copy->oid());
    }
    itemsChanged(SubCaches::Update);
    return copies;
}

void ZTItemOperations::setItemsToBeLocked(const QStringList &oids, bool locked)
{
    ZTDocument &document = m_pipeline.document();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    for (ZTItem *item : document.itemsForOids(oids)) {
        item->setValueForKey(locked, QStringLiteral("lockedFlag"));
        item->setPrimitiveValueForKey(now, QStringLiteral("dateModified"));
        document.updateOid(item->oid());
    }
    m_pipeline.itemsDidChange(oids);
    itemsChanged(SubCaches::Update);
}

int ZTItemOperations::setRatingOfItems(const QStringList &oids, const QVariant &rating)
{
    bool ok = false;
    const int value = rating.toInt(&ok);
    if (!ok || value < 0 || value > 5)
        return 0;
    ZTDocument &document = m_pipeline.document();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    int changed = 0;
    for (ZTItem *item : document.itemsForOids(oids)) {
        if (item->rating() == value)
            continue;
        item->setValueForKey(value, QStringLiteral("rating"));
        item->setPrimitiveValueForKey(now, QStringLiteral("dateModified"));
        document.updateOid(item->oid());
        ++changed;
    }
    m_pipeline.itemsDidChange(oids);
    itemsChanged(SubCaches::Update);
    return changed;
}

ZTItemOperations::Removal ZTItemOperations::removeSelectedRowsInTableView(const QStringList &oids,
                                                                          Force force,
                                                                          const Confirmation &confirm)
{
    if (oids.isEmpty())
        return Removal::None;
    ZTList *list = m_pipeline.selectedList();
    const bool onMain = m_pipeline.isMainListSelected();
    if (!onMain && list && list->isSmartList() && force == Force::No)
        return Removal::None;
    if (onMain || force == Force::Yes) {
        const int count = int(oids.size());
        if (confirm && !confirm(removeItemTitle(count), removeItemMessage(count)))
            return Removal::None;
        removeSelectedItems(oids, Removal::FromLibrary);
        return Removal::FromLibrary;
    }
    removeSelectedItems(oids, Removal::FromList);
    return Removal::FromList;
}

void ZTItemOperations::removeSelectedItems(const QStringList &oids, Removal removal)
{
    if (removal == Removal::None || oids.isEmpty())
        return;
    ZTDocument &document = m_pipeline.document();
    m_pipeline.itemsDidChange(oids);
    const QSet<QString> gone(oids.begin(), oids.end());
    auto strip = [&gone](QStringList &array) {
        array.removeIf([&gone](const QString &oid) { return gone.contains(oid); });
    };
    if (removal == Removal::FromLibrary) {
        if (m_pipeline.usingSearch())
            strip(m_pipeline.mutableSearchedItemOids());
        // Covers, loans and every list go with the rows.
        document.removeItemsFromLibrary(oids);
    } else if (ZTList *list = m_pipeline.selectedList()) {
        QStringList kept = list->itemOids();
        strip(kept);
        list->setItemOids(kept);
        if (m_pipeline.usingSearch())
            strip(m_pipeline.mutableSearchedItemOids());
    }
    strip(m_pipeline.mutableSubItemOids());
    m_pipeline.updateMainCaches();
    m_pipeline.updateSubCaches();
    m_pipeline.updateItemStatistics();
    document.updateChangeCount(ZTDocument::ChangeType::Done);
}

bool ZTItemOperations::removeSelectedList(int row, const Confirmation &confirm)
{
    ZTDocument &document = m_pipeline.document();
    QList<ZTList *> &lists = document.mutableItemLists();
    if (row < 1 || row > lists.size())
        return false;
    if (confirm && !confirm(tr("Remove List"),
                            tr("Are you sure you want to remove the selected list from your library?")))
        return false;
    ZTList *list = lists.takeAt(row - 1);
    document.managedObjectContext()->deleteObject(list);
    ZTItemSorting::updateListOrderings(lists);
    m_pipeline.itemBrowserChanged(QString(), QString());
    m_pipeline.selectListRow(0);
    m_pipeline.updateMainCaches();
    document.updateChangeCount(ZTDocument::ChangeType::Done);
    return true;
}

ZTList *ZTItemOperations::appendNewList(const QString &name, const QStringList &oids)
{
    ZTDocument &document = m_pipeline.document();
    QList<ZTList *> &lists = document.mutableItemLists();
    ZTList *list = ZTList::createInManagedObjectContext(document.managedObjectContext(), int(lists.size()));
    if (!list)
        return nullptr;
    list->setName(name);
    list->setItemOids(oids);
    lists.append(list);
    m_pipeline.selectListRow(int(lists.size()));
    document.updateChangeCount(ZTDocument::ChangeType::Done);
    return list;
}

ZTList *ZTItemOperations::findDuplicates()
{
    ZTDocument &document = m_pipeline.document();
    const QStringList keys = document.attributeTables().duplicateKeys();
    if (keys.isEmpty() || !document.mainList())
        return nullptr;
    QSet<QString> found;
    for (const QString &key : keys) {
        QStringList sorted = document.mainList()->itemOids();
        ZTItemSorting::sortOids(document, sorted, {{key, true, -1}});
        QVariant previous;
        QString previousOid;
        for (const QString &oid : std::as_const(sorted)) {
            const ZTItem *item = document.itemForOid(oid);
            const QVariant value = item ? item->valueForKey(key) : QVariant();
            if (!isBlankValue(value) && !previousOid.isEmpty() && value == previous) {
                found.insert(previousOid);
                found.insert(oid);
            }
            previous = value;
            previousOid = oid;
        }
    }
    // The set is shown in the library's order.
    QStringList result;
    for (const QString &oid : document.mainList()->itemOids())
        if (found.contains(oid))
            result << oid;
    return appendNewList(tr("Duplicates"), result);
}

ZTList *ZTItemOperations::findUnlisted()
{
    ZTDocument &document = m_pipeline.document();
    if (!document.mainList())
        return nullptr;
    QSet<QString> listed;
    for (ZTList *list : document.itemLists())
        for (const QString &oid : list->itemOids())
            listed.insert(oid);
    QStringList result;
    for (const QString &oid : document.mainList()->itemOids())
        if (!listed.contains(oid))
            result << oid;
    return appendNewList(tr("Unlisted"), result);
}
