#include "export/ZTExportConfigurationController.h"

#include "export/ZTExportController.h"
#include "export/ZTExportToBibtexController.h"
#include "export/ZTExportToMLAController.h"
#include "export/ZTExportToXMLController.h"
#include "export/ZTListPickerController.h"
#include "library/ZTDocument.h"

#include <QCoreApplication>

QList<ZTExportFormatEntry> ZTExportConfigurationController::exportConfigurationArray(ZTMediaKind kind)
{
    QList<ZTExportFormatEntry> entries{
        {QStringLiteral("ZTExportCoverImagesController"), QStringLiteral("Cover Images"),
         QStringLiteral("exportCoverImages")},
        {QStringLiteral("ZTExportController"), QStringLiteral("Text file"),
         QStringLiteral("exportItemsToFile")},
        {QStringLiteral("ZTExportToHTMLController"), QStringLiteral("HTML"),
         QStringLiteral("exportItemsToHTML")},
        {QStringLiteral("ZTExportToXMLController"), QStringLiteral("XML"),
         QStringLiteral("exportItemsToXML")},
        {QStringLiteral("ZTExportToBibtexController"), QStringLiteral("BibTeX"),
         QStringLiteral("exportItemsToBibtex")},
        {QStringLiteral("ZTExportToHTMLiPhoneController"), QStringLiteral("HTML (iPhone/iPod touch)"),
         QStringLiteral("exportItemsToHTMLiPhone")},
        {QStringLiteral("ZTExportToMLAController"), QStringLiteral("MLA"),
         QStringLiteral("exportItemsToMLA")},
    };
    // The bibliographies are for books only.
    if (kind != ZTMediaKind::Book) {
        entries.removeAt(6);
        entries.removeAt(4);
    }
    return entries;
}

QString ZTExportConfigurationController::windowTitle()
{
    return QCoreApplication::translate("Localizable", "Export Configuration");
}

ZTExportConfigurationController::ZTExportConfigurationController(ZTDocument *document)
    : m_document(document),
      m_entries(exportConfigurationArray(document ? document->mediaKind() : ZTMediaKind::Book))
{
    for (const ZTExportFormatEntry &entry : std::as_const(m_entries)) {
        std::unique_ptr<ZTExportFormatController> controller;
        if (entry.className == QLatin1String("ZTExportController"))
            controller = std::make_unique<ZTExportController>(document);
        else if (entry.className == QLatin1String("ZTExportToXMLController"))
            controller = std::make_unique<ZTExportToXMLController>(document);
        else if (entry.className == QLatin1String("ZTExportToBibtexController"))
            controller = std::make_unique<ZTExportToBibtexController>(document);
        else if (entry.className == QLatin1String("ZTExportToMLAController"))
            controller = std::make_unique<ZTExportToMLAController>(document);
        m_controllers.push_back(std::move(controller));
    }
}

ZTExportConfigurationController::~ZTExportConfigurationController() = default;

ZTExportFormatController *ZTExportConfigurationController::controllerAt(int tag) const
{
    if (tag < 0 || tag >= int(m_controllers.size()))
        return nullptr;
    return m_controllers[size_t(tag)].get();
}

ZTExportFormatController *
ZTExportConfigurationController::controllerForClassNamed(const QString &className) const
{
    if (className.isEmpty())
        return nullptr;
    for (const auto &controller : m_controllers)
        if (controller && controller->className() == className)
            return controller.get();
    return nullptr;
}

void ZTExportConfigurationController::reset()
{
    for (const auto &controller : m_controllers)
        if (controller)
            controller->reset();
    m_state = -1;
    show(0);
    m_choice = -1;
    m_shouldExport = false;
}

QStringList ZTExportConfigurationController::oidsToExport() const
{
    return m_picker ? m_picker->itemOids() : QStringList();
}

bool ZTExportConfigurationController::exportAll() const
{
    return m_picker ? m_picker->exportAll() : true;
}

QList<ZTList *> ZTExportConfigurationController::lists() const
{
    return m_picker ? m_picker->lists() : QList<ZTList *>();
}

bool ZTExportConfigurationController::canExport() const
{
    return m_picker && m_picker->numberOfItemsSelected() > 0;
}

bool ZTExportConfigurationController::exportChoice(int tag)
{
    if (!isAvailable(tag) || !canExport())
        return false;
    m_choice = tag;
    m_shouldExport = true;
    return true;
}

QString ZTExportConfigurationController::selectorString() const
{
    if (m_choice < 0 || m_choice >= m_entries.size())
        return {};
    return m_entries.at(m_choice).selectorString;
}

bool ZTExportConfigurationController::performExport(const QString &path, QString *error)
{
    ZTExportFormatController *controller = chosenController();
    if (!m_shouldExport || !controller) {
        if (error)
            *error = QCoreApplication::translate("Export", "no export format is chosen");
        return false;
    }
    controller->setOids(oidsToExport());
    return controller->writeToPath(path, error);
}
