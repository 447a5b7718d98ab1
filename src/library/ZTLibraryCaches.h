#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include "lists/ZTListTally.h"

#include <optional>

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
// display order (what the browser and the completion offer) and how many items
// hold each (what the tag view and the count bars show). They are rebuilt whole
// from a list's tally, never patched. The dictionary forms the sheets read are
// made from the tally when first asked for, not at every rebuild.
class ZTLibraryCaches {
public:
    enum class Target { Main, Sub };

    // The main cache also keeps the borrower names and the languages.
    static ZTLibraryCaches fromTally(ZTListTally tally, Target target);
    // Every key present with no values: the sub caches while the main list shows.
    static ZTLibraryCaches empty(const ZTCacheableAttributes &attributes);

    // Per key the values; under "[[[COUNT]]]" per key a map of value to count
    // (blanks under the empty tag); for the main cache the people and languages.
    const QVariantMap &cacheDictionary() const;
    // Per key a list of {"tag": value, "count": n}; "[[[COUNT]]]" as above.
    const QVariantMap &tagDictionary() const;
    QVariantList values(const QString &key) const { return cacheDictionary().value(key).toList(); }
    QStringList stringValues(const QString &key) const;
    // How many items have the value (emptyTag for blanks); 0 for an unknown value.
    int count(const QString &key, const QString &value) const;

private:
    const QVariantMap &countDictionary() const;

    ZTListTally m_tally;
    Target m_target = Target::Sub;
    bool m_counted = false;
    mutable std::optional<QVariantMap> m_countDictionary;
    mutable std::optional<QVariantMap> m_cacheDictionary;
    mutable std::optional<QVariantMap> m_tagDictionary;
};
