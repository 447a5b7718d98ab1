#include "export/ZTExportToMLAController.h"

#include "base/ZTStringExtras.h"
#include "export/ZTBookCitation.h"
#include "model/ZTBook.h"

#include <QCoreApplication>
#include <QFileInfo>

QString ZTExportToMLAController::title() const
{
    return QCoreApplication::translate("Localizable", "MLA");
}

ZTStyledText ZTExportToMLAController::exportAttributedString()
{
    ZTStyledText text;
    for (const ZTItem *item : itemsToExport()) {
        const auto *book = dynamic_cast<const ZTBook *>(item);
        if (!book)
            continue;
        const ZTStyledText entry = ZTBookCitation::formatMLA(*book);
        if (!ZTText::containsNonWhitespace(entry.toPlainText()))
            continue;
        text.append(entry);
        text.append(QStringLiteral("\n"));
    }
    return text;
}

QByteArray ZTExportToMLAController::exportData(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("rtf"))
        return exportAttributedString().toRtf();
    if (suffix == QLatin1String("html") || suffix == QLatin1String("htm"))
        return exportAttributedString().toHtml().toUtf8();
    return exportString().toUtf8();
}
