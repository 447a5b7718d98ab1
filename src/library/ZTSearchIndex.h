#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

class ZTDocument;
class ZTItem;

// The text the search field looks through, per item, folded for case and
// kept between keystrokes. A match here is exactly ZTItem::containsString:
// the same attributes, lists joined by blanks as there, and a separator
// between attributes that no typed text holds. Entries go stale when items
// change, so the view drops them on every change it is told of.
class ZTSearchIndex {
public:
    // The folded, joined searchable text of an item.
    static QString searchableText(const ZTItem &item);
    // The needle as the index compares it; empty when it cannot be used here
    // (it holds the separator), and the caller asks the item itself.
    static QString foldedNeedle(const QString &text);

    // Whether the item of `oid` contains the folded needle; unknown oids do not.
    bool contains(const ZTDocument &document, const QString &oid, const QString &needle);
    void invalidate() { m_texts.clear(); }
    void invalidate(const QStringList &oids);
    qsizetype size() const { return m_texts.size(); }

private:
    QHash<QString, QString> m_texts;
};
