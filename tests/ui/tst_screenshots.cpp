#include "base/ZTSettings.h"
#include "library/ZTDocument.h"
#include "model/ZTItem.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"
#include "ui/ZTUi.h"
#include "ui/app/ZTNewLibraryDialog.h"
#include "ui/app/ZTSampleLibrary.h"
#include "ui/mainwindow/ZTItemTableModel.h"
#include "ui/mainwindow/ZTLibraryWindow.h"
#include "ui/mainwindow/ZTOptionsPanel.h"
#include "ui/prefs/ZTPreferencesWindow.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QPainter>
#include <QtTest>

// Renders the library window as a person sees it, to PNG files under the
// build folder's screenshots/, so the look can be checked by eye. Each
// picture is also checked for being more than an empty frame.
class TestScreenshots : public QObject {
    Q_OBJECT
private:
    QTemporaryDir m_dir;

    // A plain cover in the title's own colour, so the cover column has real pictures to show.
    static QByteArray coverBytes(const QString &title, int index)
    {
        QImage image(200, 300, QImage::Format_RGB32);
        image.fill(QColor::fromHsv((index * 47) % 360, 120, 150));
        QPainter painter(&image);
        painter.setPen(Qt::white);
        QFont font = painter.font();
        font.setPixelSize(26);
        font.setBold(true);
        painter.setFont(font);
        painter.drawText(image.rect().adjusted(16, 30, -16, -30), Qt::AlignHCenter | Qt::TextWordWrap, title);
        painter.end();
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        return bytes;
    }

    static void save(QWidget *widget, const QString &name)
    {
        QDir().mkpath(QStringLiteral(ZT_SCREENSHOT_DIR));
        const QImage image = widget->grab().toImage();
        QVERIFY(!image.isNull());
        // A rendered window has many colours; a blank one has one or two.
        QSet<QRgb> colours;
        for (int y = 0; y < image.height(); y += 7)
            for (int x = 0; x < image.width(); x += 7)
                colours.insert(image.pixel(x, y));
        QVERIFY2(colours.size() > 8, qPrintable(name));
        QVERIFY(image.save(QDir(QStringLiteral(ZT_SCREENSHOT_DIR)).filePath(name + QStringLiteral(".png"))));
    }

    std::unique_ptr<ZTLibraryWindow> window(ZTMediaKind kind, int count, bool covers)
    {
        const QString path = m_dir.filePath(QStringLiteral("shot%1-%2.%3")
                                                .arg(int(kind))
                                                .arg(count)
                                                .arg(ZTMediaKinds::packageExtension(kind)));
        if (!ZTSampleLibrary::create(path, kind, count))
            return nullptr;
        auto document = ZTDocument::create(kind);
        if (!document->readFromURL(path))
            return nullptr;
        if (covers) {
            int index = 0;
            for (ZTItem *item : document->allItems())
                item->replaceCover({}, coverBytes(item->title(), index++), {}, QStringLiteral("PNG"), true);
        }
        auto result = std::make_unique<ZTLibraryWindow>(std::move(document));
        result->setAttribute(Qt::WA_DeleteOnClose, false);
        result->resize(1280, 760);
        result->setDetailVisible(true);
        result->show();
        return result;
    }

private Q_SLOTS:
    void initTestCase() { ZTTestSupport::useTemporarySettings(m_dir); }

    void libraryOfEachKind_data()
    {
        QTest::addColumn<int>("kind");
        QTest::newRow("books") << int(ZTMediaKind::Book);
        QTest::newRow("music") << int(ZTMediaKind::Album);
        QTest::newRow("movies") << int(ZTMediaKind::Movie);
        QTest::newRow("comics") << int(ZTMediaKind::Comic);
    }
    void libraryOfEachKind()
    {
        QFETCH(int, kind);
        auto shown = window(ZTMediaKind(kind), 50, true);
        QVERIFY(shown);
        shown->selectOids({shown->itemModel()->oidAtRow(1)});
        save(shown.get(), QStringLiteral("library-%1").arg(QString::fromLatin1(QTest::currentDataTag())));
    }

    void emptyLibrary()
    {
        auto shown = window(ZTMediaKind::Book, 0, false);
        QVERIFY(shown);
        save(shown.get(), QStringLiteral("library-empty"));
    }

    void filterTabAndSearch()
    {
        auto shown = window(ZTMediaKind::Book, 50, true);
        QVERIFY(shown);
        shown->chooseFilter(QStringLiteral("Genre"), QStringLiteral("Fiction"));
        save(shown.get(), QStringLiteral("library-filter"));
        shown->showFilterTab(false);
        shown->setSearchText(QStringLiteral("verne"));
        save(shown.get(), QStringLiteral("library-search"));
    }

    void darkPalette()
    {
        QPalette dark;
        dark.setColor(QPalette::Window, QColor(45, 45, 48));
        dark.setColor(QPalette::WindowText, QColor(230, 230, 230));
        dark.setColor(QPalette::Base, QColor(30, 30, 32));
        dark.setColor(QPalette::AlternateBase, QColor(38, 38, 41));
        dark.setColor(QPalette::Text, QColor(230, 230, 230));
        dark.setColor(QPalette::Button, QColor(55, 55, 58));
        dark.setColor(QPalette::ButtonText, QColor(230, 230, 230));
        dark.setColor(QPalette::Highlight, QColor(61, 174, 233));
        dark.setColor(QPalette::HighlightedText, Qt::white);
        dark.setColor(QPalette::PlaceholderText, QColor(150, 150, 150));
        const QPalette before = QApplication::palette();
        QApplication::setPalette(dark);
        auto shown = window(ZTMediaKind::Movie, 50, true);
        QVERIFY(shown);
        shown->selectOids({shown->itemModel()->oidAtRow(0)});
        save(shown.get(), QStringLiteral("library-dark"));
        QApplication::setPalette(before);
    }

    void optionsPanel()
    {
        auto shown = window(ZTMediaKind::Book, 50, true);
        QVERIFY(shown);
        ZTOptionsPanel *panel = shown->optionsPanel();
        shown->addLayout();
        shown->renameLayout(1, QStringLiteral("Reading list"));
        panel->show();
        QVERIFY(QTest::qWaitForWindowExposed(panel));
        save(panel, QStringLiteral("options-panel"));
    }

    void preferencesSharing()
    {
        QStringList paths;
        for (ZTMediaKind kind : {ZTMediaKind::Book, ZTMediaKind::Album, ZTMediaKind::Comic}) {
            const QString path =
                m_dir.filePath(QStringLiteral("Home %1.%2")
                                   .arg(ZTMediaKinds::itemType(kind), ZTMediaKinds::packageExtension(kind)));
            QVERIFY(ZTSampleLibrary::create(path, kind, 3));
            paths << path;
        }
        ZTSettings::setValue(ZTSettingsKey::SharedLibraries, QStringList{paths.first()});
        ZTPreferencesWindow prefs(nullptr, nullptr, [paths] { return paths; });
        prefs.show();
        save(&prefs, QStringLiteral("preferences-sharing"));
        ZTSettings::setValue(ZTSettingsKey::SharedLibraries, QStringList());
    }

    void newLibraryDialog()
    {
        ZTNewLibraryDialog dialog;
        dialog.show();
        save(&dialog, QStringLiteral("new-library"));
    }
};

int runScreenshots(int argc, char **argv)
{
    ZTUi::setUpApplication(*qApp);
    TestScreenshots test;
    return QTest::qExec(&test, argc, argv);
}
ZT_TEST_CUSTOM_MAIN(TestScreenshots, Gui, runScreenshots)

#include "tst_screenshots.moc"
