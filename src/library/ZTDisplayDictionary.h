#pragma once

#include "model/ZTMediaKind.h"

#include <QHash>
#include <QString>
#include <QVariantMap>

// The edit sheets and the delimited importer speak of attributes by their
// display labels ("Obtained From", "Date Read"); this turns such a map into
// the item's dictionary form. Labels without a key of the kind are dropped.
namespace ZTDisplayDictionary {

// Translated label -> attribute key, for the kind.
const QHash<QString, QString> &labelToKey(ZTMediaKind kind);

// The dictionary form of a display map. The currencies are set to the
// library's default currency and the item is left unlocked.
QVariantMap dictionaryFromDisplayDictionary(ZTMediaKind kind, const QVariantMap &display,
                                            const QString &defaultCurrency);

// The settings' default currency, "USD" when none is chosen.
QString defaultCurrency();

// The map that makes a blank item equal to one filled by handleDictionary:
// the absent flags read false (an imported row without an "Owned" column is
// not owned), absent counts 0, and a date used marks the item used.
QVariantMap withHandleDictionaryDefaults(QVariantMap dictionary);

} // namespace ZTDisplayDictionary
