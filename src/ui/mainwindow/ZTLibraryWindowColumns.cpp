// The window's columns and layouts: which columns the tables show, their
// widths and order, the saved display, and the layouts the user switches between.
#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"
#include "library/ZTViewPipeline.h"
#include "ui/mainwindow/ZTDelegates.h"
#include "ui/mainwindow/ZTItemTableModel.h"
#include "ui/mainwindow/ZTLibraryWindow.h"
#include "ui/mainwindow/ZTTableViews.h"

#include <QAction>
#include <QCursor>
#include <QHeaderView>
#include <QMenu>
#include <QSignalBlocker>
#include <QSplitter>
#include <QTimer>

int ZTLibraryWindow::standardWidth(const QString &id)
{
    if (id == QLatin1String("cover"))
        return 52;
    if (id == QLatin1String("title"))
        return 260;
    if (id == QLatin1String("authors") || id == QLatin1String("artists") || id == QLatin1String("directors"))
        return 180;
    if (id == QLatin1String("rating"))
        return 96;
    return 110;
}

void ZTLibraryWindow::applyColumns(ZTItemTableView *table)
{
    auto *model = static_cast<ZTItemTableModel *>(table->model());
    QStringList identifiers;
    for (const ZTWindowDisplay::Column &column : std::as_const(m_display.columns))
        identifiers.append(column.identifier);
    const QSignalBlocker block(table->horizontalHeader());
    model->setColumns(identifiers);
    model->reload();
    const int rowHeight = qRound(m_display.rowHeight);
    table->verticalHeader()->setDefaultSectionSize(rowHeight);
    model->setCoverSize(rowHeight - 6);
    if (m_display.fontSize > 0) {
        QFont font = table->font();
        font.setPointSizeF(m_display.fontSize);
        table->setFont(font);
    } else {
        table->setFont(QFont()); // back to the font the window inherits
    }
    for (int c = 0; c < model->columnCount(); ++c) {
        const QString id = model->columnIdentifier(c);
        for (const ZTWindowDisplay::Column &column : std::as_const(m_display.columns))
            if (column.identifier == id)
                table->setColumnWidth(c, qRound(column.width));
        table->setItemDelegateForColumn(
            c, model->columnType(c) == QLatin1String("rating") ? new ZTRatingDelegate(table) : nullptr);
    }
}

void ZTLibraryWindow::showColumnMenu(const QPoint &pos)
{
    auto *header = qobject_cast<QHeaderView *>(sender());
    QMenu menu(this);
    const ZTAttributeTables &tables = m_document->attributeTables();
    QList<const ZTExportColumn *> columns;
    for (const ZTExportColumn &column : tables.columnDictionary())
        columns.append(&column);
    std::sort(columns.begin(), columns.end(), [](const ZTExportColumn *a, const ZTExportColumn *b) {
        return a->title.localeAwareCompare(b->title) < 0;
    });
    for (const ZTExportColumn *column : std::as_const(columns)) {
        QAction *action = menu.addAction(column->title);
        action->setCheckable(true);
        action->setChecked(m_itemModel->columns().contains(column->key));
        const QString key = column->key;
        connect(action, &QAction::toggled, this, [this, key](bool on) { setColumnShown(key, on); });
    }
    menu.exec(header ? header->mapToGlobal(pos) : QCursor::pos());
}

void ZTLibraryWindow::setColumnShown(const QString &identifier, bool shown)
{
    auto it = std::find_if(m_display.columns.begin(), m_display.columns.end(),
                           [&](const ZTWindowDisplay::Column &c) { return c.identifier == identifier; });
    if (shown == (it != m_display.columns.end()))
        return;
    if (shown)
        m_display.columns.append({identifier, double(standardWidth(identifier))});
    else if (m_display.columns.size() > 1)
        m_display.columns.erase(it);
    applyColumns(m_itemTable);
    applyColumns(m_filterTable);
    updateSortIndicator();
    saveDisplay();
    Q_EMIT displayChanged();
}

void ZTLibraryWindow::columnResized(int logical, int, int newSize)
{
    auto *header = qobject_cast<QHeaderView *>(sender());
    auto *model = header && header->parent() == m_filterTable ? m_filterModel : m_itemModel;
    const QString id = model->columnIdentifier(logical);
    for (ZTWindowDisplay::Column &column : m_display.columns)
        if (column.identifier == id)
            column.width = newSize;
    m_displaySaveTimer->start();
}

void ZTLibraryWindow::saveDisplay()
{
    m_displaySaveTimer->stop();
    m_display.isDetailPanelOpen = isDetailVisible();
    m_display.frameString = QString::fromLatin1(saveGeometry().toBase64());
    if (m_splitter && !m_splitter->sizes().isEmpty() && m_splitter->sizes().first() > 0)
        m_display.splitViewWidth = m_splitter->sizes().first();
    m_layouts.updateCurrent(m_display);
    m_display.currentLayout = m_layouts.currentIndex();
    m_display.save(m_document->documentPath());
    m_layouts.save(m_document->documentPath());
}

// ---- layouts ----

void ZTLibraryWindow::useCurrentLayout()
{
    if (const ZTLayout *layout = m_layouts.current())
        layout->applyTo(m_display);
    applyColumns(m_itemTable);
    applyColumns(m_filterTable);
    updateSortIndicator();
    saveDisplay();
    Q_EMIT displayChanged();
}

void ZTLibraryWindow::switchLayout()
{
    m_layouts.updateCurrent(m_display);
    if (m_layouts.switchLayout() < 0)
        return;
    // A new set of columns has no sort.
    m_pipeline->setSortEntries({});
    useCurrentLayout();
}

void ZTLibraryWindow::selectLayout(int index)
{
    if (index == m_layouts.currentIndex())
        return;
    m_layouts.updateCurrent(m_display);
    if (!m_layouts.setCurrentIndex(index))
        return;
    m_pipeline->setSortEntries({});
    useCurrentLayout();
}

int ZTLibraryWindow::addLayout()
{
    m_layouts.updateCurrent(m_display);
    const int index = m_layouts.addLayout(m_display);
    saveDisplay();
    Q_EMIT displayChanged();
    return index;
}

void ZTLibraryWindow::removeLayout(int index)
{
    if (!m_layouts.removeLayout(index))
        return;
    // With no layout left the table keeps its columns; the next opening makes a layout of them.
    if (m_layouts.current())
        useCurrentLayout();
    else {
        m_display.save(m_document->documentPath());
        m_layouts.save(m_document->documentPath());
        Q_EMIT displayChanged();
    }
}

void ZTLibraryWindow::renameLayout(int index, const QString &name)
{
    if (!m_layouts.renameLayout(index, name))
        return;
    m_layouts.save(m_document->documentPath());
    Q_EMIT displayChanged();
}

void ZTLibraryWindow::setTableFontSize(double points)
{
    m_display.fontSize = points > 0 ? qBound(4.0, points, 96.0) : 0;
    applyColumns(m_itemTable);
    applyColumns(m_filterTable);
    saveDisplay();
    Q_EMIT displayChanged();
}

void ZTLibraryWindow::setTableRowHeight(double pixels)
{
    m_display.rowHeight = qBound(8.0, pixels, 512.0);
    applyColumns(m_itemTable);
    applyColumns(m_filterTable);
    saveDisplay();
    Q_EMIT displayChanged();
}
