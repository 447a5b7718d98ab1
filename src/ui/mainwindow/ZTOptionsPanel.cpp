#include "ui/mainwindow/ZTOptionsPanel.h"

#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"
#include "ui/mainwindow/ZTLibraryWindow.h"

#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

namespace {
constexpr int s_keyRole = Qt::UserRole + 1;
} // namespace

ZTOptionsPanel::ZTOptionsPanel(ZTLibraryWindow *window)
    : QWidget(window, Qt::Tool), m_window(window)
{
    setWindowTitle(tr("Options \u2014 %1").arg(window->document().displayName()));
    setObjectName(QStringLiteral("optionsPanel"));
    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(12);

    auto *layoutsBox = new QGroupBox(tr("Layouts"), this);
    auto *layoutsLayout = new QVBoxLayout(layoutsBox);
    m_layouts = new QListWidget(layoutsBox);
    m_layouts->setToolTip(tr("Double-click a layout to rename it"));
    m_layouts->setMaximumHeight(110);
    layoutsLayout->addWidget(m_layouts);
    auto *buttons = new QHBoxLayout;
    m_add = new QPushButton(QIcon::fromTheme(QStringLiteral("list-add")), tr("Add"), layoutsBox);
    m_remove = new QPushButton(QIcon::fromTheme(QStringLiteral("list-remove")), tr("Remove"), layoutsBox);
    buttons->addWidget(m_add);
    buttons->addWidget(m_remove);
    buttons->addStretch();
    layoutsLayout->addLayout(buttons);
    layout->addWidget(layoutsBox);

    auto *columnsBox = new QGroupBox(tr("Columns"), this);
    auto *columnsLayout = new QVBoxLayout(columnsBox);
    m_columns = new QListWidget(columnsBox);
    columnsLayout->addWidget(m_columns, 1);
    auto *allNone = new QHBoxLayout;
    auto *all = new QPushButton(tr("All"), columnsBox);
    auto *none = new QPushButton(tr("None"), columnsBox);
    allNone->addWidget(all);
    allNone->addWidget(none);
    allNone->addStretch();
    columnsLayout->addLayout(allNone);
    layout->addWidget(columnsBox, 1);

    auto *form = new QFormLayout;
    m_fontSize = new QDoubleSpinBox(this);
    m_fontSize->setRange(0, 48);
    m_fontSize->setDecimals(0);
    m_fontSize->setSuffix(tr(" pt"));
    m_fontSize->setSpecialValueText(tr("Desktop font"));
    m_rowHeight = new QSpinBox(this);
    m_rowHeight->setRange(16, 256);
    m_rowHeight->setSuffix(tr(" px"));
    form->addRow(tr("Font size:"), m_fontSize);
    form->addRow(tr("Row height:"), m_rowHeight);
    layout->addLayout(form);

    // The columns a library can show, by title.
    QList<const ZTExportColumn *> columns;
    for (const ZTExportColumn &column : window->document().attributeTables().columnDictionary())
        columns.append(&column);
    std::sort(columns.begin(), columns.end(), [](const ZTExportColumn *a, const ZTExportColumn *b) {
        return a->title.localeAwareCompare(b->title) < 0;
    });
    for (const ZTExportColumn *column : std::as_const(columns)) {
        auto *row = new QListWidgetItem(column->title, m_columns);
        row->setData(s_keyRole, column->key);
        row->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
    }

    connect(m_layouts, &QListWidget::currentRowChanged, this, [this] { clickLayoutMatrix(); });
    connect(m_layouts, &QListWidget::itemChanged, this, &ZTOptionsPanel::cellWasEdited);
    connect(m_layouts, &QListWidget::itemDoubleClicked, m_layouts, [this](QListWidgetItem *item) {
        m_layouts->editItem(item);
    });
    connect(m_add, &QPushButton::clicked, this, [this] {
        const int index = m_window->addLayout();
        m_window->selectLayout(index);
    });
    connect(m_remove, &QPushButton::clicked, this, [this] { m_window->removeLayout(m_layouts->currentRow()); });
    connect(m_columns, &QListWidget::itemChanged, this, &ZTOptionsPanel::clickColumnMatrix);
    connect(all, &QPushButton::clicked, this, [this] { selectCheckboxes(true); });
    connect(none, &QPushButton::clicked, this, [this] { selectCheckboxes(false); });
    connect(m_fontSize, &QDoubleSpinBox::valueChanged, this, [this](double value) {
        if (!m_updating)
            m_window->setTableFontSize(value);
    });
    connect(m_rowHeight, &QSpinBox::valueChanged, this, [this](int value) {
        if (!m_updating)
            m_window->setTableRowHeight(value);
    });
    connect(window, &ZTLibraryWindow::displayChanged, this, &ZTOptionsPanel::updateLayoutMatrix);
    updateLayoutMatrix();
    resize(300, 560);
}

void ZTOptionsPanel::updateLayoutMatrix()
{
    m_updating = true;
    const ZTLayouts &layouts = m_window->layouts();
    m_layouts->clear();
    for (const ZTLayout &layout : layouts.layouts()) {
        auto *row = new QListWidgetItem(layout.name, m_layouts);
        row->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable);
    }
    if (layouts.current())
        m_layouts->setCurrentRow(layouts.currentIndex());
    m_remove->setEnabled(!layouts.layouts().isEmpty());

    const ZTWindowDisplay &display = m_window->display();
    QStringList shown;
    for (const ZTWindowDisplay::Column &column : display.columns)
        shown << column.identifier;
    for (int i = 0; i < m_columns->count(); ++i) {
        QListWidgetItem *row = m_columns->item(i);
        row->setCheckState(shown.contains(row->data(s_keyRole).toString()) ? Qt::Checked : Qt::Unchecked);
    }
    m_fontSize->setValue(display.fontSize);
    m_rowHeight->setValue(qRound(display.rowHeight));
    m_updating = false;
}

void ZTOptionsPanel::clickLayoutMatrix()
{
    if (!m_updating && m_layouts->currentRow() >= 0)
        m_window->selectLayout(m_layouts->currentRow());
}

void ZTOptionsPanel::cellWasEdited(QListWidgetItem *item)
{
    if (m_updating)
        return;
    const int row = m_layouts->row(item);
    if (item->text().trimmed().isEmpty()) {
        updateLayoutMatrix(); // a layout keeps a name
        return;
    }
    m_window->renameLayout(row, item->text());
}

void ZTOptionsPanel::clickColumnMatrix(QListWidgetItem *item)
{
    if (m_updating)
        return;
    m_window->setColumnShown(item->data(s_keyRole).toString(), item->checkState() == Qt::Checked);
    // The table keeps at least one column: a refused untick shows ticked again.
    updateLayoutMatrix();
}

void ZTOptionsPanel::selectCheckboxes(bool on)
{
    for (int i = 0; i < m_columns->count(); ++i) {
        QListWidgetItem *row = m_columns->item(i);
        if ((row->checkState() == Qt::Checked) != on)
            m_window->setColumnShown(row->data(s_keyRole).toString(), on);
    }
    updateLayoutMatrix();
}
