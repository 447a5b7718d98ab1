#include "app/ZTAppController.h"
#include "base/ZTSettings.h"
#include "library/ZTDocument.h"
#include "library/ZTViewPipeline.h"
#include "lists/ZTList.h"
#include "model/ZTItem.h"
#include "support/ZTTestSupport.h"
#include "ui/app/ZTApplicationController.h"
#include "ui/app/ZTNewLibraryDialog.h"
#include "ui/app/ZTSampleLibrary.h"
#include "ui/mainwindow/ZTDragData.h"
#include "ui/mainwindow/ZTItemTableModel.h"
#include "ui/mainwindow/ZTLibraryWindow.h"
#include "ui/mainwindow/ZTListTableModel.h"
#include "ui/mainwindow/ZTMainMenu.h"
#include "ui/mainwindow/ZTTableViews.h"

#include "support/ZTTestMain.h"
#include "ui/sheets/ZTItemSheet.h"
#include <QAction>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>

#include <QLineEdit>
#include <QtTest>

namespace {
QStringList columnTexts(const ZTItemTableModel &model, const QString &column)
{
    const int c = int(model.columns().indexOf(column));
    QStringList texts;
    for (int r = 0; r < model.rowCount(); ++r)
        texts.append(model.data(model.index(r, c), Qt::DisplayRole).toString());
    return texts;
}
} // namespace

class TestLibraryWindow : public QObject {
    Q_OBJECT
private:
    QTemporaryDir m_dir;
    std::unique_ptr<ZTLibraryWindow> openWindow(ZTMediaKind kind, int count,
                                                const QString &name = QStringLiteral("lib"))
    {
        const QString path = m_dir.filePath(name + QLatin1Char('.') + ZTMediaKinds::packageExtension(kind));
        QDir(path).removeRecursively();
        if (!ZTSampleLibrary::create(path, kind, count))
            return nullptr;
        auto document = ZTDocument::create(kind);
        if (!document->readFromURL(path))
            return nullptr;
        auto window = std::make_unique<ZTLibraryWindow>(std::move(document));
        window->setAttribute(Qt::WA_DeleteOnClose, false);
        return window;
    }

private Q_SLOTS:
    void initTestCase() { ZTTestSupport::useTemporarySettings(m_dir); }

