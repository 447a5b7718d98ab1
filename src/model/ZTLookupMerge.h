#pragma once

#include "model/ZTMediaKind.h"

#include <QStringList>
#include <QVariantMap>

// Gathers the results of several lookup sites into one pending attribute map.
// Each site has a rank (lower is better); a value is taken from a result when
// no site has supplied that key yet or only a worse-ranked one has.
namespace ZTLookupMerge {

// The keys taken from a result of the given kind, besides price and authors.
QStringList transferKeys(ZTMediaKind kind);

// Merges source into destination. orders records, per key, the rank of the
// site that supplied the value now in destination. A price brings its
// currency along: the result's own "priceLocale", else the currency of its
// "locale" in countryToCurrency. Book authors arrive as plain names and become
// "authorRoleDicts" without roles, ranked under "authors".
void transferDataFromSourceDictionary(ZTMediaKind kind, const QVariantMap &source, QVariantMap &destination,
                                      QVariantMap &orders, int order, const QVariantMap &countryToCurrency);
// The same with the country-to-currency table shipped with the program.
void transferDataFromSourceDictionary(ZTMediaKind kind, const QVariantMap &source, QVariantMap &destination,
                                      QVariantMap &orders, int order);

} // namespace ZTLookupMerge
