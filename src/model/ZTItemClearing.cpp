// Blanking chosen attributes of an item, as the clear sheet does.
#include "model/ZTItem.h"

#include "model/ZTDateUtil.h"
#include "store/ZTImage.h"
#include "store/ZTManagedObjectContext.h"

void ZTItem::clearAttributes(const QStringList &keys)
{
    for (const QString &key : keys) {
        if (key == QLatin1String("cover")) {
            // The picture's file goes when the deleted row is committed.
            if (ZTImage *cover = coverImage()) {
                setToOneForKey(QStringLiteral("toCoverImage"), nullptr);
                if (managedObjectContext())
                    managedObjectContext()->deleteObject(cover);
            }
            updateCoverImageStatus();
        } else if (key == QLatin1String("price")) {
            setPrimitiveValueForKey(QVariant(), key);
            setPriceLocale(QStringLiteral("USD"));
        } else if (key == QLatin1String("pricePaid")) {
            setPrimitiveValueForKey(QVariant(), key);
            setPricePaidLocale(QStringLiteral("USD"));
        } else if (key == QLatin1String("title")) {
            setPrimitiveValueForKey(QVariant(), key);
            updateTitleWithoutLeadingArticle();
        } else if (key == QLatin1String("datePublished") || key == QLatin1String("originalDatePublished")) {
            setPrimitiveValueForKey(QVariant(), key);
            setPrimitiveValueForKey(0, ZTDateUtil::bitFlagKeyForDateKey(key));
        } else if (key == QLatin1String("lentToName")) {
            if (isLentOut())
                setLentToName(QString());
        } else if (key == QLatin1String("lentToEmail")) {
            if (isLentOut())
                setLentToEmail(QString());
        } else if (key == QLatin1String("dateLent")) {
            setDateLent(QDateTime());
        } else if (key == QLatin1String("dateDue")) {
            setDateDue(QDateTime());
            updateOverdueStatus();
        } else if (hasKey(key)) {
            // Lists of names become empty lists; their derived values follow.
            const QVariant current = valueForKey(key);
            const bool isList =
                current.typeId() == QMetaType::QStringList || current.typeId() == QMetaType::QVariantList;
            setValueForKey(isList ? QVariant(QStringList()) : QVariant(), key);
        }
    }
    if (!keys.isEmpty())
        updateAttributes();
}
