// The dictionary form of an item: how fetchers, imports, sheets and copies move
// data in and out of it.
#include "model/ZTItem.h"

#include "model/ZTLendingContext.h"
#include "model/ZTLocale.h"
#include "store/ZTImage.h"
#include "store/ZTManagedObjectContext.h"

namespace {
// The keys every item's dictionary form holds, in the order they are read back.
const QStringList &commonDictionaryKeys()
{
    static const QStringList keys{QStringLiteral("title"),
                                  QStringLiteral("genre"),
                                  QStringLiteral("source"),
                                  QStringLiteral("copies"),
                                  QStringLiteral("locale"),
                                  QStringLiteral("price"),
                                  QStringLiteral("priceLocale"),
                                  QStringLiteral("pricePaid"),
                                  QStringLiteral("pricePaidLocale"),
                                  QStringLiteral("notes"),
                                  QStringLiteral("condition"),
                                  QStringLiteral("productDescription"),
                                  QStringLiteral("keywords"),
                                  QStringLiteral("ownedFlag"),
                                  QStringLiteral("lockedFlag"),
                                  QStringLiteral("signedFlag"),
                                  QStringLiteral("location"),
                                  QStringLiteral("dateObtained"),
                                  QStringLiteral("dateObtainedBitFlag"),
                                  QStringLiteral("rating"),
                                  QStringLiteral("series"),
                                  QStringLiteral("imageSmall"),
                                  QStringLiteral("imageMedium"),
                                  QStringLiteral("imageLarge"),
                                  QStringLiteral("imageUser"),
                                  QStringLiteral("imageSmallUrl"),
                                  QStringLiteral("imageMediumUrl"),
                                  QStringLiteral("imageLargeUrl"),
                                  QStringLiteral("language"),
                                  QStringLiteral("originalLanguage"),
                                  QStringLiteral("format"),
                                  QStringLiteral("usedFlag"),
                                  QStringLiteral("dateUsed"),
                                  QStringLiteral("dateUsedBitFlag"),
                                  QStringLiteral("datePublished"),
                                  QStringLiteral("datePublishedBitFlag"),
                                  QStringLiteral("originalDatePublished"),
                                  QStringLiteral("originalDatePublishedBitFlag")};
    return keys;
}

// A map's every key is tested against a few names: the lengths settle most.
bool sameText(const QString &a, const QString &b)
{
    return a.size() == b.size() && a == b;
}

// Keys a map may carry that say how to take it rather than what the item holds.
bool ignoredInMaps(const QString &key)
{
    return sameText(key, ZTItemKey::image) || sameText(key, ZTItemKey::imageUrl) ||
           sameText(key, ZTItemKey::allKeys) || sameText(key, ZTItemKey::originalIsbn);
}

bool isListLike(const QVariant &v)
{
    return v.typeId() == QMetaType::QVariantList || v.typeId() == QMetaType::QStringList;
}

// Equality as a person would see it: lists element by element, maps key by key,
// numbers by value, dates by instant.
bool sameValue(const QVariant &a, const QVariant &b)
{
    const bool aNull = !a.isValid() || a.isNull();
    const bool bNull = !b.isValid() || b.isNull();
    if (aNull || bNull) {
        if (aNull && bNull)
            return true;
        const QVariant &other = aNull ? b : a;
        return isListLike(other) && other.toList().isEmpty();
    }
    if (isListLike(a) || isListLike(b)) {
        const QVariantList la = a.toList(), lb = b.toList();
        if (la.size() != lb.size())
            return false;
        for (qsizetype i = 0; i < la.size(); ++i)
            if (!sameValue(la[i], lb[i]))
                return false;
        return true;
    }
    if (a.typeId() == QMetaType::QVariantMap || b.typeId() == QMetaType::QVariantMap) {
        const QVariantMap ma = a.toMap(), mb = b.toMap();
        if (ma.keys() != mb.keys())
            return false;
        for (auto it = ma.constBegin(); it != ma.constEnd(); ++it)
            if (!sameValue(it.value(), mb.value(it.key())))
                return false;
        return true;
    }
    if (a.typeId() == QMetaType::QDateTime && b.typeId() == QMetaType::QDateTime)
        return a.toDateTime() == b.toDateTime();
    return a == b;
}
} // namespace

QVariantMap ZTItem::dictionary() const
{
    QVariantMap map;
    for (const QString &key : commonDictionaryKeys()) {
        const QVariant v = valueForKey(key);
        if (v.isValid() && !v.isNull())
            map.insert(key, v);
    }
    addDictionaryValues(map);
    return map;
}

