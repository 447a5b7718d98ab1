#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

class ZTDocument;
class ZTItem;

// The base of every export format: the document, the oids to export (set right
// before the export runs) and the format's name and document operation.
class ZTExportFormatController {
public:
    explicit ZTExportFormatController(ZTDocument *document = nullptr) : m_document(document) {}
    virtual ~ZTExportFormatController() = default;

    ZTDocument *document() const { return m_document; }
    void setDocument(ZTDocument *document) { m_document = document; }
    const QStringList &oids() const { return m_oids; }
    void setOids(const QStringList &oids) { m_oids = oids; }

    virtual QString className() const = 0;
    virtual QString title() const = 0; // translated
    virtual QString selectorString() const = 0;
    virtual void reset() {}
    // The file type the save panel offers ("txt", "xml" …).
    virtual QString fileType() const { return QStringLiteral("txt"); }

    // The whole export as text.
    virtual QString exportString() = 0;
    // What is written to path: the text in UTF-8 unless the format chooses
    // another form by the file's extension.
    virtual QByteArray exportData(const QString &path);
    // Writes exportData() atomically: a failed write leaves no half file.
    bool writeToPath(const QString &path, QString *error = nullptr);

protected:
    // The items of oids() in order, skipping oids without an item.
    QList<ZTItem *> itemsToExport() const;

private:
    ZTDocument *m_document = nullptr;
    QStringList m_oids;
};
