#include "ui/mainwindow/ZTLibraryWindow.h"

#include "base/ZTSettings.h"
#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"
#include "library/ZTItemOperations.h"
#include "library/ZTViewPipeline.h"
#include "library/lists/ZTListDrop.h"
#include "lists/ZTList.h"
#include "lists/ZTSmartList.h"
#include "model/ZTItem.h"
#include "ui/ZTUi.h"
#include "ui/mainwindow/ZTDelegates.h"
#include "ui/mainwindow/ZTDragData.h"
#include "ui/mainwindow/ZTItemTableModel.h"
#include "ui/mainwindow/ZTListTableModel.h"
#include "ui/mainwindow/ZTMainMenu.h"
#include "ui/mainwindow/ZTTableViews.h"
#include "ui/sheets/ZTClearAttributesSheet.h"
#include "ui/sheets/ZTItemSheet.h"
#include "ui/sheets/ZTMultipleEditSheet.h"
#include "ui/sheets/ZTSmartListSheet.h"

#include <QAction>
#include <QApplication>
#include <QBuffer>
#include <QCloseEvent>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabBar>
#include <QTextBrowser>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

namespace {
// Keys the detail panel shows under the title, in order, where the kind has them.
const QStringList s_detailKeys = {"authors",  "artists",  "directors",     "actors", "publisher",
                                  "label",    "studio",   "datePublished", "isbn",   "upc",
                                  "pages",    "duration", "issueNumber",   "genre",  "format",
                                  "location", "notes"};
} // namespace

ZTLibraryWindow::ZTLibraryWindow(std::unique_ptr<ZTDocument> document, QWidget *parent)
    : QMainWindow(parent), m_document(std::move(document))
{
    setAttribute(Qt::WA_DeleteOnClose);
    resize(1180, 720);
    showDocument();
}

void ZTLibraryWindow::showDocument()
{
    QList<ZTWindowDisplay::Column> standard;
    for (const QString &id : ZTItemTableModel::standardColumns(m_document->mediaKind()))
        standard.append({id, double(standardWidth(id))});
    m_display = ZTWindowDisplay::load(m_document->documentPath(), standard);
    m_layouts = ZTLayouts::load(m_document->documentPath());
    if (m_layouts.ensureOne(m_display))
        m_layouts.save(m_document->documentPath());
    else
        m_layouts.setCurrentIndex(m_display.currentLayout);
    if (!m_displaySaveTimer) {
        // Column drags fire many resizes: the file is written once they settle.
        m_displaySaveTimer = new QTimer(this);
        m_displaySaveTimer->setSingleShot(true);
        m_displaySaveTimer->setInterval(500);
        connect(m_displaySaveTimer, &QTimer::timeout, this, &ZTLibraryWindow::saveDisplay);
    }
    m_pipeline = std::make_unique<ZTViewPipeline>(*m_document);
    m_operations = std::make_unique<ZTItemOperations>(*m_pipeline);
    ZTDragData::registerDocument(m_document.get());
    const QVariant display = ZTSettings::value(ZTSettingsKey::StatisticsDisplay);
    if (display.isValid())
        m_pipeline->setStatisticsDisplayDictionary(display.toMap());
    m_document->documentDidOpen();
    m_pipeline->updateMainCaches();
    m_pipeline->selectListRow(0);
    m_pipeline->updateItemStatistics();
    buildViews();
    buildMenus();
    connectActions();
    refresh();
    m_listTable->setCurrentIndex(m_listModel->index(0, 0));
    m_detail->setVisible(m_display.isDetailPanelOpen);
    m_actions.value(6009)->setChecked(m_display.isDetailPanelOpen);
    if (!m_display.frameString.isEmpty())
        restoreGeometry(QByteArray::fromBase64(m_display.frameString.toLatin1()));
    connect(m_splitter, &QSplitter::splitterMoved, m_displaySaveTimer, qOverload<>(&QTimer::start));
}

ZTLibraryWindow::~ZTLibraryWindow()
{
    ZTDragData::unregisterDocument(m_document.get());
    // The views hold pointers into the document: let them go first.
    delete centralWidget();
}

QString ZTLibraryWindow::libraryPath() const
{
    return m_document->documentPath();
}

