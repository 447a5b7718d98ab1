// The commands that show and make lists and smart lists.
#include "app/cli/ZTCli.h"
#include "app/cli/ZTCliLibrary.h"
#include "base/ZTStringExtras.h"
#include "library/ZTDocument.h"
#include "library/lists/ZTListDescriptor.h"
#include "library/lists/ZTQualifierText.h"
#include "library/lists/ZTSmartListController.h"
#include "lists/ZTList.h"
#include "lists/ZTSmartList.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {
// The row of the list table named `name`: the main list answers to its own name too.
int rowForName(const ZTDocument &document, const QString &name)
{
    for (int i = 0; i < document.itemLists().size(); ++i)
        if (document.itemLists().at(i)->name() == name)
            return i + 1;
    if (document.mainList() && document.mainList()->name() == name)
        return 0;
    return -1;
}
} // namespace

namespace ZTCliCommands {

int lists(const QStringList &arguments)
{
    QStringList args = arguments;
    const bool json = ZTCli::takeFlag(args, QStringLiteral("--json"));
    if (args.size() != 1)
        return ZTCli::fail(QStringLiteral("lists takes one PATH"));
    auto document = ZTCliLibrary::open(args.first());
    if (!document)
        return 2;
    QJsonArray rows;
    for (int row = 0; row <= document->itemLists().size(); ++row) {
        const ZTList *list = document->listAtRow(row);
        if (!list)
            continue;
        const QString kind = row == 0              ? QStringLiteral("library")
                             : list->isSmartList() ? QStringLiteral("smart")
                                                   : QStringLiteral("list");
        if (json)
            rows.append(QJsonObject{{QStringLiteral("row"), row},
                                    {QStringLiteral("name"), list->name()},
                                    {QStringLiteral("kind"), kind},
                                    {QStringLiteral("count"), list->count()}});
        else
            ZTCli::out(
                QStringLiteral("%1\t%2\t%3\t%4").arg(row).arg(kind).arg(list->count()).arg(list->name()));
    }
    if (json)
        ZTCli::printJson(rows);
    return 0;
}

int listAdd(const QStringList &args)
{
    if (args.size() < 2)
        return ZTCli::fail(QStringLiteral("list-add takes PATH, NAME and optionally OIDs"));
    if (!ZTText::containsNonWhitespace(args[1]))
        return ZTCli::fail(QStringLiteral("a list needs a name that is not blank"));
    auto document = ZTCliLibrary::open(args[0]);
    if (!document)
        return 2;
    const QStringList oids = args.mid(2);
    for (const QString &oid : oids)
        if (!document->itemForOid(oid))
            return ZTCli::fail(QStringLiteral("no item with oid %1").arg(oid));
    ZTList *list = document->addList();
    if (!list)
        return ZTCli::fail(QStringLiteral("cannot make a list"));
    list->setName(args[1]);
    for (const QString &oid : oids)
        if (!list->containsOid(oid))
            list->appendOid(oid);
    list->updateListData();
    if (!ZTCliLibrary::save(*document))
        return 2;
    ZTCli::out(QStringLiteral("%1\t%2").arg(document->itemLists().size()).arg(list->count()));
    return 0;
}

int smartAdd(const QStringList &arguments)
{
    QStringList args = arguments;
    const bool all = ZTCli::takeFlag(args, QStringLiteral("--all"));
    const bool any = ZTCli::takeFlag(args, QStringLiteral("--any"));
    const QStringList rules = ZTCli::takeOptions(args, QStringLiteral("--rule"));
    if (all && any)
        return ZTCli::fail(QStringLiteral("smart-add takes --all or --any, not both"));
    if (args.size() != 2)
        return ZTCli::fail(QStringLiteral("smart-add takes PATH, NAME, --all|--any and --rule RULE..."));
    if (!ZTText::containsNonWhitespace(args[1]))
        return ZTCli::fail(QStringLiteral("a smart list needs a name that is not blank"));
    if (rules.isEmpty())
        return ZTCli::fail(QStringLiteral("smart-add needs at least one --rule 'TITLE|OPERATOR|VALUE'"));
    auto document = ZTCliLibrary::open(args[0]);
    if (!document)
        return 2;
    QVariantList qualifiers;
    for (const QString &rule : rules) {
        QString error;
        const QVariantMap qualifier =
            ZTQualifierText::qualifierFromText(document->attributeTables(), rule, &error);
        if (qualifier.isEmpty())
            return ZTCli::fail(error);
        qualifiers << qualifier;
    }
    ZTSmartList *list =
        ZTSmartListController::saveSmartList(*document, nullptr, qualifiers, any ? 1 : 0, args[1]);
    if (!list)
        return ZTCli::fail(QStringLiteral("cannot make a smart list"));
    if (!ZTCliLibrary::save(*document))
        return 2;
    ZTCli::out(QStringLiteral("%1\t%2").arg(document->itemLists().size()).arg(list->count()));
    return 0;
}

int listShow(const QStringList &arguments)
{
    QStringList args = arguments;
    const bool json = ZTCli::takeFlag(args, QStringLiteral("--json"));
    if (args.size() != 2)
        return ZTCli::fail(QStringLiteral("list-show takes PATH and NAME"));
    auto document = ZTCliLibrary::open(args[0]);
    if (!document)
        return 2;
    const int row = rowForName(*document, args[1]);
    if (row < 0)
        return ZTCli::fail(QStringLiteral("no list named \"%1\"").arg(args[1]));
    // Rules that count days are brought up to date before they are shown.
    document->updateExpiredSmartLists();
    const ZTList *list = document->listAtRow(row);
    const QString description = ZTListDescriptor::descriptorForDocument(*list, *document);
    if (json) {
        ZTCli::printJson(QJsonObject{{QStringLiteral("name"), list->name()},
                                     {QStringLiteral("description"), description},
                                     {QStringLiteral("oids"), QJsonArray::fromStringList(list->itemOids())}});
    } else {
        ZTCli::out(description);
        for (const QString &oid : list->itemOids())
            ZTCli::out(oid);
    }
    return 0;
}

} // namespace ZTCliCommands
