#pragma once

#include "store/ZTManagedObject.h"

class ZTManagedObjectContext;

// A country of an item's origin, by two-letter code.
class ZTLocale : public ZTManagedObject {
public:
    QString code() const { return primitiveValueForKey(QStringLiteral("code")).toString(); }
    static ZTManagedObject *defaultLocaleInManagedObjectContext(ZTManagedObjectContext *context);
    static ZTManagedObject *localeForLocaleCode(const QString &code, ZTManagedObjectContext *context);
};

// A currency, by ISO code.
class ZTPriceLocale : public ZTManagedObject {
public:
    QString code() const { return primitiveValueForKey(QStringLiteral("code")).toString(); }
    static ZTManagedObject *defaultPriceLocaleInManagedObjectContext(ZTManagedObjectContext *context);
    static ZTManagedObject *defaultPricePaidLocaleInManagedObjectContext(ZTManagedObjectContext *context);
    static ZTManagedObject *priceLocaleForPriceLocaleCode(const QString &code, ZTManagedObjectContext *context);
};
