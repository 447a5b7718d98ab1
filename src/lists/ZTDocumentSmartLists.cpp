// How item changes reach the smart lists of a library.
#include "library/ZTDocument.h"

#include "lists/ZTSmartList.h"
#include "model/ZTItem.h"

QList<ZTSmartList *> ZTDocument::smartLists() const
{
    QList<ZTSmartList *> result;
    for (ZTList *list : itemLists())
        if (list->isSmartList())
            result << static_cast<ZTSmartList *>(list);
    return result;
}

void ZTDocument::updateSmartListsWithItem(ZTItem *item)
{
    if (item)
        updateSmartListsWithItems({item});
}

void ZTDocument::updateSmartListsWithItems(const QList<ZTItem *> &items)
{
    if (items.isEmpty())
        return;
    for (ZTSmartList *list : smartLists())
        list->handleItems(items, *this);
}
