#include "model/ZTLookupMerge.h"

#include "model/ZTItemResources.h"

namespace ZTLookupMerge {

namespace {

const QString PriceKey = QStringLiteral("price");
const QString PriceLocaleKey = QStringLiteral("priceLocale");
const QString LocaleKey = QStringLiteral("locale");
const QString AuthorsKey = QStringLiteral("authors");
const QString AuthorRoleDictsKey = QStringLiteral("authorRoleDicts");

bool hasValue(const QVariantMap &map, const QString &key)
{
    const auto found = map.constFind(key);
    return found != map.constEnd() && found->isValid() && !found->isNull();
}

// A value is taken when nobody supplied the key yet, or a worse-ranked site
// did. An equal rank keeps the first answer, so sites of the same standing do
// not overwrite each other in the order they happen to reply.
bool takes(const QVariantMap &source, const QVariantMap &orders, const QString &key, int order)
{
    if (!hasValue(source, key))
        return false;
    const auto recorded = orders.constFind(key);
    if (recorded == orders.constEnd())
        return true;
    bool ok = false;
    const int rank = recorded->toInt(&ok);
    return !ok || rank > order;
}

QVariantList roleDictsFromNames(const QVariant &names)
{
    QVariantList dicts;
    for (const QString &name : names.toStringList()) {
        if (name.trimmed().isEmpty())
            continue;
        dicts.append(QVariantMap{{QStringLiteral("name"), name}, {QStringLiteral("role"), QString()}});
    }
    return dicts;
}

} // namespace

QStringList transferKeys(ZTMediaKind kind)
{
    QStringList keys = {QStringLiteral("title"),
                        QStringLiteral("language"),
                        QStringLiteral("originalLanguage"),
                        QStringLiteral("series"),
                        QStringLiteral("datePublished"),
                        QStringLiteral("datePublishedBitFlag"),
                        QStringLiteral("originalDatePublished"),
                        QStringLiteral("originalDatePublishedBitFlag"),
                        QStringLiteral("format"),
                        QStringLiteral("productDescription"),
                        QStringLiteral("locale"),
                        QStringLiteral("imageUrl"),
                        QStringLiteral("image")};
    switch (kind) {
    case ZTMediaKind::Book:
        keys << QStringLiteral("publisher") << QStringLiteral("volumeNumber")
             << QStringLiteral("editionNumber") << QStringLiteral("placePublished") << QStringLiteral("pages")
             << QStringLiteral("locClassification") << QStringLiteral("deweyClassNumber")
             << QStringLiteral("isbn") << QStringLiteral("lccn") << QStringLiteral("locSubjects");
        break;
    case ZTMediaKind::Album:
        keys << QStringLiteral("label") << QStringLiteral("artists") << QStringLiteral("upc")
             << QStringLiteral("asin") << QStringLiteral("numberOfMedia") << QStringLiteral("tracks");
        break;
    case ZTMediaKind::Movie:
        keys << QStringLiteral("studio") << QStringLiteral("directors") << QStringLiteral("actorRoles")
             << QStringLiteral("upc") << QStringLiteral("asin") << QStringLiteral("audienceRating")
             << QStringLiteral("aspectRatio") << QStringLiteral("regionCode") << QStringLiteral("duration")
             << QStringLiteral("numberOfMedia");
        break;
    case ZTMediaKind::Comic:
        keys << QStringLiteral("publisher") << QStringLiteral("pages") << QStringLiteral("issueNumber")
             << QStringLiteral("stories") << QStringLiteral("artistRoles")
             << QStringLiteral("artistRoleDicts") << QStringLiteral("characterRoles")
             << QStringLiteral("characterRoleDicts") << QStringLiteral("upc");
        break;
    }
    return keys;
}

void transferDataFromSourceDictionary(ZTMediaKind kind, const QVariantMap &source, QVariantMap &destination,
                                      QVariantMap &orders, int order, const QVariantMap &countryToCurrency)
{
    for (const QString &key : transferKeys(kind)) {
        if (takes(source, orders, key, order)) {
            destination.insert(key, source.value(key));
            orders.insert(key, order);
        }
    }

    if (takes(source, orders, PriceKey, order)) {
        destination.insert(PriceKey, source.value(PriceKey));
        orders.insert(PriceKey, order);
        if (hasValue(source, PriceLocaleKey)) {
            destination.insert(PriceLocaleKey, source.value(PriceLocaleKey));
        } else if (hasValue(source, LocaleKey)) {
            const QVariant currency = countryToCurrency.value(source.value(LocaleKey).toString());
            if (currency.isValid())
                destination.insert(PriceLocaleKey, currency);
        }
    }

    if (kind == ZTMediaKind::Book && takes(source, orders, AuthorsKey, order)) {
        destination.insert(AuthorRoleDictsKey, roleDictsFromNames(source.value(AuthorsKey)));
        orders.insert(AuthorsKey, order);
    }
}

void transferDataFromSourceDictionary(ZTMediaKind kind, const QVariantMap &source, QVariantMap &destination,
                                      QVariantMap &orders, int order)
{
    transferDataFromSourceDictionary(kind, source, destination, orders, order,
                                     ZTItemResources::countryCodeToCurrencyCodeDict());
}

} // namespace ZTLookupMerge
