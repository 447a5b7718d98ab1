// Lending an item and taking it back.
#include "app/cli/ZTCli.h"
#include "app/cli/ZTCliLibrary.h"
#include "library/ZTDocument.h"
#include "library/ZTLending.h"
#include "model/ZTItem.h"

#include <QDate>
#include <QDateTime>

namespace ZTCliCommands {

int lend(const QStringList &arguments)
{
    QStringList args = arguments;
    QString name, email, due;
    if (!ZTCli::takeOption(args, QStringLiteral("--to"), &name) || name.trimmed().isEmpty())
        return ZTCli::fail(QStringLiteral("lend needs --to NAME"));
    ZTCli::takeOption(args, QStringLiteral("--email"), &email);
    QDateTime dateDue;
    if (ZTCli::takeOption(args, QStringLiteral("--due"), &due)) {
        const QDate date = QDate::fromString(due, Qt::ISODate);
        if (!date.isValid())
            return ZTCli::fail(QStringLiteral("--due wants a date as YYYY-MM-DD, not \"%1\"").arg(due));
        dateDue = QDateTime(date, QTime(12, 0)); // noon: no time zone moves it to another day
    }
    if (args.size() != 2)
        return ZTCli::fail(QStringLiteral("lend takes PATH and OID"));
    auto document = ZTCliLibrary::open(args[0]);
    if (!document)
        return 2;
    ZTItem *item = document->itemForOid(args[1]);
    if (!item)
        return ZTCli::fail(QStringLiteral("the library has no item %1").arg(args[1]));
    ZTLending::lendItem(*item, name, email, QDateTime(), dateDue);
    item->setPrimitiveValueForKey(QDateTime::currentDateTimeUtc(), QStringLiteral("dateModified"));
    document->updateOid(item->oid());
    document->updateSmartListsWithItem(item);
    if (!ZTCliLibrary::save(*document))
        return 2;
    ZTCli::out(ZTLending::lendingText(*item));
    return 0;
}

int returnItem(const QStringList &args)
{
    if (args.size() != 2)
        return ZTCli::fail(QStringLiteral("return takes PATH and OID"));
    auto document = ZTCliLibrary::open(args[0]);
    if (!document)
        return 2;
    ZTItem *item = document->itemForOid(args[1]);
    if (!item)
        return ZTCli::fail(QStringLiteral("the library has no item %1").arg(args[1]));
    if (!item->isLentOut())
        return ZTCli::fail(QStringLiteral("item %1 is not lent out").arg(args[1]));
    ZTLending::returnItem(*item);
    item->setPrimitiveValueForKey(QDateTime::currentDateTimeUtc(), QStringLiteral("dateModified"));
    document->updateOid(item->oid());
    document->updateSmartListsWithItem(item);
    return ZTCliLibrary::save(*document) ? 0 : 2;
}

} // namespace ZTCliCommands
