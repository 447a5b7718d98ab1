// The document's lists: adding, renaming, removing, ordering, and copies of
// items arriving from another library.
#include "library/ZTDocument.h"

#include "base/ZTStringExtras.h"
#include "lists/ZTList.h"
#include "lists/ZTListTexts.h"
#include "model/ZTItem.h"
#include "store/ZTManagedObjectContext.h"

ZTList *ZTDocument::listAtRow(int row) const
{
    if (row == 0)
        return m_mainList;
    if (row < 1 || row > m_itemLists.size())
        return nullptr;
    return m_itemLists.at(row - 1);
}

ZTList *ZTDocument::addList()
{
    ZTList *list = ZTList::createInManagedObjectContext(m_context.get(), int(m_itemLists.size()));
    if (!list)
        return nullptr;
    list->setName(ZTListTexts::untitledList());
    m_itemLists.append(list);
    updateChangeCount(ChangeType::Done);
    return list;
}

bool ZTDocument::updateListAtIndex(int row, const QString &name)
{
    if (row < 1 || !ZTText::containsNonWhitespace(name))
        return false;
    ZTList *list = listAtRow(row);
    if (!list || list->name() == name)
        return false;
    list->setName(name);
    updateChangeCount(ChangeType::Done);
    return true;
}

void ZTDocument::updateListOrderings()
{
    for (int i = 0; i < m_itemLists.size(); ++i)
        m_itemLists[i]->setOrder(i);
}

bool ZTDocument::removeListAtRow(int row, const Confirmation &confirm)
{
    if (row < 1 || row > m_itemLists.size())
        return false;
    if (confirm && !confirm(ZTListTexts::removeListTitle(), ZTListTexts::removeListMessage()))
        return false;
    ZTList *list = m_itemLists.takeAt(row - 1);
    m_context->deleteObject(list);
    updateListOrderings();
    updateChangeCount(ChangeType::Done);
    return true;
}

bool ZTDocument::removeSelectedItems(const QStringList &oids, int listRow, RemovalScope scope,
                                     const Confirmation &confirm)
{
    ZTList *list = listAtRow(listRow);
    if (oids.isEmpty() || !list)
        return false;
    if (listRow == 0 || scope == RemovalScope::Force) {
        const int count = int(oids.size());
        if (confirm && !confirm(ZTListTexts::removeItemsTitle(count), ZTListTexts::removeItemsMessage(count)))
            return false;
        removeItemsFromLibrary(oids);
    } else if (list->isSmartList()) {
        // A smart list's members follow its rules; only the library can lose them.
        return false;
    } else {
        bool changed = false;
        for (const QString &oid : oids)
            changed = list->removeOid(oid) || changed;
        if (!changed)
            return false;
        list->updateListData();
    }
    updateChangeCount(ChangeType::Done);
    return true;
}

ZTItem *ZTDocument::addItemCopy(const ZTItem &source, ZTList *targetList)
{
    if (!m_context || source.mediaKind() != m_kind)
        return nullptr;
    ZTItem *item = source.clone(m_context.get());
    if (!item)
        return nullptr;
    m_context->setOidObject(itemEntityName(), item->oid(), item);
    if (m_mainList) {
        m_mainList->appendOid(item->oid());
        m_mainList->updateListData();
    }
    insertOid(item->oid());
    if (targetList && targetList != m_mainList && !targetList->containsOid(item->oid()))
        targetList->addItem(item->oid());
    updateSmartListsWithItem(item);
    return item;
}

void ZTDocument::writeListData()
{
    if (m_mainList)
        m_mainList->writeListData();
    for (ZTList *list : std::as_const(m_itemLists))
        list->writeListData();
}

QString ZTDocument::itemDescriptionStringForCount(int count) const
{
    static const char *const singular[] = {"1 book", "1 album", "1 movie", "1 comic"};
    static const char *const plural[] = {"%1 books", "%1 albums", "%1 movies", "%1 comics"};
    const int kind = int(m_kind);
    if (count == 1)
        return QCoreApplication::translate("Localizable", singular[kind]);
    return QCoreApplication::translate("Localizable", plural[kind]).arg(count);
}

QString ZTDocument::mediaDragType() const
{
    return QStringLiteral("ZT_DRAG_%1_TYPE").arg(itemType().toUpper());
}

QList<ZTItem *> ZTDocument::itemsOfKind() const
{
    QList<ZTItem *> items;
    if (!m_context)
        return items;
    const auto &table = m_context->oidObjectDictionary().value(itemEntityName());
    items.reserve(table.size());
    for (ZTManagedObject *row : table)
        items << static_cast<ZTItem *>(row);
    return items;
}
