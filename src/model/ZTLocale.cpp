#include "model/ZTLocale.h"

#include "store/ZTManagedObjectContext.h"

#include <QMutex>

namespace {
const QString s_code = QStringLiteral("code");

ZTManagedObject *byCode(const QString &entity, const QString &code, ZTManagedObjectContext *context)
{
    if (!context || code.isNull())
        return nullptr;
    return context->firstObjectWithText(entity, s_code, code);
}

// The default rows are looked up once per process; the identity found first is
// remembered and resolved against whichever store asks. A store whose row sits
// under another key is asked again without changing what is remembered.
ZTManagedObject *rememberedRow(qint64 &remembered, const QString &entity, const QString &code,
                               ZTManagedObjectContext *context)
{
    static QMutex mutex;
    if (!context)
        return nullptr;
    qint64 key;
    {
        QMutexLocker lock(&mutex);
        if (remembered == 0) {
            ZTManagedObject *row = byCode(entity, code, context);
            if (row && !row->isTemporaryID())
                remembered = row->primaryKey();
            return row;
        }
        key = remembered;
    }
    // The first row with the code is remembered by the context; it is nearly
    // always the remembered one, which spares a walk over every row.
    ZTManagedObject *first = byCode(entity, code, context);
    if (first && first->primaryKey() == key)
        return first;
    ZTManagedObject *row = context->objectWithPrimaryKey(entity, key);
    if (row && row->primitiveValueForKey(s_code).toString() == code)
        return row;
    return first;
}
} // namespace

ZTManagedObject *ZTLocale::defaultLocaleInManagedObjectContext(ZTManagedObjectContext *context)
{
    static qint64 remembered = 0;
    return rememberedRow(remembered, QStringLiteral("ZTLocale"), QStringLiteral("US"), context);
}

ZTManagedObject *ZTLocale::localeForLocaleCode(const QString &code, ZTManagedObjectContext *context)
{
    return byCode(QStringLiteral("ZTLocale"), code, context);
}

ZTManagedObject *ZTPriceLocale::defaultPriceLocaleInManagedObjectContext(ZTManagedObjectContext *context)
{
    static qint64 remembered = 0;
    return rememberedRow(remembered, QStringLiteral("ZTPriceLocale"), QStringLiteral("USD"), context);
}

ZTManagedObject *ZTPriceLocale::defaultPricePaidLocaleInManagedObjectContext(ZTManagedObjectContext *context)
{
    static qint64 remembered = 0;
    return rememberedRow(remembered, QStringLiteral("ZTPriceLocale"), QStringLiteral("USD"), context);
}

ZTManagedObject *ZTPriceLocale::priceLocaleForPriceLocaleCode(const QString &code,
                                                              ZTManagedObjectContext *context)
{
    return byCode(QStringLiteral("ZTPriceLocale"), code, context);
}