void ZTLibraryWindow::buildViews()
{
    m_listModel = new ZTListTableModel(*m_document, this);
    m_itemModel = new ZTItemTableModel(
        *m_document, [this] { return m_pipeline->baseOids(); }, this);
    m_filterModel = new ZTItemTableModel(
        *m_document, [this] { return m_pipeline->subItemOids(); }, this);

    m_listTable = new ZTListTableView;
    m_listTable->setModel(m_listModel);
    m_listTable->setItemDelegate(new ZTCountBadgeDelegate(ZTListTableModel::CountRole, m_listTable));
    m_listTable->setMinimumWidth(170);

    auto makeTable = [this](ZTItemTableModel *model) {
        auto *table = new ZTItemTableView;
        table->setModel(model);
        table->horizontalHeader()->setStretchLastSection(true);
        table->horizontalHeader()->setSortIndicatorShown(false);
        connect(table->horizontalHeader(), &QHeaderView::sectionClicked, this,
                &ZTLibraryWindow::headerClicked);
        table->horizontalHeader()->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(table->horizontalHeader(), &QWidget::customContextMenuRequested, this,
                &ZTLibraryWindow::showColumnMenu);
        applyColumns(table);
        connect(table->horizontalHeader(), &QHeaderView::sectionResized, this,
                &ZTLibraryWindow::columnResized);
        connect(table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
                &ZTLibraryWindow::itemSelectionChanged);
        ZTTableHooks hooks;
        hooks.typeAhead = [this](const QString &text) { return m_pipeline->itemTableTypeAhead(text); };
        hooks.deletePressed = [this] { removeItems(false); };
        hooks.validateDrop = [this](const ZTDragInfo &drag, int row, ZTDropOperation *operation) {
            const ZTListViewState state = viewState();
            return ZTListDrop(*m_document, state).validateDrop(drag, ZTDropTarget::ItemTable, row, operation);
        };
        hooks.acceptDrop = [this](const ZTDragInfo &drag, int row, ZTDropOperation operation) {
            const ZTListViewState state = viewState();
            const bool done =
                ZTListDrop(*m_document, state).acceptDrop(drag, ZTDropTarget::ItemTable, row, operation);
            if (done)
                afterItemsChanged(true);
            return done;
        };
        table->setHooks(hooks);
        return table;
    };
    m_itemTable = makeTable(m_itemModel);
    m_filterTable = makeTable(m_filterModel);
    m_filterTable->setEmptyText(tr("Choose a filter and a value above."));

    ZTTableHooks listHooks;
    listHooks.typeAhead = [this](const QString &text) { return m_pipeline->listTableTypeAhead(text); };
    listHooks.deletePressed = [this] { removeSelectedList(); };
    listHooks.validateDrop = [this](const ZTDragInfo &drag, int row, ZTDropOperation *operation) {
        const ZTListViewState state = viewState();
        return ZTListDrop(*m_document, state).validateDrop(drag, ZTDropTarget::ListTable, row, operation);
    };
    listHooks.acceptDrop = [this](const ZTDragInfo &drag, int row, ZTDropOperation operation) {
        const ZTListViewState state = viewState();
        const bool done =
            ZTListDrop(*m_document, state).acceptDrop(drag, ZTDropTarget::ListTable, row, operation);
        if (done) {
            m_document->updateChangeCount(ZTDocument::ChangeType::Done);
            afterItemsChanged(true);
        }
        return done;
    };
    m_listTable->setHooks(listHooks);
    connect(m_listTable->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &ZTLibraryWindow::listSelectionChanged);
    connect(m_listModel, &ZTListTableModel::listRenamed, this, [this] {
        m_document->updateChangeCount(ZTDocument::ChangeType::Done);
        updateTitle();
    });

    // The filter tab: labels, values with their count bars, and the matches.
    m_filterLabels = new QListWidget;
    m_filterValues = new QListWidget;
    m_filterValues->setItemDelegate(new ZTCountBarDelegate(m_filterValues));
    m_filterLabels->addItems(m_pipeline->filterKeys());
    for (int i = 0; i < m_filterLabels->count(); ++i)
        m_filterLabels->item(i)->setSizeHint(QSize(0, m_filterLabels->fontMetrics().height() + 8));
    connect(m_filterLabels, &QListWidget::currentRowChanged, this, &ZTLibraryWindow::filterLabelChanged);
    connect(m_filterValues, &QListWidget::currentRowChanged, this, &ZTLibraryWindow::filterValueChanged);
    auto *browser = new QSplitter(Qt::Horizontal);
    browser->addWidget(m_filterLabels);
    browser->addWidget(m_filterValues);
    auto *filterPage = new QSplitter(Qt::Vertical);
    filterPage->addWidget(browser);
    filterPage->addWidget(m_filterTable);
    filterPage->setSizes({200, 400});

    m_pages = new QStackedWidget;
    m_pages->addWidget(m_itemTable);
    m_pages->addWidget(filterPage);

    m_tabs = new QTabBar;
    m_tabs->addTab(QIcon::fromTheme(QStringLiteral("view-list-details")), tr("List"));
    m_tabs->addTab(QIcon::fromTheme(QStringLiteral("view-filter")), tr("Filter"));
    m_tabs->setDrawBase(false);
    connect(m_tabs, &QTabBar::currentChanged, this, [this](int index) { showFilterTab(index == 1); });

    m_searchField = new QLineEdit;
    m_searchField->setPlaceholderText(tr("Search"));
    m_searchField->setClearButtonEnabled(true);
    m_searchField->addAction(QIcon::fromTheme(QStringLiteral("edit-find")), QLineEdit::LeadingPosition);
    m_searchField->setMaximumWidth(280);
    connect(m_searchField, &QLineEdit::textChanged, this, &ZTLibraryWindow::setSearchText);

    m_statistics = new QLabel;
    m_statistics->setAlignment(Qt::AlignCenter);
    m_statistics->setContentsMargins(6, 4, 6, 4);

    m_detail = new QTextBrowser;
    m_detail->setMinimumWidth(240);
    m_detail->setOpenLinks(false);
    m_detail->setFrameShape(QFrame::NoFrame);

    auto *top = new QHBoxLayout;
    top->setContentsMargins(8, 6, 8, 6);
    top->setSpacing(8);
    top->addWidget(m_tabs);
    top->addStretch(1);
    top->addWidget(m_searchField);

    auto *centre = new QWidget;
    auto *centreLayout = new QVBoxLayout(centre);
    centreLayout->setContentsMargins(0, 0, 0, 0);
    centreLayout->setSpacing(0);
    centreLayout->addLayout(top);
    centreLayout->addWidget(m_pages, 1);
    centreLayout->addWidget(m_statistics);

    m_splitter = new QSplitter(Qt::Horizontal);
    m_splitter->addWidget(m_listTable);
    m_splitter->addWidget(centre);
    m_splitter->addWidget(m_detail);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setCollapsible(1, false);
    m_splitter->setSizes({200, 720, 260});
    setCentralWidget(m_splitter);
    applyPalette();
}

