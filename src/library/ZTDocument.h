#pragma once

#include "model/ZTMediaKind.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <memory>

class ZTItem;
class ZTList;
class ZTSmartList;
class ZTManagedObject;
class ZTManagedObjectContext;
class ZTAttributeTables;

// One open library: its store session with every row in memory, its lists and
// the bookkeeping of what changed. Each kind (ZTBookDocument …) answers the
// kind's tables and rules.
class ZTDocument {
public:
    virtual ~ZTDocument();

    static std::unique_ptr<ZTDocument> create(ZTMediaKind kind);
    // The kind a package path stands for, by its extension.
    static bool kindForPath(const QString &path, ZTMediaKind *kind);
    // Makes a new, empty library package at `path`.
    static bool createPackage(const QString &path, ZTMediaKind kind, QString *error = nullptr);
    // The bytes of the template store every new library starts from.
    static QByteArray templateStoreData();
    // Writes a template store (main list, every locale and currency row) to `path`.
    static bool writeTemplateStore(const QString &path, QString *error = nullptr);

    // Opens the package: store up, every row loaded, repairs committed.
    bool readFromURL(const QString &path, QString *error = nullptr);
    // Runs when the library's window (or a command) has loaded it: posts "ZTDocumentOpening".
    void documentDidOpen();
    void close();

    ZTMediaKind mediaKind() const { return m_kind; }
    QString itemType() const { return ZTMediaKinds::itemType(m_kind); }
    QString itemEntityName() const { return ZTMediaKinds::itemEntityName(m_kind); }
    const ZTAttributeTables &attributeTables() const;
    QString documentPath() const { return m_path; }
    QString displayName() const;
    // Identifies this open library within the session only.
    QString oid() const { return m_oid; }
    ZTManagedObjectContext *managedObjectContext() const { return m_context.get(); }
    // What could not be read while opening (missing picture folder, unreadable rows).
    QStringList openProblems() const { return m_openProblems; }

    ZTList *mainList() const { return m_mainList; }
    const QList<ZTList *> &itemLists() const { return m_itemLists; }
    QList<ZTList *> &mutableItemLists() { return m_itemLists; }

    ZTItem *itemForOid(const QString &oid) const;
    QList<ZTItem *> itemsForOids(const QStringList &oids) const;
    QList<ZTItem *> allItems() const;

    // Saving.
    void prune();
    bool saveDocument(QString *error = nullptr);
    QVariantMap oidChangeDictionary() const;
    void insertOid(const QString &oid);
    void updateOid(const QString &oid);
    void deleteOid(const QString &oid);
    void deleteOids(const QStringList &oids);

    enum class ChangeType { Done, Cleared };
    void updateChangeCount(ChangeType change);
    bool isDocumentEdited() const { return m_changeCount > 0; }

    qint64 nodeID() const;
    QString bookmarkData() const { return m_path; }

    // The one door for new items: the row, the oid table, the front of the main
    // list and the change record. Callers of a batch then refresh.
    ZTItem *addItemFromDictionary(const QVariantMap &dictionary);
    // Removes items from the library and from every list.
    void removeItemsFromLibrary(const QStringList &oids);

    // Smart lists: re-evaluate membership after items changed or arrived.
    QList<ZTSmartList *> smartLists() const;
    void updateSmartListsWithItem(ZTItem *item);
    void updateSmartListsWithItems(const QList<ZTItem *> &items);

    // Lists (src/lists/ZTDocumentLists.cpp, ZTDocumentSmartLists.cpp). Rows are
    // those of the list table: row 0 is the main list, row n entry n-1 of itemLists.
    ZTList *listAtRow(int row) const;
    // A new ordinary list called "untitled list", appended to itemLists.
    ZTList *addList();
    // Renames the list at the row; refuses row 0, a row out of range, a blank
    // name and the present name. Returns whether the name changed.
    bool updateListAtIndex(int row, const QString &name);
    void updateListOrderings();
    // Asks `confirm(title, message)` and removes the list at the row (not the
    // main list); its items stay in the library.
    // No confirmation function means the user has already agreed.
    using Confirmation = std::function<bool(const QString &title, const QString &message)>;
    bool removeListAtRow(int row, const Confirmation &confirm = {});
    // Removes the oids as the list at `listRow` shows them: from the library
    // (row 0, or Force, after confirmation), from an ordinary list only, or not
    // at all from a smart list.
    enum class RemovalScope { AsShown, Force };
    bool removeSelectedItems(const QStringList &oids, int listRow, RemovalScope scope,
                             const Confirmation &confirm = {});
    // Copies an item of another library of this kind into this one (cover,
    // loan and people come along), through the same bookkeeping as a new item.
    ZTItem *addItemCopy(const ZTItem &source, ZTList *targetList);
    // "1 book", "12 books" …: a list's tool tip.
    QString itemDescriptionStringForCount(int count) const;
    // The drag contents key of this kind's items.
    QString mediaDragType() const;
    // Every item row of the kind, in the store's table order.
    QList<ZTItem *> itemsOfKind() const;
    // Writes the oids of every list whose bytes are still pending; saving runs it.
    void writeListData();
    // Re-evaluates the smart lists whose day-bound rules have expired.
    void updateExpiredSmartLists();

    // The settings key of the kind's lookup sites ("Locale Books Array" …).
    virtual QString localeArrayKey() const = 0;
    // (entity, item key of its oid array) pairs whose unused rows a save removes.
    virtual QList<QPair<QString, QString>> prunePairs() const;

protected:
    explicit ZTDocument(ZTMediaKind kind);

private:
    void loadInitialObjects();
    void fixDatabase();

    ZTMediaKind m_kind;
    QString m_path;
    QString m_oid;
    std::unique_ptr<ZTManagedObjectContext> m_context;
    ZTList *m_mainList = nullptr;
    QList<ZTList *> m_itemLists;
    QSet<QString> m_oidsInserted, m_oidsUpdated, m_oidsDeleted;
    int m_changeCount = 0;
    QStringList m_openProblems;
};

namespace ZTDocumentNotification {
inline const QString opening = QStringLiteral("ZTDocumentOpening");
inline const QString closing = QStringLiteral("ZTDocumentClosing");
inline const QString savedLibrary = QStringLiteral("ZFSavedLibraryNotification");
} // namespace ZTDocumentNotification
