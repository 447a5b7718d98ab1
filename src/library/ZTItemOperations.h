#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>

class ZTItem;
class ZTList;
class ZTViewPipeline;

// What a user does to the selected items of a library: duplicate, lock, rate,
// remove, and gather duplicates or unlisted items into new lists. The
// selection comes in as oids (or rows of the displayed oids); a question to
// the user is a callback that answers yes or no.
class ZTItemOperations {
public:
    // Title and message of the alert; true when the user confirms.
    using Confirmation = std::function<bool(const QString &title, const QString &message)>;
    enum class Force { No, Yes };
    enum class Removal { None, FromList, FromLibrary };

    explicit ZTItemOperations(ZTViewPipeline &pipeline);

    // Copies of the rows (indexes into the displayed oids), each placed right
    // behind its source in the lists it is seen in. Returns the copies.
    QList<ZTItem *> duplicateItems(const QList<int> &rows);

    void setItemsToBeLocked(const QStringList &oids, bool locked);
    void lockItems(const QStringList &oids) { setItemsToBeLocked(oids, true); }
    void unlockItems(const QStringList &oids) { setItemsToBeLocked(oids, false); }
    // Ratings outside 0 to 5 change nothing. Returns how many items changed.
    int setRatingOfItems(const QStringList &oids, const QVariant &rating);

    // The delete key on an item table: a smart list's rows stay unless forced;
    // an ordinary list loses the rows without asking; the main list (or force)
    // asks and removes the items from the library.
    Removal removeSelectedRowsInTableView(const QStringList &oids, Force force, const Confirmation &confirm);
    // The delete key on the list table (rows 1 and up). Returns whether the list went.
    bool removeSelectedList(int row, const Confirmation &confirm);
    void removeSelectedItems(const QStringList &oids, Removal removal);

    ZTList *findDuplicates();
    ZTList *findUnlisted();

    // Refreshing after an operation over several items.
    enum class SubCaches { Update, Keep };
    void itemsChanged(SubCaches sub);

    static QString removeItemTitle(int count);
    static QString removeItemMessage(int count);

private:
    ZTList *appendNewList(const QString &name, const QStringList &oids);

    ZTViewPipeline &m_pipeline;
};
