#include "export/ZTExportFormatController.h"

#include "library/ZTDocument.h"

#include <QSaveFile>

QByteArray ZTExportFormatController::exportData(const QString &)
{
    return exportString().toUtf8();
}

bool ZTExportFormatController::writeToPath(const QString &path, QString *error)
{
    const QByteArray data = exportData(path);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit()) {
        if (error)
            *error = file.errorString();
        return false;
    }
    return true;
}

QList<ZTItem *> ZTExportFormatController::itemsToExport() const
{
    QList<ZTItem *> items;
    if (!m_document)
        return items;
    items.reserve(m_oids.size());
    for (const QString &oid : m_oids)
        if (ZTItem *item = m_document->itemForOid(oid))
            items << item;
    return items;
}
