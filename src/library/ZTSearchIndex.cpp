#include "library/ZTSearchIndex.h"

#include "library/ZTItemTable.h"
#include "model/ZTItem.h"

#include <cstring>

namespace {

constexpr QChar s_separator(0x1F);

// What each kind's search looks at beyond the common attributes: single
// values first, then lists of names.
struct KindFields {
    QStringList values;
    QStringList lists;
};

const KindFields &kindFields(ZTMediaKind kind)
{
    static const KindFields book{{"publisher", "locClassification", "isbn", "lccn"},
                                 {"authors", "locSubjects"}};
    static const KindFields album{{"label", "upc", "asin"}, {"artists", "tracks"}};
    static const KindFields movie{{"studio", "upc", "asin"}, {"directors", "actors", "roles"}};
    static const KindFields comic{{"gcdn", "cbdbn", "isbn", "upc", "publisher"},
                                  {"stories", "artists", "characters"}};
    switch (kind) {
    case ZTMediaKind::Book:
        return book;
    case ZTMediaKind::Album:
        return album;
    case ZTMediaKind::Movie:
        return movie;
    case ZTMediaKind::Comic:
        return comic;
    }
    return book;
}

const QStringList &commonValues()
{
    static const QStringList keys{
        "title",    "genre", "source", "format", "notes", "condition", "productDescription",
        "location", "series"};
    return keys;
}

} // namespace

QString ZTSearchIndex::searchableText(const ZTItem &item)
{
    QString text;
    auto add = [&text](const QString &part) {
        text += part;
        text += s_separator;
    };
    for (const QString &key : commonValues())
        add(item.primitiveValueForKey(key).toString());
    add(item.keywords().join(QLatin1Char(' ')));
    const KindFields &fields = kindFields(item.mediaKind());
    for (const QString &key : fields.values)
        add(item.primitiveValueForKey(key).toString());
    for (const QString &key : fields.lists)
        add(ZTItem::variantToStrings(item.valueForKey(key)).join(QLatin1Char(' ')));
    return text.toCaseFolded();
}

QByteArray ZTSearchIndex::foldedNeedle(const QString &text)
{
    return text.isEmpty() || text.contains(s_separator) ? QByteArray() : text.toCaseFolded().toUtf8();
}

int ZTSearchIndex::slotForOid(const ZTItemTable &table, const QString &oid)
{
    auto it = m_slots.constFind(oid);
    if (it != m_slots.constEnd())
        return *it;
    const ZTItem *item = table.item(oid);
    if (!item)
        return -1;
    const int slot = int(m_entries.size());
    m_slots.insert(oid, slot);
    m_oids.push_back(oid);
    m_entries.push_back({});
    store(slot, searchableText(*item).toUtf8());
    return slot;
}

void ZTSearchIndex::store(int slot, const QByteArray &text)
{
    Entry &entry = m_entries[size_t(slot)];
    m_unused += entry.size;
    if (m_unused > 4096 && m_unused > m_buffer.size() / 2) {
        // Mostly left-behind bytes: copy the live texts into a fresh buffer.
        QByteArray compact;
        compact.reserve(m_buffer.size() - m_unused + text.size());
        for (Entry &other : m_entries) {
            if (&other == &entry)
                continue;
            const qsizetype start = compact.size();
            compact.append(m_buffer.constData() + other.start, other.size);
            other.start = start;
        }
        m_buffer = std::move(compact);
        m_unused = 0;
    }
    entry.start = m_buffer.size();
    entry.size = text.size();
    entry.stale = false;
    m_buffer.append(text);
}

std::vector<int> ZTSearchIndex::slotsForOids(const ZTItemTable &table, const QStringList &oids)
{
    // The same list as last time, unchanged: its rowSlots are known.
    if (oids.isSharedWith(m_lastOids) && oids.size() == qsizetype(m_lastSlots.size()))
        return m_lastSlots;
    std::vector<int> rowSlots;
    rowSlots.reserve(size_t(oids.size()));
    for (const QString &oid : oids)
        rowSlots.push_back(slotForOid(table, oid));
    m_lastOids = oids;
    m_lastSlots = rowSlots;
    return rowSlots;
}

std::vector<qsizetype> ZTSearchIndex::matching(const ZTItemTable &table, const std::vector<int> &rowSlots,
                                               const QByteArray &needle)
{
    std::vector<qsizetype> found;
    const qsizetype rare = rarestByte(needle);
    for (size_t i = 0; i < rowSlots.size(); ++i) {
        const int slot = rowSlots[i];
        if (slot < 0 || size_t(slot) >= m_entries.size())
            continue;
        if (m_entries[size_t(slot)].stale) {
            const ZTItem *item = table.item(m_oids[size_t(slot)]);
            store(slot, item ? searchableText(*item).toUtf8() : QByteArray());
        }
        const Entry &entry = m_entries[size_t(slot)];
        // UTF-8 is self-synchronising, so a byte match is a character match.
        if (findIn(m_buffer.constData() + entry.start, entry.size, needle, rare))
            found.push_back(qsizetype(i));
    }
    return found;
}

bool ZTSearchIndex::findIn(const char *text, qsizetype size, const QByteArray &needle)
{
    return findIn(text, size, needle, rarestByte(needle));
}

bool ZTSearchIndex::findIn(const char *text, qsizetype size, const QByteArray &needle, qsizetype rare)
{
    const qsizetype length = needle.size();
    if (length == 0)
        return true;
    if (length > size)
        return false;
    // Texts are short and a keystroke tests tens of thousands of them, so the
    // setup of a general search costs more than the search. Look instead for
    // the needle's least common byte with memchr, which goes many bytes at a
    // step, and compare the whole needle only where that byte turns up.
    const char *bytes = needle.constData();
    const char *first = text + rare;
    const char *last = text + size - (length - rare); // last place the rare byte may stand
    while (first <= last) {
        const auto *hit = static_cast<const char *>(memchr(first, bytes[rare], size_t(last - first + 1)));
        if (!hit)
            return false;
        if (memcmp(hit - rare, bytes, size_t(length)) == 0)
            return true;
        first = hit + 1;
    }
    return false;
}

qsizetype ZTSearchIndex::rarestByte(const QByteArray &needle)
{
    // How common each letter is in ordinary Latin-script text, most common
    // first; bytes not listed (digits, marks, other scripts) count as rare.
    static constexpr char common[] = " eaionrtslcudmhgpbfykvwzxjq";
    qsizetype best = 0;
    qsizetype bestRank = -1;
    for (qsizetype i = 0; i < needle.size(); ++i) {
        const char *at = strchr(common, needle[i]);
        const qsizetype rank = at && needle[i] ? qsizetype(at - common) : qsizetype(sizeof(common));
        if (rank > bestRank) {
            bestRank = rank;
            best = i;
        }
    }
    return best;
}

void ZTSearchIndex::invalidate()
{
    m_slots.clear();
    m_oids.clear();
    m_entries.clear();
    m_buffer.clear();
    m_unused = 0;
    m_lastOids.clear();
    m_lastSlots.clear();
}

void ZTSearchIndex::invalidate(const QStringList &oids)
{
    for (const QString &oid : oids) {
        auto it = m_slots.constFind(oid);
        if (it != m_slots.constEnd())
            m_entries[size_t(*it)].stale = true;
    }
}
