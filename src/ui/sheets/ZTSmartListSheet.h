#pragma once

#include <QDialog>

#include <memory>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;
class ZTDocument;
class ZTSmartList;
class ZTSmartListController;
class ZTSmartListRow;

// The smart-list editor: a name, "If all/any of the conditions are met", and
// one row per rule (attribute, operator and the value view the two call
// for). The rules live in ZTSmartListController until Save. The window opens
// it window-modal and reloads its list table on `smartListSaved`:
//     auto *sheet = new ZTSmartListSheet(document, window);
//     sheet->openToAdd();            // "Add Smart List"
//     sheet->openOnList(smartList);  // "Edit Smart List"
class ZTSmartListSheet : public QDialog {
    Q_OBJECT
public:
    ZTSmartListSheet(ZTDocument &document, QWidget *parent = nullptr);
    ~ZTSmartListSheet() override;

    // Fill the sheet without showing it.
    void prepareToAdd();
    void prepareOnList(ZTSmartList *list);
    void openToAdd();
    void openOnList(ZTSmartList *list);

    ZTSmartListController &controller() const { return *m_controller; }
    int rowCount() const { return int(m_rows.size()); }
    ZTSmartListRow *row(int index) const { return m_rows.value(index); }
    QLineEdit *nameField() const { return m_name; }
    QComboBox *allAnyPopUp() const { return m_allAny; }
    QLabel *headerLabel() const { return m_header; }
    QLabel *messageLabel() const { return m_message; }
    QPushButton *saveButton() const { return m_save; }

    // What a row's "+" and "−" do.
    void addRowAfter(int index);
    void removeRow(int index);

public Q_SLOTS:
    void save();
    void reject() override;

Q_SIGNALS:
    void smartListSaved(ZTSmartList *list);

private:
    void loadFromController();
    void rebuildRows(int focusRow = -1);
    void dropRows();

    std::unique_ptr<ZTSmartListController> m_controller;
    QList<ZTSmartListRow *> m_rows;
    QLabel *m_header = nullptr;
    QLabel *m_message = nullptr;
    QLineEdit *m_name = nullptr;
    QComboBox *m_allAny = nullptr;
    QVBoxLayout *m_rowLayout = nullptr;
    QPushButton *m_save = nullptr;
    QPushButton *m_cancel = nullptr;
};
