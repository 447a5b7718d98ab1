// The commands that make a library and work on its items one by one.
#include "app/cli/ZTCli.h"
#include "app/cli/ZTCliLibrary.h"
#include "library/ZTDocument.h"
#include "lists/ZTList.h"
#include "model/ZTItem.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>

namespace ZTCliCommands {

int newLibrary(const QStringList &arguments)
{
    QStringList args = arguments;
    QString kindName;
    if (!ZTCli::takeOption(args, QStringLiteral("--kind"), &kindName))
        return ZTCli::fail(QStringLiteral("new needs --kind book|music|movie|comic"));
    ZTMediaKind kind;
    if (!ZTMediaKinds::fromCliName(kindName, &kind))
        return ZTCli::fail(QStringLiteral("unknown kind \"%1\" (book, music, movie or comic)").arg(kindName));
    if (args.size() != 1)
        return ZTCli::fail(QStringLiteral("new takes one PATH"));
    QString path = args.first();
    while (path.endsWith(QLatin1Char('/')) && path.size() > 1)
        path.chop(1);
    const QString extension = ZTMediaKinds::packageExtension(kind);
    if (QFileInfo(path).suffix() != extension)
        path += QLatin1Char('.') + extension;
    if (QFileInfo::exists(path))
        return ZTCli::fail(QStringLiteral("\"%1\" already exists").arg(path));
    QString error;
    if (!ZTDocument::createPackage(path, kind, &error))
        return ZTCli::fail(error);
    ZTCli::out(QFileInfo(path).absoluteFilePath());
    return 0;
}

int info(const QStringList &arguments)
{
    QStringList args = arguments;
    const bool json = ZTCli::takeFlag(args, QStringLiteral("--json"));
    if (args.size() != 1)
        return ZTCli::fail(QStringLiteral("info takes one PATH"));
    auto document = ZTCliLibrary::open(args.first());
    if (!document)
        return 2;
    const int items = int(document->allItems().size());
    const int lists = int(document->itemLists().size());
    if (json) {
        ZTCli::printJson(QJsonObject{{QStringLiteral("kind"), ZTMediaKinds::cliName(document->mediaKind())},
                                     {QStringLiteral("itemType"), document->itemType()},
                                     {QStringLiteral("items"), items},
                                     {QStringLiteral("lists"), lists}});
    } else {
        ZTCli::out(QStringLiteral("kind: %1").arg(ZTMediaKinds::cliName(document->mediaKind())));
        ZTCli::out(QStringLiteral("items: %1").arg(items));
        ZTCli::out(QStringLiteral("lists: %1").arg(lists));
    }
    return 0;
}

int add(const QStringList &args)
{
    if (args.size() != 2)
        return ZTCli::fail(QStringLiteral("add takes PATH and a JSON FILE (or - for standard input)"));
    QFile file;
    if (args[1] == QLatin1String("-")) {
        if (!file.open(stdin, QIODevice::ReadOnly))
            return ZTCli::fail(QStringLiteral("cannot read standard input"));
    } else {
        file.setFileName(args[1]);
        if (!file.open(QIODevice::ReadOnly))
            return ZTCli::fail(QStringLiteral("cannot read \"%1\": %2").arg(args[1], file.errorString()));
    }
    QJsonParseError parseError;
    const QJsonDocument json = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (json.isNull())
        return ZTCli::fail(QStringLiteral("\"%1\" is not JSON: %2 at byte %3")
                               .arg(args[1], parseError.errorString())
                               .arg(parseError.offset));
    QJsonArray entries;
    if (json.isObject())
        entries.append(json.object());
    else
        entries = json.array();
    for (const QJsonValue &entry : std::as_const(entries))
        if (!entry.isObject())
            return ZTCli::fail(QStringLiteral("every item must be a JSON object"));
    auto document = ZTCliLibrary::open(args[0]);
    if (!document)
        return 2;
    QStringList oids;
    for (const QJsonValue &entry : std::as_const(entries)) {
        ZTItem *item = document->addItemFromDictionary(entry.toObject().toVariantMap());
        if (item)
            oids << item->oid();
    }
    document->updateChangeCount(ZTDocument::ChangeType::Done);
    if (!ZTCliLibrary::save(*document))
        return 2;
    for (const QString &oid : std::as_const(oids))
        ZTCli::out(oid);
    return 0;
}

int get(const QStringList &args)
{
    if (args.size() != 2)
        return ZTCli::fail(QStringLiteral("get takes PATH and OID"));
    auto document = ZTCliLibrary::open(args[0]);
    if (!document)
        return 2;
    ZTItem *item = document->itemForOid(args[1]);
    if (!item)
        return ZTCli::fail(QStringLiteral("no item with oid %1").arg(args[1]));
    ZTCli::printJson(ZTCliLibrary::itemToJson(*item));
    return 0;
}

int set(const QStringList &args)
{
    if (args.size() < 3)
        return ZTCli::fail(QStringLiteral("set takes PATH, OID and at least one KEY=VALUE"));
    QVariantMap changes;
    for (const QString &assignment : args.mid(2)) {
        const int eq = assignment.indexOf(QLatin1Char('='));
        if (eq <= 0)
            return ZTCli::fail(QStringLiteral("\"%1\" is not KEY=VALUE").arg(assignment));
        const QString key = assignment.left(eq);
        const QString text = assignment.mid(eq + 1);
        // A value that reads as JSON (a list, a number, true) is taken as such; anything else is text.
        QJsonParseError error;
        const QJsonDocument wrapped = QJsonDocument::fromJson("[" + text.toUtf8() + "]", &error);
        const bool isJson = !wrapped.isNull() && wrapped.array().size() == 1 && !text.trimmed().isEmpty() &&
                            !text.trimmed().front().isLetter();
        changes.insert(key, isJson ? wrapped.array().first().toVariant() : QVariant(text));
    }
    auto document = ZTCliLibrary::open(args[0]);
    if (!document)
        return 2;
    ZTItem *item = document->itemForOid(args[1]);
    if (!item)
        return ZTCli::fail(QStringLiteral("no item with oid %1").arg(args[1]));
    for (auto it = changes.constBegin(); it != changes.constEnd(); ++it)
        if (!item->hasKey(it.key()))
            return ZTCli::fail(QStringLiteral("a %1 has no attribute \"%2\"").arg(item->itemType().toLower(), it.key()));
    // Codes the command line does not mention stay as they are.
    for (const QString &code : item->itemCodeTypes())
        if (!changes.contains(code) && item->valueForKey(code).isValid())
            changes.insert(code, item->valueForKey(code));
    if (item->takeAttributesFromDictionary(changes)) {
        document->updateOid(item->oid());
        document->updateSmartListsWithItem(item);
        document->updateChangeCount(ZTDocument::ChangeType::Done);
    }
    if (!ZTCliLibrary::save(*document))
        return 2;
    return 0;
}

int remove(const QStringList &args)
{
    if (args.size() < 2)
        return ZTCli::fail(QStringLiteral("remove takes PATH and one or more OIDs"));
    auto document = ZTCliLibrary::open(args[0]);
    if (!document)
        return 2;
    const QStringList oids = args.mid(1);
    for (const QString &oid : oids)
        if (!document->itemForOid(oid))
            return ZTCli::fail(QStringLiteral("no item with oid %1").arg(oid));
    document->removeItemsFromLibrary(oids);
    document->updateChangeCount(ZTDocument::ChangeType::Done);
    return ZTCliLibrary::save(*document) ? 0 : 2;
}

int cover(const QStringList &args)
{
    if (args.size() != 3)
        return ZTCli::fail(QStringLiteral("cover takes PATH, OID and IMAGEFILE"));
    QFile file(args[2]);
    if (!file.open(QIODevice::ReadOnly))
        return ZTCli::fail(QStringLiteral("cannot read \"%1\": %2").arg(args[2], file.errorString()));
    const QByteArray bytes = file.readAll();
    if (!ZTItem::isValidImage(bytes))
        return ZTCli::fail(QStringLiteral("\"%1\" is not a picture this program can read").arg(args[2]));
    auto document = ZTCliLibrary::open(args[0]);
    if (!document)
        return 2;
    ZTItem *item = document->itemForOid(args[1]);
    if (!item)
        return ZTCli::fail(QStringLiteral("no item with oid %1").arg(args[1]));
    item->replaceCover({}, bytes, QFileInfo(args[2]).fileName(), {}, true);
    document->updateOid(item->oid());
    document->updateSmartListsWithItem(item);
    document->updateChangeCount(ZTDocument::ChangeType::Done);
    return ZTCliLibrary::save(*document) ? 0 : 2;
}

} // namespace ZTCliCommands
