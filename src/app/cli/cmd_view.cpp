// The commands that show a library as its window would: the displayed items,
// the statistics line, the columns, and the lists of duplicates and unlisted items.
#include "app/cli/ZTCli.h"
#include "model/ZTDateBit.h"
#include "model/ZTDateUtil.h"
#include "app/cli/ZTCliLibrary.h"
#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"
#include "library/ZTItemOperations.h"
#include "library/ZTViewPipeline.h"
#include "lists/ZTList.h"
#include "model/ZTItem.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

// Selects the list called `name` ("Library" is the main list); false if there is none.
bool selectListNamed(ZTViewPipeline &pipeline, const QString &name)
{
    if (name.isEmpty() || name == QLatin1String("Library")) {
        pipeline.selectListRow(0);
        return true;
    }
    const QList<ZTList *> &lists = pipeline.document().itemLists();
    for (int i = 0; i < lists.size(); ++i) {
        if (lists[i]->name() == name) {
            pipeline.selectListRow(i + 1);
            return true;
        }
    }
    return false;
}

// A cell as the item table shows it: lists joined, flags as Yes/No, dates as YYYY-MM-DD.
QVariant cellValue(const ZTAttributeTables &tables, const ZTItem &item, const QString &column)
{
    const ZTCellReader reader = tables.tableViewEntry(column);
    if (reader.type == QLatin1String("image"))
        return item.hasCoverImage();
    const QString key = reader.key.isEmpty() ? column : reader.key;
    const QVariant value = item.valueForKey(key);
    if (value.typeId() == QMetaType::QDateTime) {
        // A date shows only the parts the library knows of it: "1999", "2020-03".
        const QString bitKey = ZTDateUtil::bitFlagKeyForDateKey(key);
        const ZTDateBit bit = bitKey.isEmpty() ? ZTDateBit::FullDate : ZTDateBit::fromVariant(item.valueForKey(bitKey));
        const QDate date = value.toDateTime().toLocalTime().date();
        if (bit == ZTDateBit::Year)
            return date.toString(QStringLiteral("yyyy"));
        if (bit == ZTDateBit::YearMonth)
            return date.toString(QStringLiteral("yyyy-MM"));
        return date.toString(Qt::ISODate);
    }
    if (reader.type == QLatin1String("boolean"))
        return value.toBool();
    if (reader.toMany)
        return ZTItem::variantToStrings(value);
    return value;
}

QString cellText(const QVariant &value)
{
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? ZTViewPipeline::yesLabel() : ZTViewPipeline::noLabel();
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral("; "));
    if (value.typeId() == QMetaType::QDateTime)
        return value.toDateTime().toLocalTime().date().toString(Qt::ISODate);
    return value.toString()
        .replace(QLatin1Char('\t'), QLatin1Char(' '))
        .replace(QLatin1Char('\n'), QLatin1Char(' '));
}

// "title,year:desc" → sort entries by the columns' sort keys.
bool parseSort(const ZTAttributeTables &tables, const QString &text, QList<ZTSortEntry> *entries,
               QString *error)
{
    for (const QString &part : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        QString column = part.trimmed();
        bool ascending = true;
        if (const qsizetype colon = column.indexOf(QLatin1Char(':')); colon >= 0) {
            const QString order = column.mid(colon + 1).toLower();
            column = column.left(colon);
            if (order == QLatin1String("desc") || order == QLatin1String("descending"))
                ascending = false;
            else if (order != QLatin1String("asc") && order != QLatin1String("ascending")) {
                *error = QStringLiteral("unknown sort order \"%1\" (asc or desc)").arg(order);
                return false;
            }
        }
        if (column.isEmpty() || column == QLatin1String("cover")) {
            *error = QStringLiteral("cannot sort by \"%1\"").arg(part);
            return false;
        }
        entries->append({tables.sortKeyForColumn(column), ascending, -1});
    }
    return true;
}

} // namespace

