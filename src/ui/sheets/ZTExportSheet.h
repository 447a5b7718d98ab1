#pragma once

#include "ui/sheets/ZTSheetWidgets.h"

#include <QDialog>
#include <QHash>

#include <functional>
#include <memory>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QStackedWidget;
class ZTDocument;
class ZTExportConfigurationController;
class ZTExportController;
class ZTListPickerController;
class ZTListPickerView;

// "Export Configuration": the formats the library's kind offers as radio
// buttons (those not built yet greyed out in their places), the options of
// the chosen format, and what to export. "Export" asks where to write and
// writes the file. The window opens it window-modal:
//     auto *sheet = new ZTExportSheet(document, window);
//     sheet->setRememberedKeys(keys);
//     sheet->open();
class ZTExportSheet : public QDialog {
    Q_OBJECT
public:
    explicit ZTExportSheet(ZTDocument &document, QWidget *parent = nullptr);
    ~ZTExportSheet() override;

    // Where to write, given the format's file type ("txt", "xml" …); empty
    // means the user cancelled. Replaceable so that tests open no dialog.
    using SaveChooser = std::function<QString(const QString &fileType)>;
    void setSaveChooser(SaveChooser chooser) { m_chooser = std::move(chooser); }

    // The text-file columns chosen last time; none remembered ticks them all.
    void setRememberedKeys(const QStringList &keys);
    void selectFormat(int tag);

    ZTExportConfigurationController &configuration() const { return *m_configuration; }
    ZTExportController *textController() const;
    int formatCount() const;
    QRadioButton *formatButton(int tag) const;
    QStackedWidget *pages() const { return m_pages; }
    ZTListPickerView *listPicker() const { return m_pickerView; }
    QPushButton *exportButton() const { return m_export; }

    // The text file's options.
    QComboBox *formatPopUp() const { return m_format; }
    QComboBox *multiplePopUp() const { return m_multiple; }
    QComboBox *lineBreakPopUp() const { return m_lineBreak; }
    QLineEdit *delimiterField() const { return m_delimiter; }
    QCheckBox *columnBox(const QString &key) const { return m_columnBoxes.value(key); }
    void selectAllColumns(bool chosen);
    // The ticked keys, in the order the columns are offered.
    QStringList chosenKeys() const;

public Q_SLOTS:
    void exportItems();

Q_SIGNALS:
    // The chosen text-file columns differ from those remembered.
    void exportKeysChanged(const QStringList &keys);
    void exported(const QString &path);

private:
    QWidget *textOptionsPage();
    QWidget *messagePage(const QString &message);
    void applyTextOptions();
    void updateExportButton();
    QString askForPath(const QString &fileType);

    ZTDocument &m_document;
    std::unique_ptr<ZTExportConfigurationController> m_configuration;
    std::unique_ptr<ZTListPickerController> m_picker;
    SaveChooser m_chooser;
    QStringList m_rememberedKeys;
    QButtonGroup *m_formats = nullptr;
    QStackedWidget *m_pages = nullptr;
    ZTListPickerView *m_pickerView = nullptr;
    QPushButton *m_export = nullptr;
    QComboBox *m_format = nullptr;
    QComboBox *m_multiple = nullptr;
    QComboBox *m_lineBreak = nullptr;
    QLineEdit *m_delimiter = nullptr;
    QHash<QString, QCheckBox *> m_columnBoxes;
};