void ZTItem::handleDictionary(const QVariantMap &dictionary)
{
    ZTManagedObjectContext *context = managedObjectContext();
    static const QStringList flags{QStringLiteral("usedFlag"), QStringLiteral("signedFlag"),
                                   QStringLiteral("ownedFlag"), QStringLiteral("lockedFlag")};
    static const QStringList zeroes{QStringLiteral("rating"), QStringLiteral("dateObtainedBitFlag"),
                                    QStringLiteral("dateUsedBitFlag"), QStringLiteral("datePublishedBitFlag"),
                                    QStringLiteral("originalDatePublishedBitFlag")};
    for (const QString &key : commonDictionaryKeys()) {
        if (key == ZTItemKey::locale) {
            const QString code = dictionary.value(key).toString();
            ZTManagedObject *row = code.isEmpty() ? nullptr : ZTLocale::localeForLocaleCode(code, context);
            setToOneForKey(QStringLiteral("toLocale"),
                           row ? row : ZTLocale::defaultLocaleInManagedObjectContext(context));
            continue;
        }
        if (key == ZTItemKey::priceLocale || key == ZTItemKey::pricePaidLocale) {
            const QString code = dictionary.value(key).toString();
            ZTManagedObject *row =
                code.isEmpty() ? nullptr : ZTPriceLocale::priceLocaleForPriceLocaleCode(code, context);
            if (!row)
                row = key == ZTItemKey::priceLocale
                          ? ZTPriceLocale::defaultPriceLocaleInManagedObjectContext(context)
                          : ZTPriceLocale::defaultPricePaidLocaleInManagedObjectContext(context);
            setToOneForKey(key == ZTItemKey::priceLocale ? QStringLiteral("toPriceLocale")
                                                         : QStringLiteral("toPricePaidLocale"),
                           row);
            continue;
        }
        if (key == ZTItemKey::keywords) {
            setValueForKey(dictionary.value(key, QVariantList()), key);
            continue;
        }
        // The small picture's address is read under a one-letter-short key; the
        // round trip through the dictionary form drops it, and imports rely on that.
        if (key == QLatin1String("imageSmallUrl")) {
            setValueForKey(dictionary.value(QStringLiteral("imageSmalUrl")), key);
            continue;
        }
        QVariant value = dictionary.value(key);
        if (!value.isValid()) {
            if (flags.contains(key))
                value = false;
            else if (zeroes.contains(key))
                value = 0;
        }
        setValueForKey(value, key);
        if (key == ZTItemKey::title)
            updateTitleWithoutLeadingArticle();
    }
    updateOverdueStatus();
    if (primitiveValueForKey(QStringLiteral("dateUsed")).isValid())
        setPrimitiveValueForKey(true, QStringLiteral("usedFlag"));
    handleKindDictionary(dictionary);
}

bool ZTItem::takeAttributesFromDictionary(const QVariantMap &dictionary)
{
    // An empty map stands for no map at all.
    if (dictionary.isEmpty())
        return false;
    bool changed = false;
    QStringList remaining;
    const QVariant allKeys = dictionary.value(ZTItemKey::allKeys);
    if (allKeys.isValid()) {
        for (const QVariant &k : allKeys.toList())
            remaining << k.toString();
    }
    // Every derived value is recomputed at the end; these two are needed at once
    // by later keys of the same map.
    auto recompute = [this](const QString &key) {
        if (sameText(key, ZTItemKey::title) || sameText(key, ZTItemKey::locale))
            updateTitleWithoutLeadingArticle();
        else if (sameText(key, ZTItemKey::dateDue))
            updateOverdueStatus();
    };
    const KeyAccessTable &keys = keyAccess();
    for (auto it = dictionary.constBegin(); it != dictionary.constEnd(); ++it) {
        const QString &key = it.key();
        if (ignoredInMaps(key))
            continue;
        if (!remaining.isEmpty())
            remaining.removeAll(key);
        // Keys the item computes or guards (its identity, stored blobs) cannot
        // be changed from a map, so they count as no change.
        const auto access = keys.constFind(key);
        if (access == keys.constEnd() || !access->settable)
            continue;
        const QVariant current = read(*access);
        QVariant incoming = it.value();
        if (access->attribute)
            incoming = incoming.isValid() && !incoming.isNull() ? normalized(*access->attribute, incoming)
                                                                : QVariant();
        if (sameValue(current, incoming))
            continue;
        write(*access, incoming);
        recompute(key);
        changed = true;
    }
    for (const QString &key : std::as_const(remaining)) {
        if (key == ZTItemKey::image || key == ZTItemKey::imageUrl || key == ZTItemKey::allKeys)
            continue;
        if (!hasKey(key))
            continue;
        const QVariant current = valueForKey(key);
        if (!current.isValid() || current.isNull() || (isListLike(current) && current.toList().isEmpty()))
            continue;
        setValueForKey(QVariant(), key);
        recompute(key);
        changed = true;
    }
    // Codes are always taken from the map: a missing or blank code clears the item's.
    for (const QString &code : itemCodeTypes()) {
        const QString text = dictionary.value(code).toString();
        const QVariant incoming = text.trimmed().isEmpty() ? QVariant() : QVariant(text);
        if (!sameValue(valueForKey(code), incoming)) {
            setValueForKey(incoming, code);
            changed = true;
        }
    }
    if (changed)
        setPrimitiveValueForKey(QDateTime::currentDateTimeUtc(), ZTItemKey::dateModified);
    updateAttributes();
    return changed;
}

ZTItem *ZTItem::clone(ZTManagedObjectContext *target) const
{
    if (!target || !entity())
        return nullptr;
    auto *copy = static_cast<ZTItem *>(target->insertNewObject(entity()->name));
    if (!copy)
        return nullptr;
    copy->takeAttributesFromDictionary(dictionary());
    const QDateTime now = QDateTime::currentDateTimeUtc();
    copy->setPrimitiveValueForKey(now, ZTItemKey::dateAdded);
    copy->setPrimitiveValueForKey(now, ZTItemKey::dateModified);
    if (ZTImage *cover = coverImage()) {
        if (ZTImage *coverCopy = cover->clone(target)) {
            copy->setToOneForKey(QStringLiteral("toCoverImage"), coverCopy);
            target->insertImageWithFilename(coverCopy->filename(), cover->filename(), managedObjectContext(),
                                            !cover->hasBeenSaved());
        }
    }
    copy->updateCoverImageStatus();
    if (ZTLendingContext *lending = lendingContext())
        copy->setToOneForKey(QStringLiteral("toLendingContext"), lending->clone(target));
    copy->updateOverdueStatus();
    return copy;
}
