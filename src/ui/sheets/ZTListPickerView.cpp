#include "ui/sheets/ZTListPickerView.h"

#include "export/ZTListPickerController.h"
#include "lists/ZTList.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {
QString text(const char *english)
{
    return QCoreApplication::translate("Localizable", english);
}
} // namespace

ZTListPickerView::ZTListPickerView(ZTListPickerController &picker, QWidget *parent)
    : QWidget(parent), m_picker(picker)
{
    m_all = new QRadioButton(picker.allTitle(), this);
    m_selected = new QRadioButton(picker.selectedTitle(), this);
    connect(m_all, &QRadioButton::toggled, this, [this](bool on) {
        m_picker.setChoice(on ? ZTListPickerController::Choice::All
                              : ZTListPickerController::Choice::SelectedLists);
    });

    m_table = new QTableWidget(0, 2, this);
    m_table->horizontalHeader()->hide();
    m_table->verticalHeader()->hide();
    m_table->setShowGrid(false);
    m_table->setSelectionMode(QAbstractItemView::NoSelection);
    m_table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->setMinimumHeight(90);
    m_table->setMaximumHeight(140);
    const QList<ZTListPickerController::ListDict> &dicts = picker.listDicts();
    m_table->setRowCount(int(dicts.size()));
    for (int row = 0; row < dicts.size(); ++row) {
        auto *box = new QCheckBox;
        connect(box, &QCheckBox::toggled, this, [this, row](bool on) { m_picker.setFlag(row, on); });
        m_table->setCellWidget(row, 0, box);
        auto *name = new QTableWidgetItem(dicts[row].list->name());
        name->setFlags(Qt::ItemIsEnabled);
        m_table->setItem(row, 1, name);
    }

    m_selectAll = new QPushButton(text("Select All"), this);
    m_selectNone = new QPushButton(text("Select None"), this);
    for (QPushButton *button : {m_selectAll, m_selectNone})
        button->setAutoDefault(false);
    connect(m_selectAll, &QPushButton::clicked, this, [this] { m_picker.selectAll(); });
    connect(m_selectNone, &QPushButton::clicked, this, [this] { m_picker.selectNone(); });

    auto *listButtons = new QHBoxLayout;
    listButtons->addStretch();
    listButtons->addWidget(m_selectAll);
    listButtons->addWidget(m_selectNone);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_all);
    layout->addWidget(m_selected);
    layout->addWidget(new QLabel(text("Selected lists"), this));
    layout->addWidget(m_table, 1);
    layout->addLayout(listButtons);

    // The picker also changes from elsewhere (its buttons act on the model),
    // so the view follows the picker's own announcements.
    m_observation =
        ZTObservation(ZTListPickerNotification::itemCountChanged, &m_picker, [this](const ZTNotification &) {
            reloadBoxes();
            updateEnabled();
            Q_EMIT itemCountChanged(m_picker.numberOfItemsSelected());
        });
    const QSignalBlocker blocker(m_all);
    (picker.choice() == ZTListPickerController::Choice::All ? m_all : m_selected)->setChecked(true);
    reloadBoxes();
    updateEnabled();
}

QCheckBox *ZTListPickerView::listBox(int row) const
{
    return qobject_cast<QCheckBox *>(m_table->cellWidget(row, 0));
}

void ZTListPickerView::reloadBoxes()
{
    const QList<ZTListPickerController::ListDict> &dicts = m_picker.listDicts();
    for (int row = 0; row < m_table->rowCount() && row < dicts.size(); ++row) {
        if (QCheckBox *box = listBox(row)) {
            const QSignalBlocker blocker(box);
            box->setChecked(dicts[row].flag);
        }
    }
}

void ZTListPickerView::updateEnabled()
{
    const bool lists = m_picker.listsEnabled();
    m_table->setEnabled(lists);
    m_selectAll->setEnabled(lists);
    m_selectNone->setEnabled(lists);
}
