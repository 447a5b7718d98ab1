// The window's menus and the commands they run: items, lists and the sheets.
#include "base/ZTSettings.h"
#include "import/ZTImportConfiguration.h"
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
#include "ui/mainwindow/ZTLibraryWindow.h"
#include "ui/mainwindow/ZTListTableModel.h"
#include "ui/mainwindow/ZTMainMenu.h"
#include "ui/mainwindow/ZTOptionsPanel.h"
#include "ui/mainwindow/ZTTableViews.h"
#include "ui/sheets/ZTClearAttributesSheet.h"
#include "ui/sheets/ZTExportSheet.h"
#include "ui/sheets/ZTImportConfigurationSheet.h"
#include "ui/sheets/ZTImportSheet.h"
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

void ZTLibraryWindow::buildMenus()
{
    m_actions = ZTMainMenu::build(menuBar(), this);
    QMenu *itemMenu = m_actions.value(4000)->menu();
    QAction *before = m_actions.value(4006);
    itemMenu->insertSeparator(before);
    m_lockAction = new QAction(QIcon::fromTheme(QStringLiteral("object-locked")), tr("Lock"), this);
    m_unlockAction = new QAction(QIcon::fromTheme(QStringLiteral("object-unlocked")), tr("Unlock"), this);
    itemMenu->insertAction(before, m_lockAction);
    itemMenu->insertAction(before, m_unlockAction);
    auto *ratingMenu = new QMenu(tr("Rating"), itemMenu);
    for (int rating = 0; rating <= 5; ++rating) {
        QAction *action = ratingMenu->addAction(rating == 0 ? tr("None") : QString(rating, QChar(0x2605)));
        connect(action, &QAction::triggered, this, [this, rating] { setRating(rating); });
        m_ratingActions.append(action);
    }
    itemMenu->insertMenu(before, ratingMenu);
    auto *toolbar = addToolBar(tr("Toolbar"));
    toolbar->setObjectName(QStringLiteral("mainToolbar"));
    toolbar->setMovable(false);
    toolbar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    toolbar->setIconSize(QSize(22, 22));
    for (int tag : {4002, 4004, 5001, 6009})
        toolbar->addAction(m_actions.value(tag));
}

void ZTLibraryWindow::connectActions()
{
    auto on = [this](int tag, auto slot) {
        QAction *action = m_actions.value(tag);
        if (!action)
            return;
        action->setEnabled(true);
        connect(action, &QAction::triggered, this, slot);
    };
    on(2001, [this] { Q_EMIT newLibraryRequested(); });
    on(2002, [this] { Q_EMIT openRequested(); });
    on(2005, [this] { close(); });
    on(2006, [this] { save(); });
    on(2008, [this] { revert(); });
    on(1009, [this] { Q_EMIT quitRequested(); });
    on(1003, [this] { Q_EMIT preferencesRequested(); });
    on(3007, [this] { currentTable()->selectAll(); });
    on(3006, [this] { removeItems(false); });
    on(4004, [this] { removeItems(true); });
    on(4005, [this] { duplicateItems(); });
    on(4008, [this] { findDuplicates(); });
    on(4009, [this] { findUnlisted(); });
    on(5001, [this] { addList(); });
    on(4002, [this] { openItemSheet(false); });
    on(4001, [this] { openItemSheet(true); });
    on(4007, [this] { openClearSheet(); });
    on(5002, [this] { openSmartListSheet(); });
    on(2009, [this] { openImportConfigurationSheet(); });
    on(2010, [this] { openExportSheet(); });
    on(6003, [this] { showFilterTab(false); });
    on(6004, [this] { showFilterTab(true); });
    on(6009, [this] { setDetailVisible(!isDetailVisible()); });
    on(6007, [this] { switchLayout(); });
    on(6010, [this] {
        ZTOptionsPanel *panel = optionsPanel();
        panel->setVisible(!panel->isVisible());
        if (panel->isVisible())
            panel->raise();
    });
    on(6006, [this] {
        ZTItemTableView *table = currentTable();
        for (int c = 1; c < table->model()->columnCount(); ++c)
            table->resizeColumnToContents(c);
    });
    on(7001, [this] { showMinimized(); });
    on(1001, [this] {
        QMessageBox::about(this, ZTMainMenu::titleForTag(1001),
                           tr("<b>Zettary</b> %1<br>A cataloguer for books, music, movies and comics.")
                               .arg(QStringLiteral(ZETTARY_VERSION)));
    });
    m_actions.value(6009)->setCheckable(true);
    connect(m_lockAction, &QAction::triggered, this, [this] { setLocked(true); });
    connect(m_unlockAction, &QAction::triggered, this, [this] { setLocked(false); });
}

