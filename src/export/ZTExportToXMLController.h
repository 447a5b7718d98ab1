#pragma once

#include "export/ZTExportFormatController.h"

// Every item's XML form inside the kind's plural root element.
class ZTExportToXMLController : public ZTExportFormatController {
public:
    using ZTExportFormatController::ZTExportFormatController;
    QString className() const override { return QStringLiteral("ZTExportToXMLController"); }
    QString title() const override;
    QString selectorString() const override { return QStringLiteral("exportItemsToXML"); }
    QString fileType() const override { return QStringLiteral("xml"); }
    QString exportString() override;
};
