#include "ui/mainwindow/ZTTableViews.h"

#include "ui/mainwindow/ZTDragData.h"

#include <QDropEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>

namespace {
// The row a drop lands on or above, and how; a drop below the last row goes
// above a row that does not exist yet (the end).
int dropRow(QAbstractItemView *view, const QPoint &pos, ZTDropOperation *operation)
{
    const QModelIndex index = view->indexAt(pos);
    if (!index.isValid()) {
        *operation = ZTDropOperation::Above;
        return view->model() ? view->model()->rowCount() : 0;
    }
    const QRect rect = view->visualRect(index);
    const int margin = qMax(2, rect.height() / 4);
    if (pos.y() < rect.top() + margin) {
        *operation = ZTDropOperation::Above;
        return index.row();
    }
    if (pos.y() > rect.bottom() - margin) {
        *operation = ZTDropOperation::Above;
        return index.row() + 1;
    }
    *operation = ZTDropOperation::On;
    return index.row();
}

bool handleDrag(QAbstractItemView *view, const ZTTableHooks &hooks, const QMimeData *data, const QPoint &pos,
                bool drop)
{
    ZTDragInfo drag;
    if (!hooks.validateDrop || !ZTDragData::read(data, &drag))
        return false;
    ZTDropOperation operation = ZTDropOperation::On;
    const int row = dropRow(view, pos, &operation);
    if (!hooks.validateDrop(drag, row, &operation))
        return false;
    return !drop || (hooks.acceptDrop && hooks.acceptDrop(drag, row, operation));
}

bool handleDrag(QAbstractItemView *view, const ZTTableHooks &hooks, QDropEvent *event, bool drop)
{
    if (!handleDrag(view, hooks, event->mimeData(), event->position().toPoint(), drop))
        return false;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    return true;
}

bool isDeleteKey(QKeyEvent *event)
{
    return event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace;
}
} // namespace

ZTItemTableView::ZTItemTableView(QWidget *parent) : QTableView(parent)
{
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setShowGrid(false);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(DragDrop);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerPixel);
    setEditTriggers(NoEditTriggers);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsMovable(true);
    horizontalHeader()->setSortIndicatorShown(true);
    horizontalHeader()->setSectionsClickable(true);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void ZTItemTableView::keyboardSearch(const QString &search)
{
    if (!m_hooks.typeAhead)
        return QTableView::keyboardSearch(search);
    const int row = m_hooks.typeAhead(search);
    if (row < 0 || !model() || row >= model()->rowCount())
        return;
    const QModelIndex index = model()->index(row, 0);
    setCurrentIndex(index);
    selectRow(row);
    scrollTo(index);
}

void ZTItemTableView::keyPressEvent(QKeyEvent *event)
{
    if (isDeleteKey(event) && m_hooks.deletePressed) {
        m_hooks.deletePressed();
        return;
    }
    QTableView::keyPressEvent(event);
}

void ZTItemTableView::dragEnterEvent(QDragEnterEvent *event)
{
    if (!handleDrag(this, m_hooks, event, false))
        QTableView::dragEnterEvent(event);
}

void ZTItemTableView::dragMoveEvent(QDragMoveEvent *event)
{
    QTableView::dragMoveEvent(event);
    if (!handleDrag(this, m_hooks, event, false))
        event->ignore();
}

void ZTItemTableView::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    if (m_emptyText.isEmpty() || (model() && model()->rowCount() > 0))
        return;
    QPainter painter(viewport());
    QColor colour = palette().color(QPalette::Text);
    colour.setAlphaF(0.45);
    painter.setPen(colour);
    QFont font = painter.font();
    font.setPointSizeF(font.pointSizeF() * 1.25);
    painter.setFont(font);
    painter.drawText(viewport()->rect().adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWordWrap,
                     m_emptyText);
}

bool ZTItemTableView::performDrop(const QMimeData *data, const QPoint &pos)
{
    return handleDrag(this, m_hooks, data, pos, true);
}

void ZTItemTableView::dropEvent(QDropEvent *event)
{
    if (!handleDrag(this, m_hooks, event, true))
        event->ignore();
}

ZTListTableView::ZTListTableView(QWidget *parent) : QListView(parent)
{
    setSelectionMode(SingleSelection);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(DragDrop);
    setEditTriggers(DoubleClicked | EditKeyPressed | SelectedClicked);
    setUniformItemSizes(true);
}

void ZTListTableView::keyboardSearch(const QString &search)
{
    if (!m_hooks.typeAhead)
        return QListView::keyboardSearch(search);
    const int row = m_hooks.typeAhead(search);
    if (row >= 0 && model() && row < model()->rowCount())
        setCurrentIndex(model()->index(row, 0));
}

void ZTListTableView::keyPressEvent(QKeyEvent *event)
{
    if (isDeleteKey(event) && state() != EditingState && m_hooks.deletePressed) {
        m_hooks.deletePressed();
        return;
    }
    QListView::keyPressEvent(event);
}

void ZTListTableView::dragEnterEvent(QDragEnterEvent *event)
{
    if (!handleDrag(this, m_hooks, event, false))
        QListView::dragEnterEvent(event);
}

void ZTListTableView::dragMoveEvent(QDragMoveEvent *event)
{
    QListView::dragMoveEvent(event);
    if (!handleDrag(this, m_hooks, event, false))
        event->ignore();
}

bool ZTListTableView::performDrop(const QMimeData *data, const QPoint &pos)
{
    return handleDrag(this, m_hooks, data, pos, true);
}

void ZTListTableView::dropEvent(QDropEvent *event)
{
    if (!handleDrag(this, m_hooks, event, true))
        event->ignore();
}
