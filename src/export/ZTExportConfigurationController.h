#pragma once

#include "export/ZTExportFormatController.h"
#include "model/ZTMediaKind.h"

#include <QList>
#include <QString>

#include <memory>
#include <vector>

class ZTListPickerController;
class ZTList;

// One export format as the sheet lists it.
struct ZTExportFormatEntry {
    QString className;
    QString title;          // untranslated
    QString selectorString; // the document operation that runs it
};

// The choice of an export format and of what to export. The sheet shows one
// radio button per entry of exportConfigurationArray; formats whose controller
// is not built yet show, disabled, in their places.
class ZTExportConfigurationController {
public:
    explicit ZTExportConfigurationController(ZTDocument *document);
    ~ZTExportConfigurationController();

    static QList<ZTExportFormatEntry> exportConfigurationArray(ZTMediaKind kind);
    static QString windowTitle();

    const QList<ZTExportFormatEntry> &entries() const { return m_entries; }
    // The controller at a button's tag, null for a format not available yet.
    ZTExportFormatController *controllerAt(int tag) const;
    ZTExportFormatController *controllerForClassNamed(const QString &className) const;
    bool isAvailable(int tag) const { return controllerAt(tag) != nullptr; }

    // Resets every format, clears the choice and shows the first format.
    void reset();
    int choice() const { return m_choice; }
    int state() const { return m_state; }
    void show(int tag) { m_state = tag; }
    bool shouldExport() const { return m_shouldExport; }

    void setListPickerController(ZTListPickerController *picker) { m_picker = picker; }
    ZTListPickerController *listPickerController() const { return m_picker; }
    QStringList oidsToExport() const;
    bool exportAll() const;
    QList<ZTList *> lists() const;
    // "Export" is possible while the picker selects at least one item.
    bool canExport() const;

    // "Export": records the choice; false (nothing recorded) for a format that
    // is not available or when nothing would be exported.
    bool exportChoice(int tag);
    // The chosen format's operation, null when the choice is out of range.
    QString selectorString() const;
    ZTExportFormatController *chosenController() const { return controllerAt(m_choice); }
    // Runs the chosen format on oidsToExport() and writes it to path.
    bool performExport(const QString &path, QString *error = nullptr);

private:
    ZTDocument *m_document;
    QList<ZTExportFormatEntry> m_entries;
    std::vector<std::unique_ptr<ZTExportFormatController>> m_controllers; // parallel to m_entries
    ZTListPickerController *m_picker = nullptr;
    int m_choice = -1;
    int m_state = -1;
    bool m_shouldExport = false;
};
