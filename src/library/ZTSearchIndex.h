#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

class ZTItem;
class ZTItemTable;

// The text the search field looks through, per item, folded for case and
// kept between keystrokes. A match here is exactly ZTItem::containsString:
// the same attributes, lists joined by blanks as there, and a separator
// between attributes that no typed text holds.
//
// Each item indexed has a slot. Scanning the same list again reuses the
// slots of the last scan without looking the oids up, so a keystroke costs
// one substring search per row. Entries of changed items must be dropped by
// invalidate(oids); they are rebuilt when next asked for.
class ZTSearchIndex {
public:
    // The folded, joined searchable text of an item.
    static QString searchableText(const ZTItem &item);
    // The needle as the index compares it (folded, UTF-8); empty when the
    // index cannot answer for it and the caller must ask the items.
    static QByteArray foldedNeedle(const QString &text);

    // The slot of each oid, -1 for an oid without an item.
    std::vector<int> slotsForOids(const ZTItemTable &table, const QStringList &oids);
    bool contains(const ZTItemTable &table, int slot, const QByteArray &needle);

    void invalidate();
    void invalidate(const QStringList &oids);
    qsizetype size() const { return qsizetype(m_texts.size()); }

private:
    int slotForOid(const ZTItemTable &table, const QString &oid);

    QHash<QString, int> m_slots;
    std::vector<QString> m_oids;
    std::vector<QByteArray> m_texts;
    std::vector<bool> m_stale;
    QStringList m_lastOids;
    std::vector<int> m_lastSlots;
};
