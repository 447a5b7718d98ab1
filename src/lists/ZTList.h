#pragma once

#include "store/ZTManagedObject.h"

#include <QSet>
#include <QStringList>
#include <QVariantMap>

// An ordered set of item oids. The main list (libraryFlag 1) holds every item.
class ZTList : public ZTManagedObject {
public:
    static ZTList *createInManagedObjectContext(ZTManagedObjectContext *context, int order);

    QString name() const;
    void setName(const QString &name);
    int order() const;
    void setOrder(int order);
    bool isLibrary() const;
    void setLibraryFlag(bool flag);
    // Made afresh at every creation and load: it names the list within a session only.
    QString listOid() const { return m_oid; }

    const QStringList &itemOids() const { return m_itemOids; }
    void setItemOids(const QStringList &oids); // then updateListData
    void addItem(const QString &itemOid);      // at the front; callers test for duplicates
    int count() const { return int(m_itemOids.size()); }
    bool containsOid(const QString &oid) const;
    // Rewrites the stored oids and tells observers ("ZTListUpdated"). A long
    // list's bytes are written by writeListData, which the document runs
    // before every save, so that adding items one by one stays linear.
    void updateListData();
    void writeListData();
    bool hasUnwrittenListData() const { return m_listDataStale; }
    // The stored form of itemOids, written afresh if they changed.
    QByteArray itemData();
    // Many additions in a row (an import) post "ZTListUpdated" once, when the
    // outermost batch ends, not once per item.
    void beginUpdates() { ++m_batchDepth; }
    void endUpdates();

    // Edits of the oid array that leave updateListData to the caller, so that a
    // batch of changes is written once.
    void insertOid(int index, const QString &oid);
    void appendOid(const QString &oid) { insertOid(int(m_itemOids.size()), oid); }
    bool removeOid(const QString &oid);
    void removeOidAt(int index);

    virtual bool allowsItemDrop() const { return true; }
    virtual bool isSmartList() const { return false; }

    void awakeFromInsert() override;
    void awakeFromFetch() override;
    void willSave() override { writeListData(); }

protected:
    void itemOidsReplaced() { m_oidSetValid = false; }
    QStringList m_itemOids;

private:
    QString m_oid;
    // Membership is asked for far more often than the array changes (every
    // edited item against every smart list), so a set shadows the array.
    mutable QSet<QString> m_oidSet;
    mutable bool m_oidSetValid = false;
    bool m_listDataStale = false;
    int m_batchDepth = 0;
    bool m_changedInBatch = false;
};

namespace ZTListNotification {
inline const QString updated = QStringLiteral("ZTListUpdated");
}

namespace ZTFilterDictionaryKey {
// Blank values are counted under this tag; it never appears among the values.
inline const QString emptyTag = QStringLiteral("[[ZETTARY EMPTY TAG]]");
inline const QString counts = QStringLiteral("[[[COUNT]]]");
inline const QString oids = QStringLiteral("[[[OID]]]");
inline const QString personName = QStringLiteral("personName");
inline const QString allLanguages = QStringLiteral("allLanguages");
} // namespace ZTFilterDictionaryKey
