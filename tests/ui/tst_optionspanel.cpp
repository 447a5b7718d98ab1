#include "library/ZTDocument.h"
#include "library/ZTLayout.h"
#include "library/ZTViewPipeline.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"
#include "ui/app/ZTSampleLibrary.h"
#include "ui/mainwindow/ZTItemTableModel.h"
#include "ui/mainwindow/ZTLibraryWindow.h"
#include "ui/mainwindow/ZTOptionsPanel.h"
#include "ui/mainwindow/ZTTableViews.h"

#include <QAction>
#include <QDoubleSpinBox>
#include <QHeaderView>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QSplitter>
#include <QtTest>

// The options panel and the layouts it edits, driven as a user would, and
// what a library remembers of them when it is opened again.
class TestOptionsPanel : public QObject {
    Q_OBJECT
private:
    QTemporaryDir m_dir;
    QString m_path;

    std::unique_ptr<ZTLibraryWindow> open()
    {
        auto document = ZTDocument::create(ZTMediaKind::Book);
        if (!document->readFromURL(m_path))
            return nullptr;
        auto window = std::make_unique<ZTLibraryWindow>(std::move(document));
        window->setAttribute(Qt::WA_DeleteOnClose, false);
        // Sorting marks the library changed; closing discards that.
        window->setQuestion([](const QString &, const QString &) { return false; });
        return window;
    }
    static QListWidgetItem *columnRow(ZTOptionsPanel *panel, const QString &title)
    {
        const QList<QListWidgetItem *> rows = panel->columnList()->findItems(title, Qt::MatchExactly);
        return rows.value(0);
    }

private Q_SLOTS:
    void initTestCase()
    {
        ZTTestSupport::useTemporarySettings(m_dir);
        m_path = m_dir.filePath(QStringLiteral("shelf.ztbooklib"));
        QVERIFY(ZTSampleLibrary::create(m_path, ZTMediaKind::Book, 20));
    }

    void layoutsAreEditedAndRemembered()
    {
        {
            auto window = open();
            QVERIFY(window);
            // A library without layouts gets one at once, kept in the package.
            QCOMPARE(window->layouts().layouts().size(), 1);
            QCOMPARE(window->layouts().layouts().first().name, QStringLiteral("Layout"));
            QVERIFY(QFileInfo::exists(m_path + QStringLiteral("/layouts.plist")));
            QVERIFY(window->itemModel()->columns().contains(QStringLiteral("isbn")));

            window->actionForTag(6010)->trigger();
            ZTOptionsPanel *panel = window->optionsPanel(false);
            QVERIFY(panel && panel->isVisible());
            QCOMPARE(panel->layoutList()->count(), 1);
            QCOMPARE(columnRow(panel, QStringLiteral("ISBN"))->checkState(), Qt::Checked);

            // A second layout without the ISBN, with its own row height.
            panel->addButton()->click();
            QCOMPARE(panel->layoutList()->count(), 2);
            QCOMPARE(panel->layoutList()->currentRow(), 1);
            QCOMPARE(panel->layoutList()->item(1)->text(), QStringLiteral("<layout>"));
            columnRow(panel, QStringLiteral("ISBN"))->setCheckState(Qt::Unchecked);
            QVERIFY(!window->itemModel()->columns().contains(QStringLiteral("isbn")));
            QVERIFY(!window->filterModel()->columns().contains(QStringLiteral("isbn")));
            panel->rowHeightBox()->setValue(40);
            QCOMPARE(window->itemTable()->verticalHeader()->defaultSectionSize(), 40);
            panel->layoutList()->item(1)->setText(QStringLiteral("Compact"));
            QCOMPARE(window->layouts().layouts().at(1).name, QStringLiteral("Compact"));
            // A blank name is refused and the old one shows again.
            panel->layoutList()->item(1)->setText(QStringLiteral("  "));
            QCOMPARE(panel->layoutList()->item(1)->text(), QStringLiteral("Compact"));

            // Back to the first layout: its columns and row height return.
            panel->layoutList()->setCurrentRow(0);
            QVERIFY(window->itemModel()->columns().contains(QStringLiteral("isbn")));
            QCOMPARE(window->itemTable()->verticalHeader()->defaultSectionSize(), 62);
            QCOMPARE(panel->rowHeightBox()->value(), 62);

            // Switch Layout steps on and clears the sort: a new column set has none.
            QVERIFY(window->pipeline().didClickTableColumn(QStringLiteral("title"), 1, false));
            QVERIFY(!window->pipeline().currentSortedColumnDictArray().isEmpty());
            window->actionForTag(6007)->trigger();
            QCOMPARE(window->layouts().currentIndex(), 1);
            QVERIFY(window->pipeline().currentSortedColumnDictArray().isEmpty());
            QCOMPARE(panel->layoutList()->currentRow(), 1);
            // From the last, it wraps to the first.
            window->actionForTag(6007)->trigger();
            QCOMPARE(window->layouts().currentIndex(), 0);
            window->actionForTag(6007)->trigger();
            QVERIFY(window->close());
        }
        {
            // Opened again: both layouts, the second in use with its columns.
            auto window = open();
            QVERIFY(window);
            QCOMPARE(window->layouts().layouts().size(), 2);
            QCOMPARE(window->layouts().currentIndex(), 1);
            QCOMPARE(window->layouts().layouts().at(1).name, QStringLiteral("Compact"));
            QVERIFY(!window->itemModel()->columns().contains(QStringLiteral("isbn")));
            QCOMPARE(window->itemTable()->verticalHeader()->defaultSectionSize(), 40);

            // Removing layouts down to none leaves the table as it is.
            ZTOptionsPanel *panel = window->optionsPanel();
            panel->layoutList()->setCurrentRow(1);
            panel->removeButton()->click();
            QCOMPARE(window->layouts().layouts().size(), 1);
            QCOMPARE(window->layouts().currentIndex(), 0);
            QVERIFY(window->itemModel()->columns().contains(QStringLiteral("isbn")));
            panel->removeButton()->click();
            QVERIFY(window->layouts().layouts().isEmpty());
            QVERIFY(!panel->removeButton()->isEnabled());
            QVERIFY(window->close());
        }
        // The next opening makes a layout again.
        auto window = open();
        QCOMPARE(window->layouts().layouts().size(), 1);
        window->close();
    }

