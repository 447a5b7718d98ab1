#pragma once

#include "import/ZTItemImportController.h"

#include "ui/sheets/ZTSheetWidgets.h"

#include <QDialog>

#include <functional>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;
class QWidget;

// Imports a tab- or comma-delimited text file. "Load File" reads a file and
// shows one row per file column: whether it is imported, its title, the
// attribute it goes into and, for attributes with several values or dates,
// the delimiter inside the cell or the date format. Nothing changes in the
// library before "Save/OK". The window opens it window-modal and refreshes
// on `itemsImported`:
//     auto *sheet = new ZTImportSheet(document, window);
//     sheet->open();
class ZTImportSheet : public QDialog {
    Q_OBJECT
public:
    // Table columns, in order.
    enum Column { ImportColumn, SourceColumn, IntoColumn, OptionColumn, ValueColumn };

    explicit ZTImportSheet(ZTDocument &document, QWidget *parent = nullptr);

    // What "Load File" asks for a path; empty means the user cancelled.
    using FileChooser = std::function<QString()>;
    void setFileChooser(FileChooser chooser) { m_chooser = std::move(chooser); }
    void setWarning(ZTSheetWidgets::Warning warning) { m_warning = std::move(warning); }

    // Reads and parses a file; false when it cannot be imported. Either way
    // the table shows what can be imported from it.
    bool loadPath(const QString &path);
    // Drops the file and empties the table.
    void clear();

    ZTItemImportController &controller() { return m_controller; }
    QTableWidget *table() const { return m_table; }
    QCheckBox *importBox(int row) const;
    QComboBox *intoPopUp(int row) const;
    // The value cell: a QLineEdit for a delimiter, a QComboBox for a date
    // format, a disabled QLineEdit otherwise.
    QWidget *valueWidget(int row) const;
    QString optionText(int row) const;
    QLabel *pathLabel() const { return m_path; }
    QLabel *problemLabel() const { return m_problem; }
    QLabel *instructionLabel() const { return m_instruction; }
    QPushButton *loadButton() const { return m_load; }
    QPushButton *saveButton() const { return m_save; }

    static QString instructionText();

public Q_SLOTS:
    void loadFile();
    void save();
    void reject() override;

Q_SIGNALS:
    void itemsImported(int count);

private:
    void rebuildTable();
    void fillRow(int row);
    void chooseInto(int row, const QString &title);

    ZTItemImportController m_controller;
    FileChooser m_chooser;
    ZTSheetWidgets::Warning m_warning;
    QLabel *m_path = nullptr;
    QLabel *m_problem = nullptr;
    QLabel *m_instruction = nullptr;
    QTableWidget *m_table = nullptr;
    QPushButton *m_load = nullptr;
    QPushButton *m_save = nullptr;
};
