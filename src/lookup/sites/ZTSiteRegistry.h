#pragma once

#include "model/ZTMediaKind.h"

#include <QList>
#include <QMap>
#include <QStringList>
#include <QVariantList>

#include <memory>
#include <vector>

class ZTFetcher;

// Every lookup site the program knows, in one table: the identifier stored in
// the user's site lists, the fetcher class, the names shown for it, its
// country and its group key. A site whose fetcher is not built yet stands in
// the table without a factory; lists that name it skip it without a word.
namespace ZTSiteRegistry {

struct Site {
    ZTMediaKind kind;
    QString identifier;
    QString className;
    QString name;            // in status lines
    QString preferencesName; // in the preferences' site list
    QString locale;          // two-letter country code
    QString type;            // sites of one operator share it
    std::unique_ptr<ZTFetcher> (*create)() = nullptr;
};

// The known sites of a kind, in the order new users see them.
QList<Site> sites(ZTMediaKind kind);
// Identifier to class name.
QMap<QString, QString> fetcherDictionary(ZTMediaKind kind);
// A new fetcher of the named class, or null when it does not exist.
std::unique_ptr<ZTFetcher> createFetcher(const QString &className);

// The settings key of a kind's site list: "Locale Books Array" …
QString localeArrayKey(ZTMediaKind kind);
// A site row: {"locale": identifier, "activeFlag": 1 or 0}.
QVariantMap siteRow(const QString &identifier, bool active);
// The rows written at first start, all active.
QVariantList defaultLocaleArray(ZTMediaKind kind);
// Appends every known identifier missing from rows, inactive; true if any was added.
bool updateLocales(ZTMediaKind kind, QVariantList &rows);
// The stored list of the kind, or the first-start rows when none is stored.
QVariantList storedLocaleArray(ZTMediaKind kind);
// One fetcher per active row whose site exists, numbered in list order.
std::vector<std::unique_ptr<ZTFetcher>> fetchersForLocaleArray(ZTMediaKind kind, const QVariantList &rows);
// Every key the kind's sites can deliver, without the picture variants and
// date flags, sorted for display.
QStringList fetcherAttributeArray(ZTMediaKind kind);

} // namespace ZTSiteRegistry
