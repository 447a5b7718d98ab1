#pragma once

#include "import/ZTImportConfiguration.h"

#include <QDialog>

class QButtonGroup;
class QPushButton;
class QRadioButton;

// "Import Configuration": one radio button per source the library's kind can
// import from; sources whose importer is not built yet stay greyed out in
// their places. "Select" ends the sheet and reports the chosen source's
// operation; the window then opens that importer.
class ZTImportConfigurationSheet : public QDialog {
    Q_OBJECT
public:
    explicit ZTImportConfigurationSheet(ZTMediaKind kind, QWidget *parent = nullptr);

    // Selects the first source and forgets any earlier choice.
    void reset();
    const ZTImportConfigurationController &controller() const { return m_controller; }
    QRadioButton *button(int tag) const;
    int buttonCount() const;
    QPushButton *selectButton() const { return m_select; }

public Q_SLOTS:
    void select();

Q_SIGNALS:
    // The operation of the chosen source (ZTImportSelector).
    void sourceSelected(const QString &selectorString);

private:
    ZTImportConfigurationController m_controller;
    QButtonGroup *m_group = nullptr;
    QPushButton *m_select = nullptr;
};