ZTListViewState ZTLibraryWindow::viewState() const
{
    ZTListViewState state;
    state.selectedListRow = m_pipeline->selectedListRow();
    state.usingSearch = m_pipeline->usingSearch();
    state.mainTabShowing = m_pipeline->tab() == ZTViewPipeline::Tab::Main;
    state.subItemOids = m_pipeline->subItemOids();
    return state;
}

ZTItemTableView *ZTLibraryWindow::currentTable() const
{
    return m_pipeline->tab() == ZTViewPipeline::Tab::Filter ? m_filterTable : m_itemTable;
}

void ZTLibraryWindow::refresh()
{
    m_refreshing = true;
    const int listRow = m_pipeline->selectedListRow();
    m_listModel->reload();
    m_listTable->setCurrentIndex(m_listModel->index(qBound(0, listRow, m_listModel->rowCount() - 1), 0));
    m_itemModel->reload();
    m_filterModel->reload();
    reloadFilterValues();
    updateSortIndicator();
    m_refreshing = false;
    updateStatistics();
    updateDetail();
    updateTitle();
    updateActions();
}

void ZTLibraryWindow::selectListRow(int row)
{
    m_listTable->setCurrentIndex(m_listModel->index(row, 0));
}

void ZTLibraryWindow::listSelectionChanged()
{
    if (m_refreshing)
        return;
    const int row = m_listTable->currentIndex().isValid() ? m_listTable->currentIndex().row() : 0;
    if (row == m_pipeline->selectedListRow() && !m_pipeline->usingSearch())
        return;
    {
        const QSignalBlocker block(m_searchField);
        m_searchField->clear();
    }
    m_pipeline->selectListRow(row);
    refresh();
}

void ZTLibraryWindow::setSearchText(const QString &text)
{
    if (m_searchField->text() != text) {
        const QSignalBlocker block(m_searchField);
        m_searchField->setText(text);
    }
    if (!text.isEmpty() && m_pipeline->tab() != ZTViewPipeline::Tab::Main)
        showFilterTab(false);
    m_pipeline->controlTextDidChange(text);
    // A search result is no stored list: sorting it changes nothing on disk.
    if (m_pipeline->usingSearch() && !m_pipeline->currentSortedColumnDictArray().isEmpty())
        m_pipeline->sortDisplayedOids();
    m_itemModel->reload();
    updateStatistics();
    if (m_itemModel->rowCount() > 0 && !text.isEmpty())
        m_itemTable->selectRow(0);
}

