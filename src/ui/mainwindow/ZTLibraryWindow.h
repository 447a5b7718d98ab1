#pragma once

#include "library/ZTLayout.h"
#include "library/ZTWindowDisplay.h"
#include "library/lists/ZTListDrop.h"

#include <QHash>
#include <QMainWindow>
#include <QPointer>

#include <memory>

class QAction;
class QLabel;
class QLineEdit;
class QListView;
class QListWidget;
class QSplitter;
class QStackedWidget;
class QTabBar;
class QTextBrowser;
class QTimer;
class ZTDocument;
class ZTItemOperations;
class ZTItemTableModel;
class ZTItemTableView;
class ZTListTableModel;
class ZTListTableView;
class ZTOptionsPanel;
class ZTViewPipeline;

// One window per open library: the list column, the item table (or the
// filter browser over a second table), the search field, the statistics line
// and the detail panel. Every change goes through the view pipeline, the item
// operations and the document; the window only shows and asks.
class ZTLibraryWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit ZTLibraryWindow(std::unique_ptr<ZTDocument> document, QWidget *parent = nullptr);
    ~ZTLibraryWindow() override;

    ZTDocument &document() const { return *m_document; }
    ZTViewPipeline &pipeline() const { return *m_pipeline; }
    ZTItemOperations &operations() const { return *m_operations; }
    QString libraryPath() const;

    // Refreshes every view from the pipeline after the library changed.
    void refresh();
    void selectListRow(int row);
    void setSearchText(const QString &text);
    void showFilterTab(bool filter);
    void chooseFilter(const QString &label, const QString &value);
    void setDetailVisible(bool visible);
    bool isDetailVisible() const;
    // Selects the rows of these oids in the table in view.
    void selectOids(const QStringList &oids);
    QStringList selectedOids() const;

    // The alerts, replaceable so that tests answer them.
    using Question = std::function<bool(const QString &title, const QString &message)>;
    void setQuestion(Question question) { m_question = std::move(question); }

    ZTItemTableView *itemTable() const { return m_itemTable; }
    ZTItemTableView *filterTable() const { return m_filterTable; }
    ZTListTableView *listTable() const { return m_listTable; }
    QListWidget *filterLabels() const { return m_filterLabels; }
    QListWidget *filterValues() const { return m_filterValues; }
    QLineEdit *searchField() const { return m_searchField; }
    QLabel *statisticsLabel() const { return m_statistics; }
    QAction *actionForTag(int tag) const { return m_actions.value(tag); }
    ZTItemTableModel *itemModel() const { return m_itemModel; }
    ZTItemTableModel *filterModel() const { return m_filterModel; }
    const ZTWindowDisplay &display() const { return m_display; }
    // Shows or hides a column in both tables and remembers it for this library.
    void setColumnShown(const QString &identifier, bool shown);

    // Layouts: named column sets with their font size and row height. Edits
    // of the table go into the layout in use; switching clears the sort.
    const ZTLayouts &layouts() const { return m_layouts; }
    void switchLayout();
    void selectLayout(int index);
    int addLayout();
    void removeLayout(int index);
    void renameLayout(int index, const QString &name);
    // 0 gives the desktop's font.
    void setTableFontSize(double points);
    void setTableRowHeight(double pixels);
    // The floating panel that edits the layouts of this window.
    ZTOptionsPanel *optionsPanel(bool create = true);

    // Menu commands.
    bool save();
    bool revert();
    void removeItems(bool force);
    void duplicateItems();
    void setLocked(bool locked);
    void setRating(int rating);
    void addList();
    void openItemSheet(bool edit);
    void openClearSheet();
    void openSmartListSheet();
    // File › Import…: the choice of source, then that source's importer.
    void openImportConfigurationSheet();
    void openImportSheet();
    // File › Export…; the text-file columns chosen there are remembered
    // with this library's display.
    void openExportSheet();
    void removeSelectedList();
    void findDuplicates();
    void findUnlisted();

Q_SIGNALS:
    void newLibraryRequested();
    void openRequested();
    void quitRequested();
    void preferencesRequested();
    void sampleRequested();
    // The layouts, the columns, the font size or the row height changed.
    void displayChanged();
    // The window agreed to close (its library saved or changes discarded).
    void closing();

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    // Builds the pipeline, the views and the menus over m_document.
    void showDocument();
    ZTListViewState viewState() const;
    void buildViews();
    // The width a column starts with before the user resizes it.
    static int standardWidth(const QString &identifier);
    void applyColumns(ZTItemTableView *table);
    void showColumnMenu(const QPoint &pos);
    void toggleColumn(const QString &identifier);
    void columnResized(int logical, int oldSize, int newSize);
    void saveDisplay();
    void useCurrentLayout();
    void buildMenus();
    void connectActions();
    void listSelectionChanged();
    void itemSelectionChanged();
    void headerClicked(int section);
    void filterLabelChanged();
    void filterValueChanged();
    void reloadFilterValues();
    void updateSortIndicator();
    void updateStatistics();
    void updateDetail();
    void updateTitle();
    void updateActions();
    void afterItemsChanged(bool listsChanged);
    void applyPalette();
    bool confirm(const QString &title, const QString &message);
    ZTItemTableView *currentTable() const;

    std::unique_ptr<ZTDocument> m_document;
    std::unique_ptr<ZTViewPipeline> m_pipeline;
    std::unique_ptr<ZTItemOperations> m_operations;
    ZTListTableModel *m_listModel = nullptr;
    ZTItemTableModel *m_itemModel = nullptr;
    ZTItemTableModel *m_filterModel = nullptr;
    ZTListTableView *m_listTable = nullptr;
    ZTItemTableView *m_itemTable = nullptr;
    ZTItemTableView *m_filterTable = nullptr;
    QListWidget *m_filterLabels = nullptr;
    QListWidget *m_filterValues = nullptr;
    QTabBar *m_tabs = nullptr;
    QStackedWidget *m_pages = nullptr;
    QLineEdit *m_searchField = nullptr;
    QLabel *m_statistics = nullptr;
    QTextBrowser *m_detail = nullptr;
    QSplitter *m_splitter = nullptr;
    QHash<int, QAction *> m_actions;
    QList<QAction *> m_ratingActions;
    QAction *m_lockAction = nullptr;
    QAction *m_unlockAction = nullptr;
    Question m_question;
    ZTWindowDisplay m_display;
    ZTLayouts m_layouts;
    QPointer<ZTOptionsPanel> m_optionsPanel;
    QTimer *m_displaySaveTimer = nullptr;
    bool m_refreshing = false;
    bool m_splitWidthRestored = false;
};
