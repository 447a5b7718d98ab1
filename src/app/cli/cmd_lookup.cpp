#include "app/cli/ZTCli.h"
#include "app/cli/ZTCliLibrary.h"

#include "base/ZTSettings.h"
#include "library/ZTDocument.h"
#include "lookup/ZTFetcher.h"
#include "lookup/ZTLookupRun.h"
#include "lookup/sites/ZTSiteRegistry.h"
#include "model/ZTCodeFormatter.h"
#include "model/ZTItem.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

// The dictionary as JSON; a downloaded cover is named by its size, not dumped.
QJsonObject resultToJson(const QVariantMap &item)
{
    QVariantMap printable = item;
    const QByteArray image = printable.take(QStringLiteral("image")).toByteArray();
    QJsonObject json = ZTCliLibrary::toJson(printable).toObject();
    if (!image.isEmpty())
        json.insert(QStringLiteral("image"), QStringLiteral("%1 bytes").arg(image.size()));
    return json;
}

} // namespace

namespace ZTCliCommands {

// Looks codes up with the library's active sites and prints what was found;
// with --add the finds become items of the library.
int lookup(const QStringList &arguments)
{
    QStringList args = arguments;
    const bool add = ZTCli::takeFlag(args, QStringLiteral("--add"));
    if (args.size() < 2)
        return ZTCli::fail(QStringLiteral("lookup takes PATH and at least one CODE"));
    auto document = ZTCliLibrary::open(args.takeFirst());
    if (!document)
        return 2;
    const ZTMediaKind kind = document->mediaKind();
    ZTCodeFormatter::setIsbnValidationAllowsASINs(true);
    QVariantList codes;
    for (const QString &text : std::as_const(args)) {
        const QVariantMap code = ZTCodeFormatter::codeDictionaryForRawCode(kind, text);
        if (code.isEmpty())
            return ZTCli::fail(QStringLiteral("\"%1\" is no %2 code").arg(text, ZTMediaKinds::cliName(kind)));
        codes << code;
    }

    const auto owned = ZTSiteRegistry::fetchersForLocaleArray(kind, ZTSiteRegistry::storedLocaleArray(kind));
    QList<ZTFetcher *> fetchers;
    for (const auto &fetcher : owned)
        fetchers << fetcher.get();
    ZTLookupRun run(kind, fetchers, ZTFetchManager::CoverImages::Fetch);
    const QList<QVariantMap> items = run.run(codes);

    QJsonArray printed;
    QStringList oids;
    for (const QVariantMap &item : items) {
        QJsonObject json = resultToJson(item);
        if (!add || item.isEmpty()) {
            printed.append(json);
            continue;
        }
        QVariantMap attributes = item;
        const QByteArray image = attributes.take(QStringLiteral("image")).toByteArray();
        ZTItem *created = document->addItemFromDictionary(attributes);
        if (created) {
            if (ZTItem::isValidImage(image))
                created->replaceCover({}, image, attributes.value(QStringLiteral("imageUrl")).toString(), {},
                                      false);
            oids << created->oid();
            document->updateOid(created->oid());
            json.insert(QStringLiteral("oid"), created->oid());
        }
        printed.append(json);
    }
    ZTCli::printJson(printed);
    if (add && !oids.isEmpty()) {
        document->updateChangeCount(ZTDocument::ChangeType::Done);
        if (!ZTCliLibrary::save(*document))
            return 2;
    }
    return 0;
}

} // namespace ZTCliCommands
