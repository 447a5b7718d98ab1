#include "library/lists/ZTListDrop.h"

#include "library/ZTDocument.h"
#include "lists/ZTList.h"
#include "model/ZTItem.h"

#include <QUrl>

namespace {
bool isUrl(const QString &text)
{
    const QUrl url(text.trimmed(), QUrl::StrictMode);
    return url.isValid() && !url.scheme().isEmpty();
}

bool readRow(const QVariant &value, int *row)
{
    bool ok = false;
    *row = value.toInt(&ok);
    return ok;
}
} // namespace

bool ZTListDrop::validateDrop(const ZTDragInfo &drag, ZTDropTarget target, int row,
                              ZTDropOperation *operation) const
{
    using Source = ZTDragInfo::Source;
    const bool fromHere = drag.document == &m_document;
    const int rows = int(m_document.itemLists().size()) + 1;
    bool accepted = false;
    ZTDropOperation op = operation ? *operation : ZTDropOperation::On;

    if (target == ZTDropTarget::ItemTable) {
        // Only a reorder of the rows of the list in view; never on a search result.
        accepted = !m_state.usingSearch && drag.source == Source::ItemTable && fromHere &&
                   m_state.mainTabShowing && row >= 0;
        op = ZTDropOperation::Above;
    } else {
        switch (drag.source) {
        case Source::OtherApplication:
            accepted = isUrl(drag.text) && m_state.shouldAcceptDraggedInURL &&
                       m_state.shouldAcceptDraggedInURL(drag.text.trimmed());
            op = ZTDropOperation::WholeTable;
            break;
        case Source::Browser:
            if (!fromHere || row <= 0)
                break;
            if (op == ZTDropOperation::Above)
                accepted = row <= rows;
            else if (op == ZTDropOperation::On)
                accepted = row < rows && !m_document.listAtRow(row)->isSmartList();
            break;
        case Source::ListTable: {
            int sourceRow = 0;
            accepted = fromHere && op == ZTDropOperation::Above && row >= 1 && row <= rows &&
                       readRow(drag.rootArray, &sourceRow) && ZTDragInfo::canDragListRow(sourceRow) &&
                       sourceRow < rows;
            break;
        }
        case Source::ItemTable:
            if (op != ZTDropOperation::On || row < 0 || row >= rows)
                break;
            if (!fromHere && drag.contentsKey != m_document.mediaDragType())
                break;
            accepted = row == 0 || m_document.listAtRow(row)->allowsItemDrop();
            break;
        }
    }
    // While items are being added in the sheet the lists hold still.
    if (m_state.addItemsSheetOpen)
        accepted = false;
    if (accepted && operation)
        *operation = op;
    return accepted;
}

bool ZTListDrop::acceptDrop(const ZTDragInfo &drag, ZTDropTarget target, int row, ZTDropOperation operation)
{
    ZTDropOperation op = operation;
    if (!validateDrop(drag, target, row, &op))
        return false;
    using Source = ZTDragInfo::Source;
    if (target == ZTDropTarget::ItemTable)
        return reorderRows(ZTItem::variantToStrings(drag.rootArray), row);
    switch (drag.source) {
    case Source::OtherApplication:
        return m_state.actOnDraggedInURL && m_state.actOnDraggedInURL(drag.text.trimmed());
    case Source::Browser:
        return dropBrowserValue(drag, row, op);
    case Source::ListTable: {
        int sourceRow = 0;
        return readRow(drag.rootArray, &sourceRow) && reorderLists(sourceRow, row);
    }
    case Source::ItemTable:
        return dropItems(drag, row);
    }
    return false;
}

bool ZTListDrop::reorderRows(const QStringList &oids, int row)
{
    ZTList *list = m_document.listAtRow(m_state.selectedListRow);
    if (!list || oids.isEmpty())
        return false;
    QStringList order = list->itemOids();
    row = qBound(0, row, int(order.size()));
    int lowest = int(order.size());
    for (const QString &oid : oids) {
        const int index = int(order.indexOf(oid));
        if (index >= 0)
            lowest = qMin(lowest, index);
    }
    // Moving up, the last dragged row goes first so that the rows keep their order.
    QStringList walk = oids;
    if (row < lowest)
        std::reverse(walk.begin(), walk.end());
    bool moved = false;
    for (const QString &oid : std::as_const(walk)) {
        const int index = int(order.indexOf(oid));
        if (index < 0)
            continue;
        if (index < row) {
            order.insert(row, oid);
            order.removeAt(index);
        } else {
            order.removeAt(index);
            order.insert(row, oid);
        }
        moved = true;
    }
    if (!moved)
        return false;
    list->setItemOids(order);
    m_document.updateChangeCount(ZTDocument::ChangeType::Done);
    return true;
}

bool ZTListDrop::reorderLists(int sourceRow, int targetRow)
{
    // Above its own row or the next one, a list stays where it is.
    if (sourceRow == targetRow || sourceRow + 1 == targetRow)
        return true;
    QList<ZTList *> &lists = m_document.mutableItemLists();
    const int from = sourceRow - 1;
    const int to = targetRow - 1;
    ZTList *moved = lists.at(from);
    if (to > from) {
        lists.insert(to, moved);
        lists.removeAt(from);
    } else {
        lists.removeAt(from);
        lists.insert(to, moved);
    }
    m_document.updateListOrderings();
    m_document.updateChangeCount(ZTDocument::ChangeType::Done);
    return true;
}

bool ZTListDrop::dropItems(const ZTDragInfo &drag, int row)
{
    const QStringList oids = ZTItem::variantToStrings(drag.rootArray);
    ZTList *target = row > 0 ? m_document.listAtRow(row) : nullptr;
    if (drag.document == &m_document) {
        // Every item of this library is already on the main list.
        if (!target)
            return true;
        bool added = false;
        for (const QString &oid : oids) {
            if (target->containsOid(oid) || !m_document.itemForOid(oid))
                continue;
            target->appendOid(oid);
            added = true;
        }
        target->updateListData();
        if (added)
            m_document.updateChangeCount(ZTDocument::ChangeType::Done);
        return true;
    }
    // Between libraries a drag always copies; the source stays as it was.
    bool copied = false;
    for (const QString &oid : oids) {
        const ZTItem *source = drag.document ? drag.document->itemForOid(oid) : nullptr;
        if (source && m_document.addItemCopy(*source, target))
            copied = true;
    }
    if (copied)
        m_document.updateChangeCount(ZTDocument::ChangeType::Done);
    return copied;
}

bool ZTListDrop::dropBrowserValue(const ZTDragInfo &drag, int row, ZTDropOperation operation)
{
    const QStringList oids = m_state.subItemOids;
    auto fill = [&](ZTList *list) {
        // Walked backwards onto the front, so the new oids keep the browser's order.
        for (auto it = oids.crbegin(); it != oids.crend(); ++it)
            if (!list->containsOid(*it))
                list->insertOid(0, *it);
        list->updateListData();
    };
    if (operation == ZTDropOperation::Above) {
        QList<ZTList *> &lists = m_document.mutableItemLists();
        ZTList *list =
            ZTList::createInManagedObjectContext(m_document.managedObjectContext(), int(lists.size()));
        if (!list)
            return false;
        list->setName(drag.rootArray.toMap().value(QStringLiteral("title")).toString());
        fill(list);
        lists.insert(qBound(0, row - 1, int(lists.size())), list);
        m_document.updateListOrderings();
    } else {
        fill(m_document.listAtRow(row));
    }
    m_document.updateChangeCount(ZTDocument::ChangeType::Done);
    return true;
}
