#include "lookup/sites/ZTSiteRegistry.h"

#include "base/ZTSettings.h"
#include "lookup/ZTFetcherAlbumsAmazon.h"
#include "lookup/ZTFetcherBooksAmazon.h"
#include "lookup/ZTFetcherMoviesAmazon.h"

#include <QCollator>
#include <QSet>

namespace {

using Factory = std::unique_ptr<ZTFetcher> (*)();

template <typename T> std::unique_ptr<ZTFetcher> make()
{
    return std::make_unique<T>();
}

struct Row {
    ZTMediaKind kind;
    const char *identifier;
    const char *className;
    const char *name;
    const char *preferencesName; // null: as name
    const char *locale;
    const char *type;
    Factory create;
};

constexpr ZTMediaKind B = ZTMediaKind::Book;
constexpr ZTMediaKind M = ZTMediaKind::Album;
constexpr ZTMediaKind V = ZTMediaKind::Movie;
constexpr ZTMediaKind C = ZTMediaKind::Comic;
constexpr const char *A = "amazon.com";

// Per kind, in the order the preferences offer them to a new user.
const Row s_rows[] = {
    {B, "Books_US_Amazon", "ZTFetcherBooksAmazonUS", "Amazon US", "Amazon U.S.", "US", A,
     &make<ZTFetcherBooksAmazonUS>},
    {B, "Books_UK_Amazon", "ZTFetcherBooksAmazonUK", "Amazon UK", "Amazon U.K.", "GB", A,
     &make<ZTFetcherBooksAmazonUK>},
    {B, "Books_FR_Amazon", "ZTFetcherBooksAmazonFR", "Amazon FR", "Amazon France", "FR", A,
     &make<ZTFetcherBooksAmazonFR>},
    {B, "Books_DE_Amazon", "ZTFetcherBooksAmazonDE", "Amazon DE", "Amazon Germany", "DE", A,
     &make<ZTFetcherBooksAmazonDE>},
    {B, "Books_JP_Amazon", "ZTFetcherBooksAmazonJP", "Amazon JP", "Amazon Japan", "JP", A,
     &make<ZTFetcherBooksAmazonJP>},
    {B, "Books_CA_Amazon", "ZTFetcherBooksAmazonCA", "Amazon CA", "Amazon Canada", "CA", A,
     &make<ZTFetcherBooksAmazonCA>},
    {B, "Books_IT_Amazon", "ZTFetcherBooksAmazonIT", "Amazon IT", "Amazon Italy", "IT", A,
     &make<ZTFetcherBooksAmazonIT>},
    {B, "Books_ES_Amazon", "ZTFetcherBooksAmazonES", "Amazon ES", "Amazon Spain", "ES", A,
     &make<ZTFetcherBooksAmazonES>},
    {B, "Books_US_LibraryOfCongress", "ZTFetcherBooksLOC", "Library of Congress", nullptr, "US", "loc.gov",
     nullptr},
    {B, "Books_UK_BritishLibrary", "ZTFetcherBooksBritishLibrary", "British Library", nullptr, "GB", "bl.uk",
     nullptr},
    {B, "Books_FR_NationalLibrary", "ZTFetcherBooksBNF_FR", "National Library of France", nullptr, "FR",
     "bnf.fr", nullptr},
    {B, "Books_DE_NationalLibrary", "ZTFetcherBooksNationalLibraryOfGermany_DE",
     "National Library of Germany", nullptr, "DE", "dnb.de", nullptr},
    {B, "Books_JP_NationalDietLibrary", "ZTFetcherBooksNationalDietLibrary_JP", "National Diet Library (JP)",
     nullptr, "JP", "ndl.go.jp", nullptr},
    {B, "Books_CA_Chapters", "ZTFetcherBooksChapters_CA", "Chapters (CA)", nullptr, "CA",
     "chapters.indigo.ca", nullptr},
    {B, "Books_AU_Dymocks", "ZTFetcherBooksDymocks", "Dymocks", nullptr, "AU", "dymocks.com.au", nullptr},
    {B, "Books_AU_NationalLibrary", "ZTFetcherBooksNationalLibraryOfAustralia",
     "National Library of Australia", nullptr, "AU", "nla.gov.au", nullptr},
    {B, "Books_NL_BOL", "ZTFetcherBooksBOL_NL", "BOL (NL)", nullptr, "NL", "bol.com", nullptr},
    {B, "Books_NL_KoninklijkeBibliotheek", "ZTFetcherBooksKoninklijkeBibliotheek_NL",
     "Koninklijke Bibliotheek (NL)", nullptr, "NL", "kb.nl", nullptr},
    {B, "Books_PL_NationalLibrary", "ZTFetcherBooksNationalLibraryOfPoland", "National Library of Poland",
     nullptr, "PL", "bn.org.pl", nullptr},
    {B, "Books_PL_InBook", "ZTFetcherBooksInBook_PL", "InBook (PL)", nullptr, "PL", "inbook.pl", nullptr},
    {B, "Books_IT_BOL", "ZTFetcherBooksBOL_IT", "Inmondadori (IT)", nullptr, "IT", "inmondadori.it", nullptr},
    {B, "Books_IT_InternetBookshop", "ZTFetcherBooksInternetBookshop_IT", "Internet Bookshop Italia", nullptr,
     "IT", "ibs.it", nullptr},
    {B, "Books_SE_NationalLibrary", "ZTFetcherBooksNationalLibraryOfSweden", "National Library of Sweden",
     nullptr, "SE", "libris.kb.se", nullptr},
    {B, "Books_NO_NationalLibrary", "ZTFetcherBooksNationalLibraryOfNorway", "National Library of Norway",
     nullptr, "NO", "nb.no", nullptr},
    {B, "Books_NO_Bokkilden", "ZTFetcherBooksBokkilden_NO", "Bokkilden (NO)", nullptr, "NO", "bokkilden.no",
     nullptr},
    {B, "Books_DK_NationalLibrary", "ZTFetcherBooksNationalLibraryOfDenmark_DK",
     "National Library of Denmark", nullptr, "DK", "kb.dk", nullptr},
    {B, "Books_BR_NationalLibrary", "ZTFetcherBooksNationalLibraryOfBrazil_BR", "National Library of Brazil",
     nullptr, "BR", "bn.gov.br", nullptr},
    {B, "Books_BR_Submarino", "ZTFetcherBooksSubmarino_BR", "Submarino (BR)", nullptr, "BR",
     "submarino.com.br", nullptr},

    {M, "Music_US_Amazon", "ZTFetcherAlbumsAmazonUS", "Amazon US", nullptr, "US", A,
     &make<ZTFetcherAlbumsAmazonUS>},
    {M, "Music_UK_Amazon", "ZTFetcherAlbumsAmazonUK", "Amazon UK", nullptr, "GB", A,
     &make<ZTFetcherAlbumsAmazonUK>},
    {M, "Music_FR_Amazon", "ZTFetcherAlbumsAmazonFR", "Amazon FR", nullptr, "FR", A,
     &make<ZTFetcherAlbumsAmazonFR>},
    {M, "Music_DE_Amazon", "ZTFetcherAlbumsAmazonDE", "Amazon DE", nullptr, "DE", A,
     &make<ZTFetcherAlbumsAmazonDE>},
    {M, "Music_JP_Amazon", "ZTFetcherAlbumsAmazonJP", "Amazon JP", nullptr, "JP", A,
     &make<ZTFetcherAlbumsAmazonJP>},
    {M, "Music_CA_Amazon", "ZTFetcherAlbumsAmazonCA", "Amazon CA", nullptr, "CA", A,
     &make<ZTFetcherAlbumsAmazonCA>},
    {M, "Music_IT_Amazon", "ZTFetcherAlbumsAmazonIT", "Amazon IT", nullptr, "IT", A,
     &make<ZTFetcherAlbumsAmazonIT>},
    {M, "Music_ES_Amazon", "ZTFetcherAlbumsAmazonES", "Amazon ES", nullptr, "ES", A,
     &make<ZTFetcherAlbumsAmazonES>},
    {M, "Music_NL_BOL", "ZTFetcherAlbumsBOL_NL", "BOL (NL)", nullptr, "NL", "bol.com", nullptr},
    {M, "Music_IT_BOL", "ZTFetcherAlbumsBOL_IT", "Inmondadori (IT)", nullptr, "IT", "inmondadori.it",
     nullptr},
    {M, "Music_IT_InternetBookshop", "ZTFetcherAlbumsInternetBookshop_IT", "Internet Bookshop Italia",
     nullptr, "IT", "ibs.it", nullptr},

    {V, "Movies_US_Amazon", "ZTFetcherMoviesAmazonUS", "Amazon US", nullptr, "US", A,
     &make<ZTFetcherMoviesAmazonUS>},
    {V, "Movies_UK_Amazon", "ZTFetcherMoviesAmazonUK", "Amazon UK", nullptr, "GB", A,
     &make<ZTFetcherMoviesAmazonUK>},
    {V, "Movies_FR_Amazon", "ZTFetcherMoviesAmazonFR", "Amazon FR", nullptr, "FR", A,
     &make<ZTFetcherMoviesAmazonFR>},
    {V, "Movies_DE_Amazon", "ZTFetcherMoviesAmazonDE", "Amazon DE", nullptr, "DE", A,
     &make<ZTFetcherMoviesAmazonDE>},
    {V, "Movies_JP_Amazon", "ZTFetcherMoviesAmazonJP", "Amazon JP", nullptr, "JP", A,
     &make<ZTFetcherMoviesAmazonJP>},
    {V, "Movies_CA_Amazon", "ZTFetcherMoviesAmazonCA", "Amazon CA", nullptr, "CA", A,
     &make<ZTFetcherMoviesAmazonCA>},
    {V, "Movies_IT_Amazon", "ZTFetcherMoviesAmazonIT", "Amazon IT", nullptr, "IT", A,
     &make<ZTFetcherMoviesAmazonIT>},
    {V, "Movies_ES_Amazon", "ZTFetcherMoviesAmazonES", "Amazon ES", nullptr, "ES", A,
     &make<ZTFetcherMoviesAmazonES>},
    {V, "Movies_NL_BOL", "ZTFetcherMoviesBOL_NL", "BOL (NL)", nullptr, "NL", "bol.com", nullptr},
    {V, "Movies_IT_BOL", "ZTFetcherMoviesBOL_IT", "Inmondadori (IT)", nullptr, "IT", "inmondadori.it",
     nullptr},
    {V, "Movies_IT_InternetBookshop", "ZTFetcherMoviesInternetBookshop_IT", "Internet Bookshop Italia",
     nullptr, "IT", "ibs.it", nullptr},

    {C, "Comics_US_CBDB", "ZTFetcherComicsComicBookDB_US", "ComicBookDB", nullptr, "US", "comicbookdb.com",
     nullptr},
    {C, "Comics_US_GCD", "ZTFetcherComicsGCD_US", "Grand Comics Database", nullptr, "US", "comics.org",
     nullptr},
};

// The sites a new library starts with, in this order, all active.
const QStringList &defaultIdentifiers(ZTMediaKind kind)
{
    static const QStringList s_books = {"Books_US_Amazon", "Books_UK_Amazon", "Books_FR_Amazon",
                                        "Books_DE_Amazon", "Books_JP_Amazon", "Books_CA_Amazon",
                                        "Books_IT_Amazon", "Books_ES_Amazon", "Books_US_LibraryOfCongress"};
    static const QStringList s_music = {"Music_US_Amazon", "Music_UK_Amazon", "Music_FR_Amazon",
                                        "Music_DE_Amazon", "Music_JP_Amazon", "Music_CA_Amazon",
                                        "Music_IT_Amazon", "Music_ES_Amazon"};
    static const QStringList s_movies = {"Movies_US_Amazon", "Movies_UK_Amazon", "Movies_FR_Amazon",
                                         "Movies_DE_Amazon", "Movies_JP_Amazon", "Movies_CA_Amazon",
                                         "Movies_IT_Amazon", "Movies_ES_Amazon"};
    static const QStringList s_comics = {"Comics_US_CBDB", "Comics_US_GCD"};
    switch (kind) {
    case ZTMediaKind::Book:
        return s_books;
    case ZTMediaKind::Album:
        return s_music;
    case ZTMediaKind::Movie:
        return s_movies;
    case ZTMediaKind::Comic:
        break;
    }
    return s_comics;
}

ZTSiteRegistry::Site toSite(const Row &row)
{
    return {row.kind,
            QString::fromUtf8(row.identifier),
            QString::fromUtf8(row.className),
            QString::fromUtf8(row.name),
            QString::fromUtf8(row.preferencesName ? row.preferencesName : row.name),
            QString::fromUtf8(row.locale),
            QString::fromUtf8(row.type),
            row.create};
}

} // namespace

