#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

class ZTItem;
struct ZTCacheableAttributes;

namespace ZTCacheKey {
// Blank values (nothing, white space, an empty list) are counted under this tag.
inline const QString emptyTag = QStringLiteral("[[ZETTARY EMPTY TAG]]");
inline const QString count = QStringLiteral("[[[COUNT]]]");
inline const QString personName = QStringLiteral("personName");
inline const QString allLanguages = QStringLiteral("allLanguages");
inline const QString tag = QStringLiteral("tag");
inline const QString tagCount = QStringLiteral("count");
inline const QString yes = QStringLiteral("Yes");
inline const QString no = QStringLiteral("No");
} // namespace ZTCacheKey

// The value caches of a set of items: per cacheable key the distinct values in
// display order (what the browser and the completion offer) and the tag form
// with counts (what the tag view and the count bars show). They are rebuilt
// whole from a filter dictionary, never patched.
class ZTLibraryCaches {
public:
    enum class Target { Main, Sub };

    // Builds the caches from the filter dictionary of a list: per key the sorted
    // values, and under "[[[COUNT]]]" per key a map of value to count (counts
    // may be numbers or decimal texts). The main cache also keeps the borrower
    // names and the languages.
    static ZTLibraryCaches fromFilterDictionary(const QVariantMap &filter,
                                                const ZTCacheableAttributes &attributes, Target target);
    // Every key present with no values: the sub caches while the main list shows.
    static ZTLibraryCaches empty(const ZTCacheableAttributes &attributes);

    const QVariantMap &cacheDictionary() const { return m_cacheDictionary; }
    const QVariantMap &tagDictionary() const { return m_tagDictionary; }
    QVariantList values(const QString &key) const { return m_cacheDictionary.value(key).toList(); }
    QStringList stringValues(const QString &key) const;
    // How many items have the value (emptyTag for blanks); 0 for an unknown value.
    int count(const QString &key, const QString &value) const;

private:
    QVariantMap m_cacheDictionary;
    QVariantMap m_tagDictionary;
};
