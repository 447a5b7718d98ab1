#pragma once

#include "export/ZTExportFormatController.h"
#include "export/ZTStyledText.h"

// One MLA entry per book, each on its own line, titles in italics. Written as
// RTF for a ".rtf" file, as an HTML page for ".html" or ".htm", and as plain
// text otherwise.
class ZTExportToMLAController : public ZTExportFormatController {
public:
    using ZTExportFormatController::ZTExportFormatController;
    QString className() const override { return QStringLiteral("ZTExportToMLAController"); }
    QString title() const override;
    QString selectorString() const override { return QStringLiteral("exportItemsToMLA"); }
    QString fileType() const override { return QStringLiteral("rtf"); }
    ZTStyledText exportAttributedString();
    QString exportString() override { return exportAttributedString().toPlainText(); }
    QByteArray exportData(const QString &path) override;
};
