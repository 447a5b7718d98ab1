#include "model/ZTShopLinks.h"

#include <QHash>
#include <QUrl>

namespace ZTShopLinks {

namespace {

const QString SiteKey = QStringLiteral("site");
const QString UrlKey = QStringLiteral("url");

struct Shop {
    const char *site;
    const char *host;
};

const QHash<QString, Shop> &shops()
{
    static const Shop us{"Amazon U.S.", "https://www.amazon.com"};
    static const QHash<QString, Shop> s_shops = {
        {QStringLiteral("US"), us},
        {QStringLiteral("AU"), us},
        {QStringLiteral("CN"), us},
        {QStringLiteral("NL"), us},
        {QStringLiteral("PL"), us},
        {QStringLiteral("GB"), {"Amazon U.K.", "https://www.amazon.co.uk"}},
        {QStringLiteral("DE"), {"Amazon Germany", "https://www.amazon.de"}},
        {QStringLiteral("JP"), {"Amazon Japan", "https://www.amazon.co.jp"}},
        {QStringLiteral("FR"), {"Amazon France", "https://www.amazon.fr"}},
        {QStringLiteral("CA"), {"Amazon Canada", "https://www.amazon.ca"}},
        {QStringLiteral("IT"), {"Amazon Italy", "https://www.amazon.it"}},
        {QStringLiteral("ES"), {"Amazon Spain", "https://www.amazon.es"}},
    };
    return s_shops;
}

// Codes and tags come from user input and lookups; anything that is not a
// plain URL character is escaped so a stray "/" or "?" cannot change the link.
QString escaped(const QString &text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

QVariantMap link(const QString &site, const QString &url)
{
    return {{SiteKey, site}, {UrlKey, url}};
}

QVariantMap shopLink(ZTMediaKind kind, const QVariantMap &codes, const QString &localeCode,
                     const QString &associateTag, const IsbnCleaner &isbnCleaner)
{
    QString code;
    if (kind == ZTMediaKind::Book || kind == ZTMediaKind::Comic) {
        const QString isbn = codes.value(QStringLiteral("isbn")).toString().trimmed();
        if (!isbn.isEmpty() && isbnCleaner)
            code = isbnCleaner(isbn);
    } else {
        code = codes.value(QStringLiteral("asin")).toString().trimmed();
    }
    QString site;
    QString host;
    if (code.isEmpty() || !shopForLocale(localeCode, &site, &host))
        return {};
    const QString path =
        QStringLiteral("/exec/obidos/ASIN/%1%2").arg(escaped(code), escaped(associateTag.trimmed()));
    return link(site, host + path);
}

} // namespace

bool shopForLocale(const QString &localeCode, QString *site, QString *host)
{
    const auto found = shops().constFind(localeCode);
    if (found == shops().constEnd())
        return false;
    if (site)
        *site = QString::fromLatin1(found->site);
    if (host)
        *host = QString::fromLatin1(found->host);
    return true;
}

QVariantList urlDictionariesWithAssociateTag(ZTMediaKind kind, const QVariantMap &codes,
                                             const QString &localeCode, const QString &associateTag,
                                             const IsbnCleaner &isbnCleaner)
{
    QVariantList links;
    if (kind == ZTMediaKind::Comic) {
        const QString gcdn = codes.value(QStringLiteral("gcdn")).toString().trimmed();
        if (!gcdn.isEmpty()) {
            links.append(
                link(QStringLiteral("Grand Comics Database"),
                     QStringLiteral("https://www.comics.org/details.lasso?id=%1").arg(escaped(gcdn))));
        }
        const QString cbdbn = codes.value(QStringLiteral("cbdbn")).toString().trimmed();
        if (!cbdbn.isEmpty()) {
            links.append(link(QStringLiteral("ComicBookDB"),
                              QStringLiteral("https://comicbookdb.com/issue.php?ID=%1").arg(escaped(cbdbn))));
        }
    }
    links.append(shopLink(kind, codes, localeCode, associateTag, isbnCleaner));
    return links;
}

QString urlWithAssociateTag(const QVariantList &urlDictionaries)
{
    if (urlDictionaries.isEmpty())
        return {};
    return urlDictionaries.first().toMap().value(UrlKey).toString();
}

} // namespace ZTShopLinks