void ZTLibraryWindow::showFilterTab(bool filter)
{
    m_pipeline->setTab(filter ? ZTViewPipeline::Tab::Filter : ZTViewPipeline::Tab::Main);
    {
        const QSignalBlocker block(m_tabs);
        m_tabs->setCurrentIndex(filter ? 1 : 0);
    }
    m_pages->setCurrentIndex(filter ? 1 : 0);
    if (filter && m_filterLabels->currentRow() < 0 && m_filterLabels->count() > 0)
        m_filterLabels->setCurrentRow(0);
    m_pipeline->updateItemStatistics();
    updateStatistics();
    updateDetail();
}

void ZTLibraryWindow::chooseFilter(const QString &label, const QString &value)
{
    showFilterTab(true);
    const auto labels = m_filterLabels->findItems(label, Qt::MatchExactly);
    if (labels.isEmpty())
        return;
    m_filterLabels->setCurrentItem(labels.first());
    const auto values = m_filterValues->findItems(value, Qt::MatchExactly);
    if (!values.isEmpty())
        m_filterValues->setCurrentItem(values.first());
}

void ZTLibraryWindow::filterLabelChanged()
{
    const QSignalBlocker block(m_filterValues);
    m_pipeline->itemBrowserChanged(QStringList{});
    reloadFilterValues();
    m_filterModel->reload();
    m_pipeline->updateItemStatistics();
    updateStatistics();
}

void ZTLibraryWindow::reloadFilterValues()
{
    const QSignalBlocker block(m_filterValues);
    const QString chosen = m_pipeline->browserValue();
    m_filterValues->clear();
    QListWidgetItem *label = m_filterLabels->currentItem();
    if (!label)
        return;
    const QStringList values = m_pipeline->browserValues(label->text());
    // Count bars come from the pipeline once the filter is chosen; until a
    // value is picked the browser path holds the label alone.
    m_pipeline->itemBrowserChanged(QStringList{label->text()});
    const QVariantMap counts = m_pipeline->filterCountDictionary();
    const QVariantList countList = counts.value(QStringLiteral("counts")).toList();
    const int max = counts.value(QStringLiteral("max")).toInt();
    for (int i = 0; i < values.size(); ++i) {
        auto *item = new QListWidgetItem(values[i], m_filterValues);
        const int count = i < countList.size() ? countList[i].toInt() : 0;
        item->setData(ZTCountBarDelegate::CountRole, count);
        item->setData(ZTCountBarDelegate::MaxRole, max);
        item->setToolTip(QString::number(count));
        item->setSizeHint(QSize(0, m_filterValues->fontMetrics().height() + 12));
    }
    if (!chosen.isEmpty()) {
        const auto found = m_filterValues->findItems(chosen, Qt::MatchExactly);
        if (!found.isEmpty()) {
            m_filterValues->setCurrentItem(found.first());
            m_pipeline->itemBrowserChanged(label->text(), chosen);
        }
    }
}

void ZTLibraryWindow::filterValueChanged()
{
    QListWidgetItem *label = m_filterLabels->currentItem();
    QListWidgetItem *value = m_filterValues->currentItem();
    if (!label)
        return;
    if (value)
        m_pipeline->itemBrowserChanged(label->text(), value->text());
    else
        m_pipeline->itemBrowserChanged(QStringList{});
    m_filterModel->reload();
    m_pipeline->updateItemStatistics();
    updateStatistics();
}

void ZTLibraryWindow::headerClicked(int section)
{
    auto *header = qobject_cast<QHeaderView *>(sender());
    ZTItemTableModel *model = header && header->parent() == m_filterTable ? m_filterModel : m_itemModel;
    const QString column = model->columnIdentifier(section);
    const bool control = QApplication::keyboardModifiers() & Qt::ControlModifier;
    const QStringList selected = selectedOids();
    if (!m_pipeline->didClickTableColumn(column, section, control))
        return;
    m_itemModel->reload();
    m_filterModel->reload();
    updateSortIndicator();
    selectOids(selected);
}