    void windowPlaceAndListWidthAreRemembered()
    {
        {
            auto window = open();
            window->resize(900, 600);
            window->show();
            QVERIFY(QTest::qWaitForWindowExposed(window.get()));
            auto *splitter = window->findChild<QSplitter *>();
            QVERIFY(splitter);
            QList<int> sizes = splitter->sizes();
            sizes[1] += sizes[0] - 260;
            sizes[0] = 260;
            splitter->setSizes(sizes);
            QVERIFY(window->close());
        }
        auto window = open();
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        QCOMPARE(window->size(), QSize(900, 600));
        QCOMPARE(window->findChild<QSplitter *>()->sizes().first(), 260);
        QCOMPARE(window->display().splitViewWidth, 260.0);
        window->close();
    }

    void fontSizeAppliesToBothTables()
    {
        auto window = open();
        ZTOptionsPanel *panel = window->optionsPanel();
        panel->fontSizeBox()->setValue(15);
        QCOMPARE(window->itemTable()->font().pointSizeF(), 15.0);
        QCOMPARE(window->filterTable()->font().pointSizeF(), 15.0);
        QCOMPARE(window->display().fontSize, 15.0);
        panel->fontSizeBox()->setValue(0);
        QCOMPARE(window->display().fontSize, 0.0);
        QCOMPARE(window->itemTable()->font().pointSizeF(), window->font().pointSizeF());
        window->close();
    }

    void controlClickAddsASortColumn()
    {
        auto window = open();
        window->resize(1200, 600);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        QHeaderView *header = window->itemTable()->horizontalHeader();
        const QStringList columns = window->itemModel()->columns();
        const int title = int(columns.indexOf(QStringLiteral("title")));
        const int genre = int(columns.indexOf(QStringLiteral("genre")));
        QVERIFY(title > 0 && genre > 0);
        auto click = [&](int section, Qt::KeyboardModifiers modifiers) {
            const QPoint at(header->sectionViewportPosition(section) + header->sectionSize(section) / 2,
                            header->height() / 2);
            QTest::mouseClick(header->viewport(), Qt::LeftButton, modifiers, at);
        };
        click(genre, Qt::NoModifier);
        QCOMPARE(window->pipeline().currentSortedColumnDictArray().size(), 1);
        click(title, Qt::ControlModifier);
        const QList<ZTSortEntry> &entries = window->pipeline().currentSortedColumnDictArray();
        QCOMPARE(entries.size(), 2);
        QCOMPARE(entries.at(0).columnIdentifier, QStringLiteral("genre"));
        // The title sorts by its form without a leading article.
        QCOMPARE(entries.at(1).columnIdentifier, QStringLiteral("titleWithoutLeadingArticle"));
        // A plain click sorts by that column alone again.
        click(title, Qt::NoModifier);
        QCOMPARE(window->pipeline().currentSortedColumnDictArray().size(), 1);
        window->close();
    }
};

ZT_TEST_GUI_MAIN(TestOptionsPanel)
#include "tst_optionspanel.moc"
