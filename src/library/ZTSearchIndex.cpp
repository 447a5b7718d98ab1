#include "library/ZTSearchIndex.h"

#include "library/ZTDocument.h"
#include "model/ZTItem.h"

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

QString ZTSearchIndex::foldedNeedle(const QString &text)
{
    return text.contains(s_separator) ? QString() : text.toCaseFolded();
}

bool ZTSearchIndex::contains(const ZTDocument &document, const QString &oid, const QString &needle)
{
    auto it = m_texts.constFind(oid);
    if (it == m_texts.constEnd()) {
        const ZTItem *item = document.itemForOid(oid);
        if (!item)
            return false;
        it = m_texts.insert(oid, searchableText(*item));
    }
    return it->contains(needle);
}

void ZTSearchIndex::invalidate(const QStringList &oids)
{
    for (const QString &oid : oids)
        m_texts.remove(oid);
}
