// zettary-cli export: a library as delimited text, XML, BibTeX or MLA.
#include "app/cli/ZTCli.h"
#include "app/cli/ZTCliLibrary.h"
#include "export/ZTExportConfigurationController.h"
#include "export/ZTExportController.h"
#include "export/ZTListPickerController.h"
#include "library/ZTDocument.h"
#include "lists/ZTList.h"

#include <QFile>

namespace ZTCliCommands {

int exportItems(const QStringList &arguments)
{
    QStringList args = arguments;
    QString format, keys, multiple, delimiter;
    if (!ZTCli::takeOption(args, QStringLiteral("--format"), &format))
        return ZTCli::fail(QStringLiteral("export needs --format tab|csv|xml|bibtex|mla"));
    const QStringList listNames = ZTCli::takeOptions(args, QStringLiteral("--list"));
    const bool hasKeys = ZTCli::takeOption(args, QStringLiteral("--keys"), &keys);
    const bool hasMultiple = ZTCli::takeOption(args, QStringLiteral("--multiple"), &multiple);
    const bool hasDelimiter = ZTCli::takeOption(args, QStringLiteral("--delimiter"), &delimiter);
    if (args.size() != 2)
        return ZTCli::fail(QStringLiteral("export takes PATH and OUT (a file, or - for standard output)"));

    static const QList<QPair<QString, QString>> formats{
        {QStringLiteral("tab"), QStringLiteral("ZTExportController")},
        {QStringLiteral("csv"), QStringLiteral("ZTExportController")},
        {QStringLiteral("xml"), QStringLiteral("ZTExportToXMLController")},
        {QStringLiteral("bibtex"), QStringLiteral("ZTExportToBibtexController")},
        {QStringLiteral("mla"), QStringLiteral("ZTExportToMLAController")}};
    QString className;
    for (const auto &[name, controllerClass] : formats)
        if (name == format)
            className = controllerClass;
    if (className.isEmpty())
        return ZTCli::fail(
            QStringLiteral("unknown format \"%1\" (tab, csv, xml, bibtex or mla)").arg(format));
    const bool delimited = className == QLatin1String("ZTExportController");
    if (!delimited && (hasKeys || hasMultiple || hasDelimiter))
        return ZTCli::fail(QStringLiteral("--keys, --multiple and --delimiter apply to tab and csv only"));

    auto document = ZTCliLibrary::open(args[0]);
    if (!document)
        return 2;
    ZTExportConfigurationController configuration(document.get());
    ZTListPickerController picker(document.get());
    configuration.setListPickerController(&picker);
    configuration.reset();

    int tag = -1;
    for (int i = 0; i < configuration.entries().size(); ++i)
        if (configuration.entries().at(i).className == className)
            tag = i;
    if (tag < 0)
        return ZTCli::fail(QStringLiteral("%1 export is for book libraries only").arg(format));

    if (!listNames.isEmpty()) {
        picker.setChoice(ZTListPickerController::Choice::SelectedLists);
        for (const QString &name : listNames) {
            if (!picker.tickListNamed(name)) {
                QStringList known;
                for (const ZTList *list : document->itemLists())
                    known << QLatin1Char('"') + list->name() + QLatin1Char('"');
                return ZTCli::fail(QStringLiteral("the library has no list \"%1\"%2")
                                       .arg(name, known.isEmpty()
                                                      ? QStringLiteral(" (it has no lists)")
                                                      : QStringLiteral("; its lists: ") + known.join(", ")));
            }
        }
    }

    if (delimited) {
        auto *text = static_cast<ZTExportController *>(configuration.controllerAt(tag));
        text->setExportFormat(format == QLatin1String("csv") ? ZTExportController::Format::Comma
                                                             : ZTExportController::Format::Tab);
        const QStringList offered = text->attributes();
        QStringList chosen = offered;
        if (hasKeys) {
            chosen = keys.split(QLatin1Char(','), Qt::SkipEmptyParts);
            for (QString &key : chosen) {
                key = key.trimmed();
                if (!offered.contains(key))
                    return ZTCli::fail(
                        QStringLiteral("--keys: \"%1\" cannot be exported from this library; the keys "
                                       "are: %2")
                            .arg(key, offered.join(QStringLiteral(","))));
            }
        }
        text->setAttributesToExport(chosen);
        if (hasMultiple) {
            if (multiple == QLatin1String("separate"))
                text->setExportMultipleAttributesOption(
                    ZTExportController::MultipleAttributes::SeparateColumns);
            else if (multiple == QLatin1String("single"))
                text->setExportMultipleAttributesOption(ZTExportController::MultipleAttributes::SingleColumn);
            else
                return ZTCli::fail(
                    QStringLiteral("--multiple is separate or single, not \"%1\"").arg(multiple));
        }
        // Values joined without anything between them could not be told
        // apart, so a single column gets "; " unless another is given.
        text->setMultipleDelimiter(hasDelimiter ? delimiter : QStringLiteral("; "));
    }

    if (!configuration.exportChoice(tag))
        return ZTCli::fail(QStringLiteral("nothing to export: %1 no items")
                               .arg(listNames.isEmpty() ? QStringLiteral("the library holds")
                                                        : QStringLiteral("the chosen lists hold")));
    const QString out = args[1];
    if (out == QLatin1String("-")) {
        ZTExportFormatController *controller = configuration.chosenController();
        controller->setOids(configuration.oidsToExport());
        QFile stdoutFile;
        if (!stdoutFile.open(stdout, QIODevice::WriteOnly))
            return ZTCli::fail(QStringLiteral("cannot write to standard output"));
        stdoutFile.write(controller->exportData(out));
        return 0;
    }
    QString error;
    if (!configuration.performExport(out, &error))
        return ZTCli::fail(QStringLiteral("cannot write \"%1\": %2").arg(out, error));
    return 0;
}

} // namespace ZTCliCommands