void ZTLibraryWindow::updateSortIndicator()
{
    const QList<ZTSortEntry> &entries = m_pipeline->currentSortedColumnDictArray();
    for (ZTItemTableView *table : {m_itemTable, m_filterTable}) {
        auto *model = static_cast<ZTItemTableModel *>(table->model());
        QHeaderView *header = table->horizontalHeader();
        if (entries.isEmpty()) {
            header->setSortIndicatorShown(false);
            continue;
        }
        const QString column =
            m_document->attributeTables().columnForSortKey(entries.first().columnIdentifier);
        const int section = model->columns().indexOf(column);
        header->setSortIndicatorShown(section >= 0);
        if (section >= 0)
            header->setSortIndicator(section,
                                     entries.first().ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
    }
}

void ZTLibraryWindow::itemSelectionChanged()
{
    updateDetail();
    updateActions();
}

QStringList ZTLibraryWindow::selectedOids() const
{
    ZTItemTableView *table = currentTable();
    auto *model = static_cast<ZTItemTableModel *>(table->model());
    QList<int> rows;
    for (const QModelIndex &index : table->selectionModel()->selectedRows())
        rows.append(index.row());
    std::sort(rows.begin(), rows.end());
    QStringList oids;
    for (int row : std::as_const(rows))
        oids.append(model->oidAtRow(row));
    return oids;
}

void ZTLibraryWindow::selectOids(const QStringList &oids)
{
    ZTItemTableView *table = currentTable();
    auto *model = static_cast<ZTItemTableModel *>(table->model());
    QItemSelection selection;
    int first = -1;
    for (const QString &oid : oids) {
        const int row = model->rowOfOid(oid);
        if (row < 0)
            continue;
        selection.select(model->index(row, 0), model->index(row, model->columnCount() - 1));
        first = first < 0 ? row : qMin(first, row);
    }
    table->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (first >= 0)
        table->scrollTo(model->index(first, 0));
}

void ZTLibraryWindow::updateStatistics()
{
    m_statistics->setText(m_pipeline->itemStatisticsString());
    QString empty;
    if (m_pipeline->usingSearch())
        empty = tr("Nothing matches \"%1\".").arg(m_searchField->text());
    else if (m_pipeline->isMainListSelected())
        empty = tr("This library is empty.\nAdd items, or drop them here from another library.");
    else
        empty = tr("This list is empty.\nDrag items from the library onto the list to add them.");
    m_itemTable->setEmptyText(empty);
}

void ZTLibraryWindow::setDetailVisible(bool visible)
{
    m_detail->setVisible(visible);
    m_display.isDetailPanelOpen = visible;
    m_displaySaveTimer->start();
    if (QAction *toggle = m_actions.value(6009))
        toggle->setChecked(visible);
}

bool ZTLibraryWindow::isDetailVisible() const
{
    return !m_detail->isHidden();
}

void ZTLibraryWindow::updateDetail()
{
    const QStringList oids = selectedOids();
    ZTItem *item = oids.size() == 1 ? m_document->itemForOid(oids.first()) : nullptr;
    if (!item) {
        m_detail->setHtml(QStringLiteral("<p style='color:gray' align='center'><br><br>%1</p>")
                              .arg(oids.isEmpty() ? tr("No selection")
                                                  : tr("%n items selected", nullptr, int(oids.size()))));
        return;
    }
    QString html;
    const QByteArray bytes = item->largestImageAvailable();
    QImage image;
    if (!bytes.isEmpty() && image.loadFromData(bytes)) {
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        image.scaled(200, 260, Qt::KeepAspectRatio, Qt::SmoothTransformation).save(&buffer, "PNG");
        html += QStringLiteral("<p align='center'><img src='data:image/png;base64,%1'></p>")
                    .arg(QString::fromLatin1(png.toBase64()));
    }
    html += QStringLiteral("<h3>%1</h3><table cellspacing='2'>").arg(item->title().toHtmlEscaped());
    const ZTAttributeTables &tables = m_document->attributeTables();
    for (const QString &key : s_detailKeys) {
        const ZTExportColumn *column = tables.column(key);
        if (!column || !item->hasKey(key))
            continue;
        // Read as the table's cell reads it, so dates and people look the same in both.
        const ZTCellReader cell = tables.tableViewEntry(key);
        const QString text = ZTItemTableModel::displayText(
            item->valueForKey(cell.key.isEmpty() ? key : cell.key), QStringLiteral(", "));
        if (text.trimmed().isEmpty() || text == QLatin1String("0"))
            continue;
        html += QStringLiteral("<tr><td style='color:gray' align='right'>%1</td><td>%2</td></tr>")
                    .arg(column->title.toHtmlEscaped(), text.toHtmlEscaped());
    }
    html += QStringLiteral("</table>");
    const int rating = item->valueForKey(QStringLiteral("rating")).toInt();
    if (rating > 0)
        html += QStringLiteral("<p>%1</p>")
                    .arg(QString(rating, QChar(0x2605)) + QString(5 - rating, QChar(0x2606)));
    if (item->isLentOut()) {
        const QString name = item->valueForKey(QStringLiteral("lentToName")).toString();
        const QDate due = item->valueForKey(QStringLiteral("dateDue")).toDate();
        html += QStringLiteral("<p><b>%1</b>").arg(tr("Lent to %1").arg(name.toHtmlEscaped()));
        if (due.isValid())
            html +=
                QStringLiteral("<br>%1").arg(tr("Due %1").arg(QLocale().toString(due, QLocale::LongFormat)));
        html += QStringLiteral("</p>");
    }
    m_detail->setHtml(html);
}

void ZTLibraryWindow::updateTitle()
{
    setWindowTitle(m_document->displayName() + QStringLiteral("[*]"));
    setWindowModified(m_document->isDocumentEdited());
    setWindowFilePath(m_document->documentPath());
}

bool ZTLibraryWindow::save()
{
    QString error;
    if (!m_document->saveDocument(&error)) {
        QMessageBox::critical(this, tr("The library could not be saved"), error);
        return false;
    }
    updateTitle();
    updateActions();
    return true;
}

bool ZTLibraryWindow::revert()
{
    auto fresh = ZTDocument::create(m_document->mediaKind());
    QString error;
    if (!fresh->readFromURL(m_document->documentPath(), &error)) {
        QMessageBox::critical(this, tr("The library could not be read"), error);
        return false;
    }
    // Rebuild the views over the fresh document; the old one goes with them.
    auto *old = centralWidget();
    ZTDragData::unregisterDocument(m_document.get());
    delete old;
    delete m_listModel;
    delete m_itemModel;
    delete m_filterModel;
    menuBar()->clear();
    for (QToolBar *bar : findChildren<QToolBar *>())
        delete bar;
    for (QAction *action : actions())
        removeAction(action);
    m_ratingActions.clear();
    m_operations.reset();
    m_pipeline.reset();
    m_document->close();
    m_document = std::move(fresh);
    showDocument();
    return true;
}

void ZTLibraryWindow::closeEvent(QCloseEvent *event)
{
    if (m_document->isDocumentEdited()) {
        QMessageBox box(
            QMessageBox::Warning, tr("Save changes?"),
            tr("Do you want to save the changes made to the library \"%1\"?").arg(m_document->displayName()),
            QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
        box.setInformativeText(tr("Your changes will be lost if you don't save them."));
        box.setDefaultButton(QMessageBox::Save);
        const int answer =
            m_question ? (m_question(tr("Save changes?"), m_document->displayName()) ? QMessageBox::Save
                                                                                     : QMessageBox::Discard)
                       : box.exec();
        if (answer == QMessageBox::Cancel || (answer == QMessageBox::Save && !save())) {
            event->ignore();
            return;
        }
    }
    saveDisplay();
    Q_EMIT closing();
    event->accept();
}

void ZTLibraryWindow::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    // The list column's width is set once the splitter has its real size.
    if (m_splitWidthRestored || m_display.splitViewWidth <= 0)
        return;
    m_splitWidthRestored = true;
    QList<int> sizes = m_splitter->sizes();
    const int list = qRound(m_display.splitViewWidth);
    sizes[1] += sizes[0] - list;
    sizes[0] = list;
    m_splitter->setSizes(sizes);
}

void ZTLibraryWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange)
        applyPalette();
    QMainWindow::changeEvent(event);
}

void ZTLibraryWindow::applyPalette()
{
    // The side columns take the window colour, a shade apart from the table,
    // whether the desktop is light or dark.
    if (!m_listTable)
        return;
    ZTUi::followPalette();
    QPalette side = palette();
    const bool dark = side.color(QPalette::Window).lightness() < 128;
    const QColor base = side.color(QPalette::Window);
    side.setColor(QPalette::Base, dark ? base.lighter(115) : base.darker(103));
    m_listTable->setPalette(side);
    m_detail->setPalette(side);
    QPalette stats = palette();
    stats.setColor(QPalette::WindowText, stats.color(QPalette::PlaceholderText));
    m_statistics->setPalette(stats);
}
