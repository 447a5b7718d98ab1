#include "model/ZTItemResources.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <plist/plist.h>

#include <cstdlib>
#include <limits>
#include <memory>

namespace {

QByteArray readAll(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

QJsonDocument readJson(const QString &path)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(readAll(path), &error);
    return error.error == QJsonParseError::NoError ? document : QJsonDocument();
}

struct PlistDeleter {
    void operator()(void *node) const { plist_free(static_cast<plist_t>(node)); }
};
using PlistHandle = std::unique_ptr<void, PlistDeleter>;

} // namespace

QStringList ZTItemResources::loadStringArray(const QString &path)
{
    QStringList result;
    const QJsonArray array = readJson(path).array();
    for (const QJsonValue &value : array) {
        if (value.isString())
            result.append(value.toString());
    }
    return result;
}

QVariantMap ZTItemResources::loadJsonObject(const QString &path)
{
    return readJson(path).object().toVariantMap();
}

QVariantMap ZTItemResources::loadPropertyListStrings(const QString &path)
{
    QVariantMap result;
    const QByteArray data = readAll(path);
    if (data.isEmpty() || data.size() > std::numeric_limits<int>::max())
        return result;
    plist_t root = nullptr;
    plist_from_memory(data.constData(), static_cast<uint32_t>(data.size()), &root);
    const PlistHandle owner(root);
    if (!root || plist_get_node_type(root) != PLIST_DICT)
        return result;

    plist_dict_iter iterator = nullptr;
    plist_dict_new_iter(root, &iterator);
    if (!iterator)
        return result;
    for (;;) {
        char *key = nullptr;
        plist_t value = nullptr;
        plist_dict_next_item(root, iterator, &key, &value);
        if (!key)
            break;
        if (value && plist_get_node_type(value) == PLIST_STRING) {
            uint64_t length = 0;
            const char *text = plist_get_string_ptr(value, &length);
            if (text)
                result.insert(QString::fromUtf8(key),
                              QString::fromUtf8(text, static_cast<qsizetype>(length)));
        }
        std::free(key);
    }
    std::free(iterator);
    return result;
}

const QStringList &ZTItemResources::locales()
{
    static const QStringList s_locales = loadStringArray(QStringLiteral(":/locales.json"));
    return s_locales;
}

const QStringList &ZTItemResources::priceLocales()
{
    static const QStringList s_priceLocales = loadStringArray(QStringLiteral(":/priceLocales.json"));
    return s_priceLocales;
}

const QVariantMap &ZTItemResources::countryCodeToCurrencyCodeDict()
{
    static const QVariantMap s_currencies =
        loadJsonObject(QStringLiteral(":/countryCodeToCurrencyCode.json"));
    return s_currencies;
}

const QVariantMap &ZTItemResources::currencyCodeToCurrencySymbolDict()
{
    static const QVariantMap s_symbols =
        loadJsonObject(QStringLiteral(":/currencyCodeToCurrencySymbol.json"));
    return s_symbols;
}

const QVariantMap &ZTItemResources::deweyClassNames()
{
    static const QVariantMap s_names = loadPropertyListStrings(QStringLiteral(":/DDS.plist"));
    return s_names;
}
