#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

// The locale, currency and Dewey tables shipped with the program. Each is read
// the first time it is asked for and kept for the life of the process; a
// missing or unreadable file gives an empty table, never an error.
class ZTItemResources {
public:
    // Two-letter country codes offered as an item's locale.
    static const QStringList &locales();
    // ISO currency codes offered as an item's price locale.
    static const QStringList &priceLocales();
    // Country code -> currency code, used when a lookup gives a price but no
    // currency.
    static const QVariantMap &countryCodeToCurrencyCodeDict();
    // Currency code -> symbol shown by the money formatters.
    static const QVariantMap &currencyCodeToCurrencySymbolDict();
    // Three-digit Dewey section -> its class name.
    static const QVariantMap &deweyClassNames();

    // The readers behind the accessors, open for other tables and for tests.
    // Entries of the wrong type are left out.
    static QStringList loadStringArray(const QString &path);
    static QVariantMap loadJsonObject(const QString &path);
    // A dictionary property list, XML or binary; only its string values are kept.
    static QVariantMap loadPropertyListStrings(const QString &path);
};
