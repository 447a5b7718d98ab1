#pragma once

#include "model/ZTMediaKind.h"

#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <functional>

// Links from an item to the pages that sell or describe it. Each link is a map
// with "site" (the label shown) and "url".
namespace ZTShopLinks {

// Returns the cleaned ISBN, or an empty string when the text is not a valid
// ISBN or ASIN. The item plugs the code formatter in here.
using IsbnCleaner = std::function<QString(const QString &)>;

// The online shop serving a locale code: its label ("Amazon U.K.") and base
// address. Returns false for locales without a shop of their own.
bool shopForLocale(const QString &localeCode, QString *site, QString *host);

// codes holds the item's code attributes by key ("isbn", "asin", "gcdn",
// "cbdbn"). Books, albums and movies give exactly one map, empty when there is
// no usable code or no shop for the locale. Comics give a Grand Comics
// Database link and a ComicBookDB link for the codes they have, then the shop
// map. The associate tag, trimmed, follows the code directly in shop links.
QVariantList urlDictionariesWithAssociateTag(ZTMediaKind kind, const QVariantMap &codes,
                                             const QString &localeCode, const QString &associateTag,
                                             const IsbnCleaner &isbnCleaner);

// The "url" of the first map, or a null string.
QString urlWithAssociateTag(const QVariantList &urlDictionaries);

} // namespace ZTShopLinks
