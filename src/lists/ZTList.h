#pragma once

#include "store/ZTManagedObject.h"

#include <QStringList>

class ZTDocument;

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
    void addItem(const QString &itemOid);       // at the front; callers test for duplicates
    int count() const { return int(m_itemOids.size()); }
    bool containsOid(const QString &oid) const { return m_itemOids.contains(oid); }
    void updateListData();
    // Many additions in a row (an import) encode the oid array and post
    // "ZTListUpdated" once, when the outermost batch ends, not once per item.
    void beginUpdates() { ++m_batchDepth; }
    void endUpdates();

    virtual bool allowsItemDrop() const { return true; }
    virtual bool isSmartList() const { return false; }

    void awakeFromInsert() override;
    void awakeFromFetch() override;
    void willSave() override;
    // The stored form of itemOids, written afresh if they changed.
    QByteArray itemData();

protected:
    QStringList m_itemOids;

private:
    QString m_oid;
    bool m_itemDataStale = false;
    int m_batchDepth = 0;
    bool m_changedInBatch = false;
};

namespace ZTListNotification {
inline const QString updated = QStringLiteral("ZTListUpdated");
}