void ZTLibraryWindow::updateActions()
{
    const bool hasSelection = !selectedOids().isEmpty();
    for (int tag : {4001, 4004, 4005, 4007, 3006})
        if (QAction *action = m_actions.value(tag))
            action->setEnabled(hasSelection);
    m_lockAction->setEnabled(hasSelection);
    m_unlockAction->setEnabled(hasSelection);
    for (QAction *action : std::as_const(m_ratingActions))
        action->setEnabled(hasSelection);
    m_actions.value(2008)->setEnabled(m_document->isDocumentEdited());
}

// The sheets are window-modal and delete themselves when closed; whatever they
// changed reaches the views through afterItemsChanged.
void ZTLibraryWindow::openItemSheet(bool edit)
{
    const QStringList oids = selectedOids();
    if (edit && oids.size() > 1) {
        auto *sheet = new ZTMultipleEditSheet(*m_pipeline, this);
        sheet->setAttribute(Qt::WA_DeleteOnClose);
        connect(sheet, &ZTMultipleEditSheet::itemsSaved, this, [this] { afterItemsChanged(true); });
        if (!sheet->openWithOids(oids))
            sheet->deleteLater();
        return;
    }
    auto *sheet = new ZTItemSheet(*m_pipeline, this);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    connect(sheet, &ZTItemSheet::itemSaved, this, [this] { afterItemsChanged(true); });
    if (!edit) {
        sheet->openToAdd();
    } else if (oids.isEmpty() || !sheet->openToEdit(oids.first())) {
        sheet->deleteLater();
    }
}

void ZTLibraryWindow::openClearSheet()
{
    auto *sheet = new ZTClearAttributesSheet(*m_pipeline, this);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    connect(sheet, &ZTClearAttributesSheet::itemsCleared, this, [this] { afterItemsChanged(true); });
    if (!sheet->openWithOids(selectedOids()))
        sheet->deleteLater();
}

void ZTLibraryWindow::openSmartListSheet()
{
    auto *sheet = new ZTSmartListSheet(*m_document, this);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    connect(sheet, &ZTSmartListSheet::smartListSaved, this, [this] { afterItemsChanged(true); });
    sheet->openToAdd();
}

void ZTLibraryWindow::openImportConfigurationSheet()
{
    auto *sheet = new ZTImportConfigurationSheet(m_document->mediaKind(), this);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    connect(sheet, &ZTImportConfigurationSheet::sourceSelected, this, [this](const QString &selector) {
        // Only the delimited importer exists; the sheet offers no other.
        if (selector == ZTImportSelector::file)
            openImportSheet();
    });
    sheet->open();
}

void ZTLibraryWindow::openImportSheet()
{
    auto *sheet = new ZTImportSheet(*m_document, this);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    connect(sheet, &ZTImportSheet::itemsImported, this, [this] {
        // The importer adds through the document alone, so the view's caches,
        // its filter and its statistics learn of the new items here.
        m_pipeline->updateMainCaches();
        m_pipeline->mutableSubItemOids().clear();
        m_pipeline->updateItemStatistics();
        afterItemsChanged(true);
    });
    sheet->open();
}

namespace {
const QString s_fileExportKeys = QStringLiteral("fileExportKeys");
}

