#include "ui/sheets/ZTSheetFields.h"

#include "library/ZTAttributeTables.h"
#include "library/ZTLibraryCaches.h"

#include <QHash>

namespace {
using ZTSheetFields::Field;
using ZTSheetFields::Page;
using ZTSheetFields::Type;

// English labels; the kind's own wording overrides a few.
const QHash<QString, QString> &commonLabels()
{
    static const QHash<QString, QString> labels{
        {"title", "Title"},
        {"genre", "Genre"},
        {"source", "Obtained From"},
        {"copies", "Copies"},
        {"price", "Price"},
        {"pricePaid", "Price Paid"},
        {"format", "Format"},
        {"language", "Language"},
        {"originalLanguage", "Original Language"},
        {"series", "Series"},
        {"location", "Location"},
        {"notes", "Notes"},
        {"condition", "Condition"},
        {"productDescription", "Description"},
        {"rating", "Rating"},
        {"usedFlag", "Read"},
        {"dateUsed", "Date Read"},
        {"datePublished", "Date Published"},
        {"originalDatePublished", "Original Date Published"},
        {"dateObtained", "Date Obtained"},
        {"ownedFlag", "Owned"},
        {"lockedFlag", "Locked"},
        {"signedFlag", "Signed"},
        {"keywords", "Keywords"},
        {"locale", "Locale"},
        {"priceLocale", "Price Currency"},
        {"pricePaidLocale", "Price Paid Currency"},
        {"cover", "Cover Image"},
        {"lentOutFlag", "Lent Out"},
        {"lentToName", "Lent To Name"},
        {"lentToEmail", "Lent To Email"},
        {"dateLent", "Date Lent"},
        {"dateDue", "Date Due"},
        {"isbn", "ISBN"},
        {"lccn", "LCCN"},
        {"publisher", "Publisher"},
        {"placePublished", "Place Published"},
        {"locClassification", "LOC Classification"},
        {"deweyClassNumber", "Dewey Class"},
        {"volumeNumber", "Volume"},
        {"editionNumber", "Edition"},
        {"pages", "Pages"},
        {"authors", "Authors"},
        {"authorRoleDicts", "Authors"},
        {"locSubjects", "LOC Subjects"},
        {"asin", "ASIN"},
        {"upc", "UPC"},
        {"label", "Label"},
        {"numberOfMedia", "Number of Media"},
        {"artists", "Artists"},
        {"artistRoleDicts", "Artists"},
        {"tracks", "Tracks"},
        {"studio", "Studio"},
        {"audienceRating", "Audience Rating"},
        {"aspectRatio", "Aspect Ratio"},
        {"regionCode", "Region Code"},
        {"duration", "Duration"},
        {"directors", "Directors"},
        {"actorRoles", "Actors"},
        {"actorRoleDicts", "Actors"},
        {"gcdn", "GCDN"},
        {"cbdbn", "CBDBN"},
        {"grade", "Grade"},
        {"issueNumber", "Issue Number"},
        {"issueCount", "Issue Count"},
        {"stories", "Stories"},
        {"characters", "Characters"},
        {"characterRoleDicts", "Characters"},
    };
    return labels;
}

QString kindLabel(const QString &key, ZTMediaKind kind)
{
    const bool album = kind == ZTMediaKind::Album, movie = kind == ZTMediaKind::Movie;
    if (key == QLatin1String("usedFlag") && (album || movie))
        return album ? QStringLiteral("Listened") : QStringLiteral("Viewed");
    if (key == QLatin1String("dateUsed") && (album || movie))
        return album ? QStringLiteral("Date Listened") : QStringLiteral("Date Viewed");
    if (key == QLatin1String("datePublished") && (album || movie))
        return QStringLiteral("Date Released");
    if (key == QLatin1String("originalDatePublished") && (album || movie))
        return QStringLiteral("Original Date Released");
    return commonLabels().value(key, key);
}

Field field(const char *key, Type type, ZTMediaKind kind)
{
    const QString k = QLatin1String(key);
    return Field{k, type, ZTSheetFields::labelForKey(k, kind)};
}

Field names(const char *key, const char *header, ZTMediaKind kind)
{
    Field f = field(key, Type::Names, kind);
    f.headers = {ZTAttributeTables::localizedLabel(QLatin1String(header))};
    return f;
}

Field roles(const char *key, const char *header, ZTMediaKind kind)
{
    Field f = field(key, Type::RoleDicts, kind);
    f.headers = {ZTAttributeTables::localizedLabel(QLatin1String(header)),
                 ZTAttributeTables::localizedLabel(QStringLiteral("Role"))};
    return f;
}

Field price(const char *key, const char *currencyKey, ZTMediaKind kind)
{
    Field f = field(key, Type::Price, kind);
    f.currencyKey = QLatin1String(currencyKey);
    return f;
}

QString pageTitle(const char *text)
{
    return ZTAttributeTables::localizedLabel(QLatin1String(text));
}
} // namespace