QList<ZTSiteRegistry::Site> ZTSiteRegistry::sites(ZTMediaKind kind)
{
    QList<Site> list;
    for (const Row &row : s_rows)
        if (row.kind == kind)
            list << toSite(row);
    return list;
}

QMap<QString, QString> ZTSiteRegistry::fetcherDictionary(ZTMediaKind kind)
{
    QMap<QString, QString> dictionary;
    for (const Row &row : s_rows)
        if (row.kind == kind)
            dictionary.insert(QString::fromUtf8(row.identifier), QString::fromUtf8(row.className));
    return dictionary;
}

std::unique_ptr<ZTFetcher> ZTSiteRegistry::createFetcher(const QString &className)
{
    for (const Row &row : s_rows)
        if (row.create && className == QLatin1String(row.className))
            return row.create();
    return nullptr;
}

QString ZTSiteRegistry::localeArrayKey(ZTMediaKind kind)
{
    switch (kind) {
    case ZTMediaKind::Book:
        return ZTSettingsKey::LocaleBooksArray;
    case ZTMediaKind::Album:
        return ZTSettingsKey::LocaleMusicArray;
    case ZTMediaKind::Movie:
        return ZTSettingsKey::LocaleMoviesArray;
    case ZTMediaKind::Comic:
        break;
    }
    return ZTSettingsKey::LocaleComicsArray;
}

