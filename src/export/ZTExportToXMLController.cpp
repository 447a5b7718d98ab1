#include "export/ZTExportToXMLController.h"

#include "base/ZTStringExtras.h"
#include "library/ZTDocument.h"
#include "library/ZTItemXML.h"
#include "model/ZTItem.h"

#include <QCoreApplication>

QString ZTExportToXMLController::title() const
{
    return QCoreApplication::translate("Localizable", "XML");
}

QString ZTExportToXMLController::exportString()
{
    if (!document())
        return {};
    QString pieces;
    for (const ZTItem *item : itemsToExport()) {
        const QString piece = ZTItemXML::formatXML(*item);
        if (ZTText::containsNonWhitespace(piece))
            pieces += piece;
    }
    const QString root = ZTItemXML::xmlTagNamePlural(document()->mediaKind());
    return QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<%1>\n%2</%1>").arg(root, pieces);
}
