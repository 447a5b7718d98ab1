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
    // The places in `rowSlots` (the rows of a list) whose texts contain `needle`, in order.
    std::vector<qsizetype> matching(const ZTItemTable &table, const std::vector<int> &rowSlots,
                                    const QByteArray &needle);

    // Whether `needle` occurs in the `size` bytes at `text`.
    static bool findIn(const char *text, qsizetype size, const QByteArray &needle);

    void invalidate();
    void invalidate(const QStringList &oids);
    qsizetype size() const { return qsizetype(m_entries.size()); }

private:
    int slotForOid(const ZTItemTable &table, const QString &oid);
    static qsizetype rarestByte(const QByteArray &needle);
    static bool findIn(const char *text, qsizetype size, const QByteArray &needle, qsizetype rare);
    void store(int slot, const QByteArray &text);

    // All texts live in one buffer, in the order items were first indexed
    // (the order of the list searched), so a scan reads memory front to back
    // instead of visiting a small block per item. A rebuilt text is appended
    // and the old bytes left behind until they are half the buffer.
    struct Entry {
        qsizetype start = 0;
        qsizetype size = 0;
        bool stale = false;
    };
    QHash<QString, int> m_slots;
    std::vector<QString> m_oids;
    std::vector<Entry> m_entries;
    QByteArray m_buffer;
    qsizetype m_unused = 0;
    QStringList m_lastOids;
    std::vector<int> m_lastSlots;
};