QVariantMap ZTSiteRegistry::siteRow(const QString &identifier, bool active)
{
    return {{QStringLiteral("locale"), identifier}, {QStringLiteral("activeFlag"), active ? 1 : 0}};
}

QVariantList ZTSiteRegistry::defaultLocaleArray(ZTMediaKind kind)
{
    QVariantList rows;
    for (const QString &identifier : defaultIdentifiers(kind))
        rows << siteRow(identifier, true);
    return rows;
}

bool ZTSiteRegistry::updateLocales(ZTMediaKind kind, QVariantList &rows)
{
    QSet<QString> present;
    for (const QVariant &row : std::as_const(rows))
        present.insert(row.toMap().value(QStringLiteral("locale")).toString());
    bool added = false;
    for (const Site &site : sites(kind)) {
        if (present.contains(site.identifier))
            continue;
        rows << siteRow(site.identifier, false);
        present.insert(site.identifier);
        added = true;
    }
    return added;
}

QVariantList ZTSiteRegistry::storedLocaleArray(ZTMediaKind kind)
{
    const QVariant stored = ZTSettings::value(localeArrayKey(kind));
    if (stored.isValid())
        return stored.toList();
    return defaultLocaleArray(kind);
}

std::vector<std::unique_ptr<ZTFetcher>> ZTSiteRegistry::fetchersForLocaleArray(ZTMediaKind kind,
                                                                               const QVariantList &rows)
{
    const QMap<QString, QString> dictionary = fetcherDictionary(kind);
    std::vector<std::unique_ptr<ZTFetcher>> fetchers;
    for (const QVariant &value : rows) {
        const QVariantMap row = value.toMap();
        const QString identifier = row.value(QStringLiteral("locale")).toString();
        if (identifier.isEmpty() || !row.value(QStringLiteral("activeFlag")).toBool())
            continue;
        const auto it = dictionary.constFind(identifier);
        if (it == dictionary.constEnd())
            continue;
        std::unique_ptr<ZTFetcher> fetcher = createFetcher(*it);
        if (!fetcher)
            continue;
        fetcher->setOrder(int(fetchers.size()));
        fetchers.push_back(std::move(fetcher));
    }
    return fetchers;
}

QStringList ZTSiteRegistry::fetcherAttributeArray(ZTMediaKind kind)
{
    static const QSet<QString> s_hidden = {
        "imageUrl",      "imageUrlSmall",        "imageUrlMedium",
        "imageUrlLarge", "imageSmall",           "imageMedium",
        "imageLarge",    "datePublishedBitFlag", "originalDatePublishedBitFlag"};
    QStringList keys;
    for (const QString &className : fetcherDictionary(kind)) {
        const std::unique_ptr<ZTFetcher> fetcher = createFetcher(className);
        if (!fetcher)
            continue;
        for (const QString &key : fetcher->fetchableKeys())
            if (!s_hidden.contains(key) && !keys.contains(key))
                keys << key;
    }
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::sort(keys.begin(), keys.end(),
              [&collator](const QString &a, const QString &b) { return collator.compare(a, b) < 0; });
    return keys;
}
