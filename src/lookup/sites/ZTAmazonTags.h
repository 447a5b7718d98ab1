#pragma once

#include "model/ZTMediaKind.h"

#include <QString>
#include <QStringList>

// Everything the shop product-page readers look for, in one place, so that a
// change of the pages means a change here and nowhere else.
namespace ZTAmazonTags {

// One country's shop. suffix ends the class name ("UK"), countryCode is the
// fetcher's locale ("GB").
struct Country {
    QString suffix;
    QString countryCode;
    QString host;
    QString currency;
};
// Null suffix when the suffix is unknown.
const Country &country(const QString &suffix);
const QList<Country> &countries();

// The labels a details block uses for an attribute key, for a country code.
QStringList labels(const QString &countryCode, const QString &key);
// The attribute keys the labels are searched for, in order.
const QStringList &keyList();
// The heading over the details block.
QString heading(const QString &countryCode);
// Month names, January first, as they appear lower-cased in dates.
QStringList months(const QString &countryCode, ZTMediaKind kind);

// Paths on the shop's host; %1 is the code.
inline const QString ProductPath = QStringLiteral("/gp/product/%1");
inline const QString JapaneseProductPath =
    QStringLiteral("/gp/switch-language/product/%1/language=en_JP/ref=dp_change_lang?ie=UTF8&language=en_JP");
inline const QString UPCSearchPath =
    QStringLiteral("/gp/seller/search.html?ld=direct-link&index=aps&keywords=%1");

// Where cover pictures live, and the page elements that name the front cover.
inline const QString ImageURLStart = QStringLiteral("https://m.media-amazon.com/images");
inline const QStringList ImageMarkers = {QStringLiteral("imgBlkFront"), QStringLiteral("landingImage")};

// The movie database asked for cast lists.
inline const QString MovieDatabaseHost = QStringLiteral("www.imdb.com");
inline const QString MovieDatabaseLinkText = QStringLiteral("visit the Internet Movie Database");

} // namespace ZTAmazonTags
