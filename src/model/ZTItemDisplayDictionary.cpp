// Maps keyed by the labels the edit sheets show, turned into the dictionary form.
#include "model/ZTItem.h"

#include "import/ZTDisplayDictionary.h"

QVariantMap ZTItem::dictionaryFromDisplayDictionary(ZTMediaKind kind, const QVariantMap &display,
                                                    const QString &defaultCurrency)
{
    return ZTDisplayDictionary::dictionaryFromDisplayDictionary(kind, display, defaultCurrency);
}

void ZTItem::handleDisplayDictionary(const QVariantMap &display, const QString &defaultCurrency)
{
    handleDictionary(dictionaryFromDisplayDictionary(mediaKind(), display, defaultCurrency));
}
