#pragma once

#include "lists/ZTList.h"

#include <QDateTime>
#include <QVariantList>

class ZTItem;
class ZTDocument;

// A list whose members are computed from rules (qualifiers).
class ZTSmartList : public ZTList {
public:
    static ZTSmartList *createInManagedObjectContext(ZTManagedObjectContext *context, int order);

    bool allowsItemDrop() const override { return false; }
    bool isSmartList() const override { return true; }

    // 0: every qualifier must hold; 1: any one is enough.
    int andOrFlag() const;
    void setAndOrFlag(int flag);
    const QVariantList &qualifiers() const { return m_qualifiers; }
    bool hasQualifiers() const { return m_hasQualifiers; }
    void setQualifiers(const QVariantList &qualifiers); // then updateQualifierData
    void updateQualifierData();
    QDateTime expirationDate() const;
    void setExpirationDate(const QDateTime &date);

    // Judges the items against the rules: members that now qualify join at the
    // front, members that no longer do leave. Returns whether the list changed.
    bool handleItems(const QList<ZTItem *> &items, const ZTDocument &document);

    void awakeFromInsert() override;
    void awakeFromFetch() override;

private:
    QVariantList m_qualifiers;
    bool m_hasQualifiers = false;
};
