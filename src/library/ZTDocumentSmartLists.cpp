// How item changes and the passing of days reach the smart lists of a library.
#include "library/ZTDocument.h"

#include "lists/ZTListClock.h"
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
    const QList<ZTSmartList *> lists = smartLists();
    // One item against each list, never a rebuild; each changed list is
    // written once after all items are judged.
    QList<ZTSmartList *> changed;
    for (const ZTItem *item : items) {
        if (!item)
            continue;
        const QString oid = item->oid();
        for (ZTSmartList *list : lists) {
            const bool belongs = list->itemBelongsOnList(*item);
            const bool present = list->containsOid(oid);
            if (belongs == present)
                continue;
            // Newcomers go to the front, not to a sorted place.
            if (belongs)
                list->insertOid(0, oid);
            else
                list->removeOid(oid);
            if (!changed.contains(list))
                changed << list;
        }
    }
    for (ZTSmartList *list : std::as_const(changed))
        list->updateListData();
}

void ZTDocument::updateExpiredSmartLists()
{
    const QDateTime now = ZTListClock::now();
    const QDate today = now.date();
    QList<ZTItem *> items;
    bool itemsRead = false;
    for (ZTSmartList *list : smartLists()) {
        const QDateTime expiry = list->expirationDate();
        // An expiry of today is still good: only an earlier day has passed.
        if (!expiry.isValid() || expiry.toLocalTime().date() >= today)
            continue;
        if (!itemsRead) {
            items = itemsOfKind();
            itemsRead = true;
        }
        list->handleItems(items);
        list->setExpirationDate(now.addDays(1));
    }
}
