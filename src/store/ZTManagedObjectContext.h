#pragma once

#include "store/ZTManagedObject.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>

#include <memory>
#include <vector>

class ZTObjectStore;
class ZTObjectModel;

// A library's working session on its store: every row in memory, the change
// sets since the last commit, the oid table, and the picture files staged for
// the next commit.
class ZTManagedObjectContext {
public:
    explicit ZTManagedObjectContext(const ZTObjectModel &model);
    ~ZTManagedObjectContext();

    // Opens (creating tables that are missing) the store at `documentPath`/data.sql
    // and reads every row into memory. Returns false with a message when the file
    // cannot be opened as a store.
    bool open(const QString &documentPath, QString *error = nullptr);
    bool isOpen() const;
    // A session without a file, for items that never reach a library (lookups, imports in preview).
    void openInMemory();

    QString uniqueId() const { return m_uniqueId; }
    QString storeIdentifier() const { return m_storeIdentifier; }
    QString documentPath() const { return m_documentPath; }
    QString dataFilePath() const;
    QString imageFolderPath() const;
    QString stagingFolderPath() const;
    static QString stagingRootPath(); // the temporary "ZettaryImages" folder

    // Rows.
    ZTManagedObject *insertNewObject(const QString &entityName);
    void deleteObject(ZTManagedObject *object);
    // All rows of the entity (and its sub-entities) that are not deleted,
    // optionally where `key` equals `value` (an attribute, or a to-one relationship
    // compared with a ZTManagedObject* held in the variant), optionally sorted.
    QList<ZTManagedObject *> fetch(const QString &entityName, const QString &key = {},
                                   const QVariant &value = {}, const QString &sortKey = {},
                                   bool ascending = true) const;
    QList<ZTManagedObject *> fetchRelated(const QString &entityName, const QString &relationship,
                                          const ZTManagedObject *target) const;
    // The first row fetch(entityName, key, text) would give, remembered per
    // text: the currency and country rows are asked for by code for every
    // item an import or a lookup makes. A remembered row is given again only
    // while it is alive and still holds that text.
    ZTManagedObject *firstObjectWithText(const QString &entityName, const QString &key,
                                         const QString &text) const;
    ZTManagedObject *objectWithURI(const QString &uri) const;
    ZTManagedObject *objectWithPrimaryKey(const QString &entityName, qint64 primaryKey) const;

    QList<ZTManagedObject *> insertedObjects() const;
    QList<ZTManagedObject *> updatedObjects() const;
    QList<ZTManagedObject *> deletedObjects() const;
    bool hasChanges() const;

    // One atomic commit of rows, then the picture files. On failure nothing on
    // disk moves and the change sets stay.
    bool save(QString *error = nullptr);

    // The oid table: entity name to (oid to row). Changes go through the calls
    // below or mutableOidTable(), which keep the resolved lists honest.
    const QHash<QString, QHash<QString, ZTManagedObject *>> &oidObjectDictionary() const
    {
        return m_oidTable;
    }
    QHash<QString, ZTManagedObject *> &mutableOidTable(const QString &entityName);
    ZTManagedObject *objectForEntity(const QString &entityName, const QString &oid) const;
    QList<ZTManagedObject *> objectsForEntity(const QString &entityName, const QStringList &oids) const;
    void updateOidObjectDictionaryWithObjects(const QList<ZTManagedObject *> &objects,
                                              const QString &entityName);
    void setOidObject(const QString &entityName, const QString &oid, ZTManagedObject *object);
    void removeOidObject(const QString &entityName, const QString &oid);

    // The rows of `oids` in their order, nullptr where an oid has none. Passes
    // over a large list (the caches, sorting, statistics, the browser) ask for
    // the same list again and again, so the answer is kept for that very list
    // (the same shared array) until the entity's oid table changes. Holding a
    // copy of the list means any change to the caller's list detaches it, so a
    // changed list is never mistaken for the one resolved.
    using ResolvedObjects = std::shared_ptr<const std::vector<ZTManagedObject *>>;
    ResolvedObjects resolvedObjects(const QString &entityName, const QStringList &oids) const;
    // Records rows already known for a list made from resolved rows (a
    // search result picked out of a resolved list), so it is never looked up.
    void rememberResolved(const QString &entityName, const QStringList &oids,
                          std::vector<ZTManagedObject *> objects) const;

    // Shared rows by name (or by person and role), first row first; built on
    // first use from the oid table and kept in step by the callers that insert.
    QHash<QString, ZTManagedObject *> &nameIndex(const QString &entityName);
    static QString roleIndexKey(const QString &personName, const QString &role);

    // Whether shared-name references may have been dropped since the last prune:
    // an item's name array was replaced or an item was deleted.
    void noteSharedNamesChanged() { m_sharedNamesChanged = true; }
    bool takeSharedNamesChanged()
    {
        const bool changed = m_sharedNamesChanged;
        m_sharedNamesChanged = false;
        return changed;
    }

    // Pictures.
    void insertImageWithFilename(const QString &filename, const QByteArray &data);
    void insertImageWithFilename(const QString &filename, const QString &originalFilename,
                                 const ZTManagedObjectContext *source, bool isNew);
    void deleteImageWithFilename(const QString &filename);
    const QSet<QString> &imagesDeleted() const { return m_imagesDeleted; }

    const ZTObjectModel &model() const { return m_model; }

private:
    friend class ZTManagedObject;
    friend class ZTObjectStore;
    void noteUpdated(ZTManagedObject *object);
    ZTManagedObject *create(const ZTEntity *entity);
    void registerObject(ZTManagedObject *object);
    void forgetDeleted();

    const ZTObjectModel &m_model;
    std::unique_ptr<ZTObjectStore> m_store;
    QString m_uniqueId;
    QString m_storeIdentifier;
    QString m_documentPath;
    bool m_inMemory = false;
    std::vector<std::unique_ptr<ZTManagedObject>> m_owned;
    QHash<const ZTEntity *, QList<ZTManagedObject *>> m_byEntity;
    QList<ZTManagedObject *> m_inserted;
    QList<ZTManagedObject *> m_updated;
    QList<ZTManagedObject *> m_deleted;
    QHash<QString, QHash<QString, ZTManagedObject *>> m_oidTable;
    void noteOidTableChanged(const QString &entityName) { ++m_oidTableGenerations[entityName]; }
    QHash<QString, quint64> m_oidTableGenerations;
    struct Resolved {
        QString entityName;
        QStringList oids;
        quint64 generation = 0;
        ResolvedObjects objects;
    };
    mutable std::vector<Resolved> m_resolved; // most recent first
    mutable QHash<QString, ZTManagedObject *> m_firstByText;
    static constexpr qsizetype s_resolvedMinimum = 64;
    void keepResolved(Resolved entry) const;
    QSet<QString> m_imagesDeleted;
    QHash<QString, QHash<QString, ZTManagedObject *>> m_nameIndex;
    quint64 m_nextTemporary = 1;
    bool m_sharedNamesChanged = false;
};
