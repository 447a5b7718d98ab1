#pragma once

#include "ui/sheets/ZTSheetFields.h"

#include <QDialog>
#include <QHash>

#include <memory>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;
class ZTCoverWell;
class ZTItem;
class ZTItemController;
class ZTPartialDateField;
class ZTRatingControl;
class ZTViewPipeline;

// The sheet that adds or edits one item. Its fields follow the kind's pages
// (ZTSheetFields); every edit goes straight into the kind's ZTItemController,
// whose save carries the working map into the item. The window opens it
// window-modal:
//     auto *sheet = new ZTItemSheet(pipeline, window);
//     sheet->openToEdit(oid);   // or openToAdd()
// and refreshes its tables when `finished` arrives.
class ZTItemSheet : public QDialog {
    Q_OBJECT
public:
    ZTItemSheet(ZTViewPipeline &pipeline, QWidget *parent = nullptr);
    ~ZTItemSheet() override;

    // Fill the sheet without showing it (the open… calls do this, then QDialog::open()).
    void prepareToAdd();
    bool prepareToEdit(const QString &oid);
    void openToAdd();
    bool openToEdit(const QString &oid);

    ZTItemController &controller() const { return *m_controller; }
    // The control that edits a key (for the window's focus and for tests).
    QWidget *fieldForKey(const QString &key) const { return m_fields.value(key); }
    ZTRatingControl *ratingControl() const { return m_rating; }
    ZTCoverWell *coverWell() const { return m_cover; }
    QCheckBox *lentOutButton() const { return m_lentOut; }
    QPushButton *saveButton() const { return m_save; }
    QPushButton *previousButton() const { return m_previous; }
    QPushButton *nextButton() const { return m_next; }
    QTabWidget *pages() const { return m_pages; }

public Q_SLOTS:
    // Saves and closes; Cancel leaves the library as it was.
    void saveAndClose();
    void reject() override;
    void showNextItem() { step(Direction::Next); }
    void showPreviousItem() { step(Direction::Previous); }

Q_SIGNALS:
    // An item was written (on Save, or when stepping away from a changed one).
    void itemSaved(const QString &oid);

private:
    enum class Direction { Previous, Next };
    void step(Direction direction);
    QWidget *makeField(const ZTSheetFields::Field &field);
    QWidget *makeLendingBox();
    void load();
    void loadField(const ZTSheetFields::Field &field);
    void loadLending();
    void updateLendingEnabled();
    void updateButtons();
    void commitEditing();
    void setValue(const QString &key, const QVariant &value);
    QStringList completionValues(const QString &key) const;

    ZTViewPipeline &m_pipeline;
    std::unique_ptr<ZTItemController> m_controller;
    QList<ZTSheetFields::Field> m_fieldSpecs;
    QHash<QString, QWidget *> m_fields;
    QTabWidget *m_pages = nullptr;
    QLabel *m_header = nullptr;
    ZTCoverWell *m_cover = nullptr;
    ZTRatingControl *m_rating = nullptr;
    QCheckBox *m_lentOut = nullptr;
    QLineEdit *m_lentToName = nullptr;
    QLineEdit *m_lentToEmail = nullptr;
    ZTPartialDateField *m_dateLent = nullptr;
    ZTPartialDateField *m_dateDue = nullptr;
    QPushButton *m_previous = nullptr;
    QPushButton *m_next = nullptr;
    QPushButton *m_save = nullptr;
    bool m_loading = false;
};
