#pragma once

#include <QWidget>

class QDoubleSpinBox;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QSpinBox;
class ZTLibraryWindow;

// The floating panel beside a library window that edits its table layouts:
// the list of layouts (add, remove, rename by double-click, pick one to use),
// the columns shown, the font size and the row height. Every change applies
// to the window at once and is kept with the library.
class ZTOptionsPanel : public QWidget {
    Q_OBJECT
public:
    explicit ZTOptionsPanel(ZTLibraryWindow *window);

    // Brings the panel up to date with the window.
    void updateLayoutMatrix();

    // The widgets a user works with, for tests.
    QListWidget *layoutList() const { return m_layouts; }
    QListWidget *columnList() const { return m_columns; }
    QDoubleSpinBox *fontSizeBox() const { return m_fontSize; }
    QSpinBox *rowHeightBox() const { return m_rowHeight; }
    QPushButton *addButton() const { return m_add; }
    QPushButton *removeButton() const { return m_remove; }

private:
    void clickLayoutMatrix();
    void cellWasEdited(QListWidgetItem *item);
    void clickColumnMatrix(QListWidgetItem *item);
    void selectCheckboxes(bool on);

    ZTLibraryWindow *m_window;
    QListWidget *m_layouts = nullptr;
    QListWidget *m_columns = nullptr;
    QDoubleSpinBox *m_fontSize = nullptr;
    QSpinBox *m_rowHeight = nullptr;
    QPushButton *m_add = nullptr;
    QPushButton *m_remove = nullptr;
    bool m_updating = false;
};