    void showsEveryItemWithItsStatistics_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("noun");
        QTest::newRow("books") << int(ZTMediaKind::Book) << "50 books";
        QTest::newRow("music") << int(ZTMediaKind::Album) << "50 albums";
        QTest::newRow("movies") << int(ZTMediaKind::Movie) << "50 movies";
        QTest::newRow("comics") << int(ZTMediaKind::Comic) << "50 comics";
    }
    void showsEveryItemWithItsStatistics()
    {
        QFETCH(int, kind);
        QFETCH(QString, noun);
        auto window = openWindow(ZTMediaKind(kind), 50);
        QVERIFY(window);
        QCOMPARE(window->itemModel()->rowCount(), 50);
        QVERIFY2(window->statisticsLabel()->text().startsWith(noun),
                 qPrintable(window->statisticsLabel()->text()));
        QCOMPARE(window->itemModel()->columns().first(), QStringLiteral("cover"));
        QVERIFY(window->itemModel()->columns().contains(QStringLiteral("title")));
        // Titles come from the items, not from the row order of the store.
        QVERIFY(columnTexts(*window->itemModel(), QStringLiteral("title"))
                    .contains(ZTSampleLibrary::entries(ZTMediaKind(kind))
                                  .first()
                                  .value(QStringLiteral("title"))
                                  .toString()));
    }

    void searchNarrowsAndClears()
    {
        auto window = openWindow(ZTMediaKind::Book, 30);
        QVERIFY(window);
        window->searchField()->setText(QStringLiteral("a"));
        const int broad = window->itemModel()->rowCount();
        window->searchField()->setText(QStringLiteral("au"));
        window->searchField()->setText(QStringLiteral("austen"));
        QCOMPARE(window->itemModel()->rowCount(), 2);
        QVERIFY(broad > 2);
        QVERIFY(window->statisticsLabel()->text().startsWith(QStringLiteral("2 books")));
        window->searchField()->clear();
        QCOMPARE(window->itemModel()->rowCount(), 30);
    }

    void ean978FindsTheIsbn10Book()
    {
        auto window = openWindow(ZTMediaKind::Book, 5);
        QVERIFY(window);
        ZTItem *item = window->document().itemForOid(window->itemModel()->oidAtRow(0));
        item->setValueForKey(QStringLiteral("0141439513"), QStringLiteral("isbn"));
        window->pipeline().itemsDidChange({item->oid()});
        window->setSearchText(QStringLiteral("9780141439518"));
        QCOMPARE(window->itemModel()->rowCount(), 1);
        QCOMPARE(window->itemModel()->oidAtRow(0), item->oid());
    }

    void headerClicksSortAndCoverDoesNot()
    {
        auto window = openWindow(ZTMediaKind::Book, 30);
        QVERIFY(window);
        ZTItemTableModel *model = window->itemModel();
        QHeaderView *header = window->itemTable()->horizontalHeader();
        const QStringList before = columnTexts(*model, QStringLiteral("title"));
        Q_EMIT header->sectionClicked(int(model->columns().indexOf(QStringLiteral("cover"))));
        QCOMPARE(columnTexts(*model, QStringLiteral("title")), before);

        const int title = int(model->columns().indexOf(QStringLiteral("title")));
        Q_EMIT header->sectionClicked(title);
        QStringList ascending = columnTexts(*model, QStringLiteral("title"));
        QStringList expected = ascending;
        std::sort(expected.begin(), expected.end(),
                  [](const QString &a, const QString &b) { return a.localeAwareCompare(b) < 0; });
        QCOMPARE(ascending.first(), QStringLiteral("Adventures of Huckleberry Finn"));
        QCOMPARE(header->sortIndicatorSection(), title);
        QCOMPARE(header->sortIndicatorOrder(), Qt::AscendingOrder);
        Q_EMIT header->sectionClicked(title);
        QStringList descending = columnTexts(*model, QStringLiteral("title"));
        std::reverse(descending.begin(), descending.end());
        QCOMPARE(descending, ascending);
        QCOMPARE(header->sortIndicatorOrder(), Qt::DescendingOrder);

        // Type-ahead follows the active sort.
        Q_EMIT header->sectionClicked(title);
        window->itemTable()->keyboardSearch(QStringLiteral("tre"));
        const QStringList selected = window->selectedOids();
        QCOMPARE(selected.size(), 1);
        QCOMPARE(window->document().itemForOid(selected.first())->title(), QStringLiteral("Treasure Island"));
    }

    void removeAsksOnTheLibraryAndNotOnAList_data()
    {
        QTest::addColumn<bool>("answer");
        QTest::addColumn<int>("remaining");
        QTest::newRow("declined") << false << 10;
        QTest::newRow("confirmed") << true << 8;
    }
    void removeAsksOnTheLibraryAndNotOnAList()
    {
        QFETCH(bool, answer);
        QFETCH(int, remaining);
        auto window = openWindow(ZTMediaKind::Movie, 10);
        QVERIFY(window);
        QStringList titles;
        window->setQuestion([&](const QString &title, const QString &) {
            titles.append(title);
            return answer;
        });
        window->selectOids({window->itemModel()->oidAtRow(0), window->itemModel()->oidAtRow(3)});
        window->removeItems(false);
        QCOMPARE(titles, QStringList{QStringLiteral("Remove Items")});
        QCOMPARE(window->itemModel()->rowCount(), remaining);
        QCOMPARE(window->document().mainList()->count(), remaining);
    }

    void listsAreAddedRenamedAndRemoved()
    {
        auto window = openWindow(ZTMediaKind::Album, 10);
        QVERIFY(window);
        QAbstractItemModel *lists = window->listTable()->model();
        QCOMPARE(lists->rowCount(), 1);
        QCOMPARE(lists->index(0, 0).data().toString(), QStringLiteral("Library"));
        QCOMPARE(lists->index(0, 0).data(ZTListTableModel::CountRole).toInt(), 10);
        window->addList();
        QCOMPARE(lists->rowCount(), 2);
        QVERIFY(!lists->setData(lists->index(0, 0), QStringLiteral("Everything")));
        QVERIFY(!(lists->flags(lists->index(0, 0)) & Qt::ItemIsEditable));
        QVERIFY(lists->setData(lists->index(1, 0), QStringLiteral("Favourites")));
        QCOMPARE(window->document().itemLists().first()->name(), QStringLiteral("Favourites"));
        QCOMPARE(window->itemModel()->rowCount(), 0);

        QStringList asked;
        window->setQuestion([&](const QString &title, const QString &message) {
            asked << title << message;
            return true;
        });
        window->selectListRow(1);
        window->removeSelectedList();
        QCOMPARE(asked,
                 (QStringList{QStringLiteral("Remove List"),
                              QStringLiteral(
                                  "Are you sure you want to remove the selected list from your library?")}));
        QCOMPARE(lists->rowCount(), 1);
        QCOMPARE(window->itemModel()->rowCount(), 10);
    }

    void itemsDroppedOnAListJoinIt()
    {
        auto window = openWindow(ZTMediaKind::Book, 10);
        QVERIFY(window);
        window->show();
        window->addList();
        window->selectListRow(0);
        QCOMPARE(window->itemModel()->rowCount(), 10);
        ZTItemTableModel *model = window->itemModel();
        std::unique_ptr<QMimeData> data(model->mimeData({model->index(4, 1), model->index(1, 1)}));
        QVERIFY(data);
        ZTDragInfo info;
        QVERIFY(ZTDragData::read(data.get(), &info));
        QCOMPARE(info.source, ZTDragInfo::Source::ItemTable);
        QCOMPARE(info.document, &window->document());
        ZTListTableView *lists = window->listTable();
        const QPoint onRow = lists->visualRect(lists->model()->index(1, 0)).center();
        QVERIFY(lists->performDrop(data.get(), onRow));
        const ZTList *list = window->document().itemLists().first();
        QCOMPARE(list->itemOids(), (QStringList{model->oidAtRow(1), model->oidAtRow(4)}));
        QVERIFY(window->document().isDocumentEdited());

        // Dropping on the library itself adds nothing.
        std::unique_ptr<QMimeData> again(model->mimeData({model->index(2, 0)}));
        lists->performDrop(again.get(), lists->visualRect(lists->model()->index(0, 0)).center());
        QCOMPARE(window->document().mainList()->count(), 10);

        // A list dragged above the library row stays where it is.
        window->addList();
        std::unique_ptr<QMimeData> listDrag(lists->model()->mimeData({lists->model()->index(2, 0)}));
        QVERIFY(
            !lists->performDrop(listDrag.get(), lists->visualRect(lists->model()->index(0, 0)).topLeft()));
        QVERIFY(lists->performDrop(listDrag.get(), lists->visualRect(lists->model()->index(1, 0)).topLeft()));
        QCOMPARE(window->document().itemLists().last()->itemOids().size(), 2);
    }

    void filterTabBrowsesValuesWithNone()
    {
        auto window = openWindow(ZTMediaKind::Book, 30);
        QVERIFY(window);
        window->chooseFilter(QStringLiteral("Genre"), QStringLiteral("Horror"));
        QCOMPARE(window->filterValues()->item(0)->text(), QStringLiteral("<none>"));
        QCOMPARE(window->filterModel()->rowCount(), 3);
        QVERIFY(window->statisticsLabel()->text().startsWith(QStringLiteral("3 books")));
        window->showFilterTab(false);
        QCOMPARE(window->itemModel()->rowCount(), 30);
    }

    void revertReadsTheLibraryFromDisk()
    {
        auto window = openWindow(ZTMediaKind::Comic, 10);
        QVERIFY(window);
        window->setQuestion([](const QString &, const QString &) { return true; });
        window->selectOids({window->itemModel()->oidAtRow(0)});
        window->removeItems(true);
        QCOMPARE(window->itemModel()->rowCount(), 9);
        QVERIFY(window->revert());
        QCOMPARE(window->itemModel()->rowCount(), 10);
        window->selectOids({window->itemModel()->oidAtRow(0)});
        window->removeItems(true);
        QVERIFY(window->save());
        QVERIFY(window->revert());
        QCOMPARE(window->itemModel()->rowCount(), 9);
    }

    void columnsAndDetailAreRememberedPerLibrary_data()
    {
        QTest::addColumn<QByteArray>("damage");
        QTest::newRow("kept file") << QByteArray();
        QTest::newRow("garbage file") << QByteArray("\x00\xffnot a plist");
    }
    void columnsAndDetailAreRememberedPerLibrary()
    {
        QFETCH(QByteArray, damage);
        auto window = openWindow(ZTMediaKind::Book, 3, QStringLiteral("display"));
        QVERIFY(window);
        const QString path = window->libraryPath();
        QVERIFY(!window->itemModel()->columns().contains(QStringLiteral("rating")));
        QVERIFY(!window->isDetailVisible());
        window->setColumnShown(QStringLiteral("rating"), true);
        window->setColumnShown(QStringLiteral("isbn"), false);
        window->setDetailVisible(true);
        window->itemTable()->setColumnWidth(1, 333);
        QVERIFY(window->close());
        window.reset();
        if (!damage.isEmpty()) {
            QFile file(QDir(path).filePath(QStringLiteral("display.plist")));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(damage);
        }
        auto document = ZTDocument::create(ZTMediaKind::Book);
        QVERIFY(document->readFromURL(path));
        ZTLibraryWindow again(std::move(document));
        again.setAttribute(Qt::WA_DeleteOnClose, false);
        const QStringList columns = again.itemModel()->columns();
        if (damage.isEmpty()) {
            QCOMPARE(columns.last(), QStringLiteral("rating"));
            QVERIFY(!columns.contains(QStringLiteral("isbn")));
            QVERIFY(again.isDetailVisible());
            QCOMPARE(again.itemTable()->columnWidth(1), 333);
            QCOMPARE(again.itemModel()->columnType(int(columns.indexOf(QStringLiteral("rating")))),
                     QStringLiteral("rating"));
        } else {
            // An unreadable file gives the kind's standard columns.
            QCOMPARE(columns, ZTItemTableModel::standardColumns(ZTMediaKind::Book));
            QVERIFY(!again.isDetailVisible());
        }
    }

    void menuCarriesTheTitlesByTag_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<QString>("title");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("file") << 2000 << "File" << true;
        QTest::newRow("new") << 2001 << "New Library" << true;
        QTest::newRow("revert") << 2008 << "Revert" << false; // nothing changed yet
        QTest::newRow("import") << 2009 << "Import…" << true;
        QTest::newRow("export") << 2010 << "Export…" << true;
        QTest::newRow("list view") << 6003 << "List View" << true;
        QTest::newRow("add list") << 5001 << "Add List" << true;
        QTest::newRow("game") << 4010 << "Play Game…" << false;
        QTest::newRow("help") << 8003 << "Visit Fenwright Web Site" << false;
    }
    void menuCarriesTheTitlesByTag()
    {
        QFETCH(int, tag);
        QFETCH(QString, title);
        QFETCH(bool, enabled);
        auto window = openWindow(ZTMediaKind::Book, 1);
        QVERIFY(window);
        QAction *action = window->actionForTag(tag);
        QVERIFY(action);
        QCOMPARE(action->text(), title);
        QCOMPARE(action->isEnabled(), enabled);
    }

    void addItemOpensTheSheetAndTheTableShowsTheNewItem()
    {
        auto window = openWindow(ZTMediaKind::Book, 2);
        QVERIFY(window);
        const int before = window->document().mainList()->count();
        window->actionForTag(4002)->trigger();
        auto *sheet = window->findChild<ZTItemSheet *>();
        QVERIFY(sheet);
        QVERIFY(sheet->isVisible());
        auto *title = qobject_cast<QLineEdit *>(sheet->fieldForKey(QStringLiteral("title")));
        QVERIFY(title);
        title->setFocus();
        QTest::keyClicks(title, QStringLiteral("Added Through The Sheet"));
        sheet->saveAndClose();
        QCOMPARE(window->document().mainList()->count(), before + 1);
        const QString oid = window->document().mainList()->itemOids().first();
        QCOMPARE(window->document().itemForOid(oid)->title(), QStringLiteral("Added Through The Sheet"));
        QVERIFY(window->pipeline().displayedOids().contains(oid));
        QVERIFY(window->document().isDocumentEdited());
    }

    void newLibraryDialogOffersTheFourKinds()
    {
        ZTNewLibraryDialog dialog;
        QCOMPARE(dialog.windowTitle(), QStringLiteral("New Library"));
        QStringList choices;
        for (int i = 0; i < dialog.choices()->count(); ++i)
            choices.append(dialog.choices()->item(i)->text());
        QCOMPARE(choices, (QStringList{"Books", "Music", "Movies", "Comics"}));
        QCOMPARE(dialog.selectedKind(), ZTMediaKind::Book);
        QTest::keyClick(dialog.choices(), Qt::Key_Down);
        QCOMPARE(dialog.selectedKind(), ZTMediaKind::Album);
        QCOMPARE(ZTNewLibraryDialog::extensionForTag(3), QStringLiteral("ztcomiclib"));
        QCOMPARE(ZTNewLibraryDialog::extensionForTag(4), QString());
        QCOMPARE(ZTNewLibraryDialog::pathWithExtension("/tmp/x", ZTMediaKind::Movie),
                 QStringLiteral("/tmp/x.ztmovielib"));
        QCOMPARE(ZTNewLibraryDialog::pathWithExtension("/tmp/x.ztmovielib", ZTMediaKind::Movie),
                 QStringLiteral("/tmp/x.ztmovielib"));
    }

    void startUpOpensReopensAndRecords()
    {
        ZTSettings::remove(ZTSettingsKey::FirstRun);
        ZTSettings::remove(ZTSettingsKey::OpenLibraries);
        int dialogs = 0;
        {
            ZTApplicationController first;
            first.newLibraryDialogHook = [&] { ++dialogs; };
            QVERIFY(!first.start({}));
            QCOMPARE(dialogs, 1);
            QVERIFY(ZTSettings::value(ZTSettingsKey::FirstRun).toBool());
            QVERIFY(ZTSettings::value(ZTSettingsKey::LocaleBooksArray).toList().size() == 9);
        }
        const QString a = m_dir.filePath(QStringLiteral("a.ztbooklib"));
        const QString b = m_dir.filePath(QStringLiteral("b.ztmusiclib"));
        QVERIFY(ZTSampleLibrary::create(a, ZTMediaKind::Book, 3));
        QVERIFY(ZTSampleLibrary::create(b, ZTMediaKind::Album, 3));
        {
            ZTApplicationController controller;
            QVERIFY(controller.start({a, b, m_dir.filePath(QStringLiteral("missing.ztbooklib"))}));
            QCOMPARE(controller.windows().size(), 2);
            QVERIFY(controller.openLibrary(a) == controller.windows().first()); // not opened twice
            QVERIFY(controller.quit());
        }
        const auto reopen = ZTAppController::librariesToReopen();
        QCOMPARE(reopen.size(), 2);
        {
            ZTApplicationController again;
            again.newLibraryDialogHook = [&] { ++dialogs; };
            QVERIFY(again.start({}));
            QCOMPARE(dialogs, 1);
            QCOMPARE(again.windows().size(), 2);
            QVERIFY(again.quit());
        }
        {
            // Closing the last window by hand records it for the next start.
            ZTApplicationController single;
            QVERIFY(single.start({b}));
            QVERIFY(single.windows().first()->close());
            const auto last = ZTAppController::librariesToReopen();
            QCOMPARE(last.size(), 1);
            QCOMPARE(QFileInfo(last.first().path).fileName(), QStringLiteral("b.ztmusiclib"));
        }
        {
            ZTApplicationController bad;
            bad.newLibraryDialogHook = [&] { ++dialogs; };
            QVERIFY(!bad.start({m_dir.filePath(QStringLiteral("not-a-library.txt"))}));
            QCOMPARE(dialogs, 2);
        }
    }
};

ZT_TEST_GUI_MAIN(TestLibraryWindow)
#include "tst_librarywindow.moc"
