#include "ui/sheets/ZTNameTable.h"

#include "ui/sheets/ZTSheetWidgets.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace {
constexpr int s_originalRole = Qt::UserRole + 1;

// Names complete from the library's values while they are typed.
class CompletingDelegate : public QStyledItemDelegate {
public:
    CompletingDelegate(const QStringList *values, QObject *parent)
        : QStyledItemDelegate(parent), m_values(values)
    {
    }
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override
    {
        QWidget *editor = QStyledItemDelegate::createEditor(parent, option, index);
        if (auto *edit = qobject_cast<QLineEdit *>(editor);
            edit && index.column() == 0 && !m_values->isEmpty())
            edit->setCompleter(ZTSheetWidgets::completerForValues(*m_values, edit));
        return editor;
    }

    // Tab in a cell editor ends the edit and leaves the table, like Tab in
    // any other field, rather than walking the cells.
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent *>(event)->key();
            auto *editor = qobject_cast<QWidget *>(object);
            if (editor && (key == Qt::Key_Tab || key == Qt::Key_Backtab)) {
                QWidget *view = editor->parentWidget() ? editor->parentWidget()->parentWidget() : nullptr;
                Q_EMIT commitData(editor);
                Q_EMIT closeEditor(editor, NoHint);
                if (view)
                    leave(view, key == Qt::Key_Tab);
                return true;
            }
        }
        return QStyledItemDelegate::eventFilter(object, event);
    }

private:
    static void leave(QWidget *view, bool forward)
    {
        QWidget *next = view;
        do {
            next = forward ? next->nextInFocusChain() : next->previousInFocusChain();
        } while (next && next != view &&
                 (view->isAncestorOf(next) || !(next->focusPolicy() & Qt::TabFocus) || !next->isVisible() ||
                  !next->isEnabled()));
        if (next && next != view)
            next->setFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    }

    const QStringList *m_values;
};

// Delete and Backspace remove the chosen rows when no cell is being edited.
class DeletingTable : public QTableWidget {
public:
    using QTableWidget::QTableWidget;
    std::function<void()> onDelete;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if ((event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) &&
            state() != EditingState && onDelete) {
            onDelete();
            return;
        }
        QTableWidget::keyPressEvent(event);
    }
};
} // namespace

ZTNameTable::ZTNameTable(const QStringList &headers, QWidget *parent)
    : QWidget(parent), m_add(new QToolButton(this)), m_remove(new QToolButton(this))
{
    auto *table = new DeletingTable(0, int(headers.size()), this);
    m_table = table;
    m_table->setHorizontalHeaderLabels(headers);
    m_table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    for (int c = 1; c < headers.size(); ++c)
        m_table->horizontalHeader()->setSectionResizeMode(c, QHeaderView::ResizeToContents);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 8);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    // Typing starts an edit; arriving by Tab does not, so Tab passes through.
    m_table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked |
                             QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
    m_table->setTabKeyNavigation(false);
    m_table->setItemDelegate(new CompletingDelegate(&m_completion, m_table));
    m_table->setMinimumHeight(m_table->verticalHeader()->defaultSectionSize() * 4 + 4);
    table->onDelete = [this] {
        QList<int> rows;
        for (const QModelIndex &index : m_table->selectionModel()->selectedRows())
            rows << index.row();
        std::sort(rows.rbegin(), rows.rend());
        for (int row : rows)
            removeRow(row);
    };

    m_add->setText(QStringLiteral("+"));
    m_add->setToolTip(tr("Add a row"));
    m_remove->setText(QStringLiteral("−"));
    m_remove->setToolTip(tr("Remove the chosen rows"));
    connect(m_add, &QToolButton::clicked, this, [this] {
        ensureBlankRow();
        const int row = m_table->rowCount() - 1;
        m_table->setCurrentCell(row, 0);
        m_table->editItem(m_table->item(row, 0));
    });
    connect(m_remove, &QToolButton::clicked, this, [table] { table->onDelete(); });
    connect(m_table, &QTableWidget::itemChanged, this, [this](QTableWidgetItem *) {
        if (m_loading)
            return;
        ensureBlankRow();
        Q_EMIT edited();
    });

    auto *buttons = new QHBoxLayout;
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->addWidget(m_add);
    buttons->addWidget(m_remove);
    buttons->addStretch();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(m_table);
    layout->addLayout(buttons);
    setFocusProxy(m_table);
    ensureBlankRow();
}

void ZTNameTable::setReadOnlyColumn(int column)
{
    m_readOnly << column;
}

void ZTNameTable::setCompletionValues(const QStringList &values)
{
    m_completion = values;
}

void ZTNameTable::addBlankRow()
{
    const int row = m_table->rowCount();
    m_table->insertRow(row);
    for (int c = 0; c < m_table->columnCount(); ++c) {
        auto *item = new QTableWidgetItem;
        if (m_readOnly.contains(c))
            item->setFlags(item->flags() & ~Qt::ItemIsEditable);
        m_table->setItem(row, c, item);
    }
}

void ZTNameTable::ensureBlankRow()
{
    const bool wasLoading = m_loading;
    m_loading = true;
    const int last = m_table->rowCount() - 1;
    if (last < 0 || !m_table->item(last, 0)->text().trimmed().isEmpty())
        addBlankRow();
    m_loading = wasLoading;
}

void ZTNameTable::setRows(const QList<QStringList> &rows)
{
    m_loading = true;
    m_table->setRowCount(0);
    m_removed.clear();
    for (const QStringList &cells : rows) {
        addBlankRow();
        const int row = m_table->rowCount() - 1;
        for (int c = 0; c < m_table->columnCount(); ++c)
            m_table->item(row, c)->setText(cells.value(c));
        m_table->item(row, 0)->setData(s_originalRole, cells.value(0));
    }
    ensureBlankRow();
    m_loading = false;
}

QList<ZTNameTable::Row> ZTNameTable::rows() const
{
    QList<Row> result;
    for (int r = 0; r < m_table->rowCount(); ++r) {
        Row row;
        for (int c = 0; c < m_table->columnCount(); ++c)
            row.cells << m_table->item(r, c)->text().trimmed();
        row.original = m_table->item(r, 0)->data(s_originalRole).toString();
        // A loaded row emptied by the user is a removal the caller must see.
        if (!row.cells.value(0).isEmpty() || !row.original.isEmpty())
            result << row;
    }
    return result;
}

QList<QStringList> ZTNameTable::cellRows() const
{
    QList<QStringList> result;
    for (const Row &row : rows())
        if (!row.cells.value(0).isEmpty())
            result << row.cells;
    return result;
}

void ZTNameTable::removeRow(int row)
{
    if (row < 0 || row >= m_table->rowCount())
        return;
    const QString original = m_table->item(row, 0)->data(s_originalRole).toString();
    if (!original.isEmpty() && !m_removed.contains(original))
        m_removed << original;
    m_table->removeRow(row);
    ensureBlankRow();
    Q_EMIT edited();
}