namespace ZTCliCommands {

int items(const QStringList &arguments)
{
    QStringList args = arguments;
    const bool json = ZTCli::takeFlag(args, QStringLiteral("--json"));
    QString listName, search, filter, sort, columnText;
    ZTCli::takeOption(args, QStringLiteral("--list"), &listName);
    const bool searching = ZTCli::takeOption(args, QStringLiteral("--search"), &search);
    const bool filtering = ZTCli::takeOption(args, QStringLiteral("--filter"), &filter);
    ZTCli::takeOption(args, QStringLiteral("--sort"), &sort);
    ZTCli::takeOption(args, QStringLiteral("--columns"), &columnText);
    if (args.size() != 1)
        return ZTCli::fail(QStringLiteral("items takes one PATH"));
    auto document = ZTCliLibrary::open(args.first());
    if (!document)
        return 2;
    const ZTAttributeTables &tables = document->attributeTables();
    ZTViewPipeline pipeline(*document);
    if (!selectListNamed(pipeline, listName))
        return ZTCli::fail(QStringLiteral("the library has no list \"%1\"").arg(listName));
    if (searching)
        pipeline.controlTextDidChange(search);
    if (filtering) {
        const qsizetype equals = filter.indexOf(QLatin1Char('='));
        const QString label = equals < 0 ? filter : filter.left(equals);
        if (equals < 0 || !tables.filter(label))
            return ZTCli::fail(QStringLiteral("--filter wants Label=Value with one of: %1")
                                   .arg(tables.filterKeys().join(QStringLiteral(", "))));
        pipeline.setTab(ZTViewPipeline::Tab::Filter);
        pipeline.itemBrowserChanged(label, filter.mid(equals + 1));
    }
    if (!sort.isEmpty()) {
        QList<ZTSortEntry> entries;
        QString error;
        if (!parseSort(tables, sort, &entries, &error))
            return ZTCli::fail(error);
        pipeline.setSortEntries(entries); // not saved: the command only shows
    }
    const QStringList columns = columnText.isEmpty() ? QStringList{QStringLiteral("title")}
                                                     : columnText.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString &column : columns)
        if (!tables.column(column.trimmed()) && !tables.columnKeyDictionary().contains(column.trimmed()))
            return ZTCli::fail(
                QStringLiteral("unknown column \"%1\" (zettary-cli columns PATH lists them)").arg(column));

    QJsonArray rows;
    for (const QString &oid : pipeline.displayedOids()) {
        const ZTItem *item = document->itemForOid(oid);
        if (!item)
            continue;
        if (json) {
            QJsonObject row{{QStringLiteral("oid"), oid}};
            for (const QString &column : columns)
                row.insert(column.trimmed(),
                           ZTCliLibrary::toJson(cellValue(tables, *item, column.trimmed())));
            rows.append(row);
        } else {
            QStringList cells{oid};
            for (const QString &column : columns)
                cells << cellText(cellValue(tables, *item, column.trimmed()));
            ZTCli::out(cells.join(QLatin1Char('\t')));
        }
    }
    if (json)
        ZTCli::printJson(rows);
    return 0;
}

int stats(const QStringList &arguments)
{
    QStringList args = arguments;
    QString listName;
    ZTCli::takeOption(args, QStringLiteral("--list"), &listName);
    if (args.size() != 1)
        return ZTCli::fail(QStringLiteral("stats takes one PATH"));
    auto document = ZTCliLibrary::open(args.first());
    if (!document)
        return 2;
    ZTViewPipeline pipeline(*document);
    if (!selectListNamed(pipeline, listName))
        return ZTCli::fail(QStringLiteral("the library has no list \"%1\"").arg(listName));
    pipeline.updateItemStatistics();
    ZTCli::out(pipeline.itemStatisticsString());
    return 0;
}

int columns(const QStringList &args)
{
    if (args.size() != 1)
        return ZTCli::fail(QStringLiteral("columns takes one PATH"));
    auto document = ZTCliLibrary::open(args.first());
    if (!document)
        return 2;
    for (const QString &line : document->attributeTables().columnListing())
        ZTCli::out(line);
    return 0;
}

namespace {
int makeList(const QStringList &args, const char *command, ZTList *(ZTItemOperations::*find)())
{
    if (args.size() != 1)
        return ZTCli::fail(QStringLiteral("%1 takes one PATH").arg(QLatin1String(command)));
    auto document = ZTCliLibrary::open(args.first());
    if (!document)
        return 2;
    ZTViewPipeline pipeline(*document);
    pipeline.updateMainCaches();
    ZTItemOperations operations(pipeline);
    ZTList *list = (operations.*find)();
    if (!list)
        return ZTCli::fail(QStringLiteral("a library of this kind has no codes to compare"));
    if (!ZTCliLibrary::save(*document))
        return 2;
    ZTCli::out(QStringLiteral("%1: %2").arg(list->name()).arg(list->count()));
    return 0;
}
} // namespace

int duplicates(const QStringList &args)
{
    return makeList(args, "duplicates", &ZTItemOperations::findDuplicates);
}

int unlisted(const QStringList &args)
{
    return makeList(args, "unlisted", &ZTItemOperations::findUnlisted);
}

} // namespace ZTCliCommands
