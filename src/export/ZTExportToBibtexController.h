#pragma once

#include "export/ZTExportFormatController.h"

// One BibTeX record per book. Citation keys are made unique within the file by
// a letter after a repeated one (Knuth:ArtComp1968, Knuth:ArtComp1968a …).
class ZTExportToBibtexController : public ZTExportFormatController {
public:
    using ZTExportFormatController::ZTExportFormatController;
    QString className() const override { return QStringLiteral("ZTExportToBibtexController"); }
    QString title() const override;
    QString selectorString() const override { return QStringLiteral("exportItemsToBibtex"); }
    QString fileType() const override { return QStringLiteral("bib"); }
    QString exportString() override;
};