void ZTLibraryWindow::openExportSheet()
{
    auto *sheet = new ZTExportSheet(*m_document, this);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->setRememberedKeys(m_display.dictionary.value(s_fileExportKeys).toStringList());
    // The display dictionary carries keys it does not know as they are, so
    // the columns travel with the rest of this library's window state.
    connect(sheet, &ZTExportSheet::exportKeysChanged, this, [this](const QStringList &keys) {
        m_display.dictionary.insert(s_fileExportKeys, keys);
        saveDisplay();
    });
    sheet->open();
}

void ZTLibraryWindow::afterItemsChanged(bool listsChanged)
{
    Q_UNUSED(listsChanged);
    refresh();
}

bool ZTLibraryWindow::confirm(const QString &title, const QString &message)
{
    if (m_question)
        return m_question(title, message);
    QMessageBox box(QMessageBox::Warning, title, message, QMessageBox::Cancel, this);
    QPushButton *remove = box.addButton(tr("Remove"), QMessageBox::DestructiveRole);
    box.setDefaultButton(QMessageBox::Cancel);
    box.setWindowModality(Qt::WindowModal);
    box.exec();
    return box.clickedButton() == static_cast<QAbstractButton *>(remove);
}

void ZTLibraryWindow::removeItems(bool force)
{
    const QStringList oids = selectedOids();
    if (oids.isEmpty())
        return;
    const auto removal = m_operations->removeSelectedRowsInTableView(
        oids, force ? ZTItemOperations::Force::Yes : ZTItemOperations::Force::No,
        [this](const QString &title, const QString &message) { return confirm(title, message); });
    if (removal != ZTItemOperations::Removal::None)
        refresh();
}

void ZTLibraryWindow::duplicateItems()
{
    const QStringList oids = selectedOids();
    QList<int> rows;
    const QStringList displayed = m_pipeline->displayedOids();
    for (const QString &oid : oids)
        if (const int row = int(displayed.indexOf(oid)); row >= 0)
            rows.append(row);
    const QList<ZTItem *> copies = m_operations->duplicateItems(rows);
    refresh();
    QStringList copied;
    for (ZTItem *copy : copies)
        copied.append(copy->oid());
    selectOids(copied);
}

void ZTLibraryWindow::setLocked(bool locked)
{
    m_operations->setItemsToBeLocked(selectedOids(), locked);
    const QStringList selected = selectedOids();
    refresh();
    selectOids(selected);
}

void ZTLibraryWindow::setRating(int rating)
{
    const QStringList selected = selectedOids();
    if (m_operations->setRatingOfItems(selected, rating) == 0)
        return;
    m_itemModel->reload();
    m_filterModel->reload();
    selectOids(selected);
    updateTitle();
    updateDetail();
}

void ZTLibraryWindow::addList()
{
    if (!m_document->addList())
        return;
    m_document->updateChangeCount(ZTDocument::ChangeType::Done);
    m_listModel->reload();
    const QModelIndex index = m_listModel->index(m_listModel->rowCount() - 1, 0);
    m_listTable->setCurrentIndex(index);
    listSelectionChanged();
    m_listTable->edit(index);
    updateTitle();
}

void ZTLibraryWindow::removeSelectedList()
{
    const int row = m_listTable->currentIndex().row();
    if (row < 1)
        return;
    if (m_operations->removeSelectedList(
            row, [this](const QString &title, const QString &message) { return confirm(title, message); }))
        refresh();
}

void ZTLibraryWindow::findDuplicates()
{
    if (!m_operations->findDuplicates()) {
        QMessageBox::information(this, ZTMainMenu::titleForTag(4008), tr("No duplicates were found."));
        return;
    }
    refresh();
    selectListRow(m_listModel->rowCount() - 1);
}

void ZTLibraryWindow::findUnlisted()
{
    if (!m_operations->findUnlisted()) {
        QMessageBox::information(this, ZTMainMenu::titleForTag(4009), tr("Every item is in a list."));
        return;
    }
    refresh();
    selectListRow(m_listModel->rowCount() - 1);
}

ZTOptionsPanel *ZTLibraryWindow::optionsPanel(bool create)
{
    if (!m_optionsPanel && create)
        m_optionsPanel = new ZTOptionsPanel(this);
    return m_optionsPanel;
}
