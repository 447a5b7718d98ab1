#pragma once

#include "base/ZTNotificationCenter.h"

#include <QWidget>

class QCheckBox;
class QPushButton;
class QRadioButton;
class QTableWidget;
class ZTListPickerController;

// What to export: "All Books", or "Books Selected" with a table of the
// library's lists to tick. The table and its buttons only work under the
// second choice. Every change of the count is announced by `itemCountChanged`.
class ZTListPickerView : public QWidget {
    Q_OBJECT
public:
    explicit ZTListPickerView(ZTListPickerController &picker, QWidget *parent = nullptr);

    ZTListPickerController &picker() const { return m_picker; }
    QRadioButton *allButton() const { return m_all; }
    QRadioButton *selectedButton() const { return m_selected; }
    QTableWidget *listTable() const { return m_table; }
    QCheckBox *listBox(int row) const;
    QPushButton *selectAllButton() const { return m_selectAll; }
    QPushButton *selectNoneButton() const { return m_selectNone; }

Q_SIGNALS:
    void itemCountChanged(int count);

private:
    void reloadBoxes();
    void updateEnabled();

    ZTListPickerController &m_picker;
    ZTObservation m_observation;
    QRadioButton *m_all = nullptr;
    QRadioButton *m_selected = nullptr;
    QTableWidget *m_table = nullptr;
    QPushButton *m_selectAll = nullptr;
    QPushButton *m_selectNone = nullptr;
};
