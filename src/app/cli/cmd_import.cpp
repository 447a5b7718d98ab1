// zettary-cli import: a delimited text file into a library.
#include "app/cli/ZTCli.h"
#include "app/cli/ZTCliLibrary.h"
#include "import/ZTDelimitedText.h"
#include "import/ZTItemImportController.h"
#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"

namespace {

// The file column an option "Column=…" names, and the text after its "=".
// Columns are matched whole (as written, or without their quotes), so titles
// may themselves hold "="; the longest title that fits wins.
int columnForOption(const ZTItemImportController &importer, const QString &option, QString *rest)
{
    int best = -1;
    qsizetype bestLength = -1;
    for (int i = 0; i < importer.keyDicts().size(); ++i) {
        const QString &title = importer.keyDicts().at(i).fromColumn;
        for (const QString &name : {title, ZTDelimitedText::cleanCell(title)}) {
            if (!name.isEmpty() && option.startsWith(name + QLatin1Char('=')) && name.size() > bestLength) {
                best = i;
                bestLength = name.size();
                *rest = option.mid(name.size() + 1);
            }
        }
    }
    return best;
}

QString describe(const ZTItemImportController &importer, const ZTImportColumn &column)
{
    if (!column.state)
        return QStringLiteral("%1 -> (not imported)").arg(column.fromColumn);
    QString line = QStringLiteral("%1 -> %2").arg(column.fromColumn, column.toColumn);
    const ZTTypedAttribute *attribute = importer.attributeForTitle(column.toColumn);
    if (attribute && attribute->toMany && !column.value.toString().isEmpty())
        line += QStringLiteral(" (split at \"%1\")").arg(column.value.toString());
    else if (attribute && attribute->type == QLatin1String("date"))
        line += QStringLiteral(" (dates %1)")
                    .arg(ZTItemImportController::dateDicts().value(column.value.toInt()).displayFormat);
    return line;
}

int dateFormatIndex(const QString &text)
{
    bool ok = false;
    const int index = text.toInt(&ok);
    if (ok)
        return index >= 0 && index < ZTItemImportController::dateDicts().size() ? index : -1;
    for (int i = 0; i < ZTItemImportController::dateDicts().size(); ++i)
        if (ZTItemImportController::dateDicts().at(i).displayFormat.compare(text, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

} // namespace

namespace ZTCliCommands {

int importItems(const QStringList &arguments)
{
    QStringList args = arguments;
    const QStringList maps = ZTCli::takeOptions(args, QStringLiteral("--map"));
    const QStringList splits = ZTCli::takeOptions(args, QStringLiteral("--split"));
    const QStringList dates = ZTCli::takeOptions(args, QStringLiteral("--date"));
    if (args.size() != 2)
        return ZTCli::fail(QStringLiteral("import takes PATH and a text FILE"));
    auto document = ZTCliLibrary::open(args[0]);
    if (!document)
        return 2;

    ZTItemImportController importer(document.get());
    if (!importer.loadFile(args[1]) || !importer.fileProblem().isEmpty())
        return ZTCli::fail(QStringLiteral("cannot import \"%1\": %2").arg(args[1], importer.fileProblem()));

    if (!maps.isEmpty()) {
        for (ZTImportColumn &column : importer.keyDicts())
            column.state = false;
        for (const QString &map : maps) {
            QString title;
            const int column = columnForOption(importer, map, &title);
            if (column < 0)
                return ZTCli::fail(QStringLiteral("--map %1: the file has no such column").arg(map));
            const auto match =
                std::find_if(importer.toColumns().begin(), importer.toColumns().end(),
                             [&](const QString &t) { return t.compare(title, Qt::CaseInsensitive) == 0; });
            if (match == importer.toColumns().end())
                return ZTCli::fail(
                    QStringLiteral("--map %1: \"%2\" is no attribute of this library; choose one of: %3")
                        .arg(map, title, importer.toColumns().join(QStringLiteral(", "))));
            importer.setToColumn(column, *match);
        }
    }
    for (const QString &split : splits) {
        QString delimiter;
        const int column = columnForOption(importer, split, &delimiter);
        if (column < 0)
            return ZTCli::fail(QStringLiteral("--split %1: the file has no such column").arg(split));
        const ZTImportColumn &record = importer.keyDicts().at(column);
        const ZTTypedAttribute *attribute = importer.attributeForTitle(record.toColumn);
        if (!record.state || !attribute || !attribute->toMany)
            return ZTCli::fail(QStringLiteral("--split %1: the column is not imported into an attribute with "
                                              "several values")
                                   .arg(split));
        importer.keyDicts()[column].value = delimiter;
    }
    for (const QString &date : dates) {
        QString format;
        const int column = columnForOption(importer, date, &format);
        if (column < 0)
            return ZTCli::fail(QStringLiteral("--date %1: the file has no such column").arg(date));
        const int index = dateFormatIndex(format);
        if (index < 0)
            return ZTCli::fail(
                QStringLiteral("--date %1: the format is an index from 0 to 7 or one of MM/DD/YYYY, "
                               "DD/MM/YYYY, YYYY/MM/DD, YYYY/DD/MM, MM-DD-YYYY, DD-MM-YYYY, "
                               "YYYY-MM-DD, YYYY-DD-MM")
                    .arg(date));
        importer.keyDicts()[column].value = index;
    }

    for (const ZTImportColumn &column : importer.keyDicts())
        ZTCli::out(describe(importer, column));
    int added = 0;
    if (importer.save(&added) == ZTItemImportController::SaveResult::NoColumnsSelected)
        return ZTCli::fail(ZTItemImportController::noColumnsMessage());
    if (added > 0 && !ZTCliLibrary::save(*document))
        return 2;
    ZTCli::out(QStringLiteral("imported %1 item(s)").arg(added));
    return 0;
}

} // namespace ZTCliCommands