QString ZTSheetFields::labelForKey(const QString &key, ZTMediaKind kind)
{
    return ZTAttributeTables::localizedLabel(kindLabel(key, kind));
}

QString ZTSheetFields::cacheKeyForKey(const QString &key)
{
    static const QHash<QString, QString> special{
        {"language", ZTCacheKey::allLanguages},
        {"originalLanguage", ZTCacheKey::allLanguages},
        {"lentToName", ZTCacheKey::personName},
    };
    return special.value(key, key);
}

QList<Page> ZTSheetFields::pagesForKind(ZTMediaKind kind)
{
    const ZTMediaKind k = kind;
    // What a kind shows first: the people and the publication.
    QList<Field> general{field("title", Type::Text, k)};
    QList<Field> details;
    switch (kind) {
    case ZTMediaKind::Book:
        general << roles("authorRoleDicts", "Author", k) << field("publisher", Type::Text, k)
                << field("placePublished", Type::Text, k) << field("datePublished", Type::Date, k)
                << field("originalDatePublished", Type::Date, k) << field("series", Type::Text, k)
                << field("volumeNumber", Type::Text, k) << field("editionNumber", Type::Text, k);
        details << field("isbn", Type::Text, k) << field("lccn", Type::Text, k)
                << field("pages", Type::Integer, k) << field("locClassification", Type::Text, k)
                << field("deweyClassNumber", Type::Text, k) << names("locSubjects", "Subject", k);
        break;
    case ZTMediaKind::Album:
        general << names("artists", "Artist", k) << field("label", Type::Text, k)
                << field("datePublished", Type::Date, k) << field("originalDatePublished", Type::Date, k)
                << field("series", Type::Text, k);
        details << field("asin", Type::Text, k) << field("upc", Type::Text, k)
                << field("numberOfMedia", Type::Integer, k) << names("tracks", "Track", k);
        break;
    case ZTMediaKind::Movie:
        general << names("directors", "Director", k) << roles("actorRoleDicts", "Actor", k)
                << field("studio", Type::Text, k) << field("datePublished", Type::Date, k)
                << field("originalDatePublished", Type::Date, k) << field("series", Type::Text, k);
        details << field("asin", Type::Text, k) << field("upc", Type::Text, k)
                << field("duration", Type::Integer, k) << field("numberOfMedia", Type::Integer, k)
                << field("audienceRating", Type::Text, k) << field("aspectRatio", Type::Text, k)
                << field("regionCode", Type::Text, k);
        break;
    case ZTMediaKind::Comic:
        general << field("series", Type::Text, k) << field("issueNumber", Type::Integer, k)
                << field("issueCount", Type::Integer, k) << field("publisher", Type::Text, k)
                << field("datePublished", Type::Date, k) << field("originalDatePublished", Type::Date, k)
                << roles("artistRoleDicts", "Artist", k) << roles("characterRoleDicts", "Character", k);
        details << field("gcdn", Type::Text, k) << field("cbdbn", Type::Text, k)
                << field("isbn", Type::Text, k) << field("upc", Type::Text, k)
                << field("pages", Type::Integer, k) << field("grade", Type::Grade, k)
                << names("stories", "Story", k);
        break;
    }
    general << field("format", Type::Text, k) << field("genre", Type::Text, k)
            << field("keywords", Type::Keywords, k) << price("price", "priceLocale", k);
    details << field("language", Type::Text, k) << field("originalLanguage", Type::Text, k)
            << field("locale", Type::Locale, k);
    const QList<Field> personal{field("ownedFlag", Type::Flag, k),        field("signedFlag", Type::Flag, k),
                                field("usedFlag", Type::Flag, k),         field("dateUsed", Type::Date, k),
                                field("dateObtained", Type::Date, k),     field("source", Type::Text, k),
                                price("pricePaid", "pricePaidLocale", k), field("location", Type::Text, k),
                                field("copies", Type::Integer, k),        field("condition", Type::Text, k),
                                field("lockedFlag", Type::Flag, k)};
    const QList<Field> notes{field("productDescription", Type::LongText, k),
                             field("notes", Type::LongText, k)};
    return {{pageTitle("General"), general},
            {pageTitle("Details"), details},
            {pageTitle("Personal"), personal},
            {pageTitle("Notes"), notes}};
}
