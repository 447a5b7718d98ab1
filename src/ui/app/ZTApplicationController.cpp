#include "ui/app/ZTApplicationController.h"

#include "app/ZTAppController.h"
#include "base/ZTSettings.h"
#include "library/ZTDocument.h"
#include "platform/ZTAvahiPublisher.h"
#include "sharing/ZTSharingController.h"
#include "sharing/ZTSharingExportController.h"
#include "ui/app/ZTNewLibraryDialog.h"
#include "ui/app/ZTSampleLibrary.h"
#include "ui/mainwindow/ZTLibraryWindow.h"
#include "ui/prefs/ZTPreferencesWindow.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QStandardPaths>
#include <QTimer>

namespace {
// The settings of a first start are only confirmed once the program has run
// a while, so a start that crashes at once is treated as a first start again.
constexpr int s_ensureFirstRunDelay = 30000;
} // namespace

ZTApplicationController::ZTApplicationController(QObject *parent) : QObject(parent) {}

ZTApplicationController::~ZTApplicationController()
{
    delete m_preferences.data();
    // The service goes before the exporter and the publisher it uses.
    m_sharing.reset();
}

ZTSharingController *ZTApplicationController::sharingController()
{
    if (!m_sharing) {
        m_publisher = std::make_unique<ZTAvahiPublisher>();
        m_exporter = std::make_unique<ZTSharingExportController>();
        m_sharing = std::make_unique<ZTSharingController>(*m_exporter, m_publisher.get());
    }
    return m_sharing.get();
}

QStringList ZTApplicationController::knownLibraries() const
{
    QStringList paths;
    for (ZTLibraryWindow *window : windows())
        paths << window->libraryPath();
    for (const ZTAppController::OpenLibrary &library : ZTAppController::librariesToReopen())
        if (!paths.contains(library.path))
            paths << library.path;
    return paths;
}

ZTPreferencesWindow *ZTApplicationController::showPreferences(const QString &pane)
{
    if (!m_preferences) {
        ZTSharingController *sharing = sharingController();
        m_preferences =
            new ZTPreferencesWindow(sharing, m_publisher.get(), [this] { return knownLibraries(); });
        m_preferences->setAttribute(Qt::WA_DeleteOnClose);
    } else {
        m_preferences->refreshSharedLibraryList();
    }
    m_preferences->selectPane(pane);
    m_preferences->show();
    m_preferences->raise();
    m_preferences->activateWindow();
    return m_preferences;
}

bool ZTApplicationController::start(const QStringList &arguments)
{
    ZTAppController::initializeDefaults();
    ZTAppController::processLegacyPreferences();
    QTimer::singleShot(s_ensureFirstRunDelay, this, [] { ZTAppController::ensureFirstRun(); });
    ZTAppController::cleanTemporaryFolders();
    // Sharing that was on at the last quit serves again from the start.
    if (ZTSettings::value(ZTSettingsKey::SharingState).toBool())
        sharingController();

    const int sampleAt = int(arguments.indexOf(QStringLiteral("--sample")));
    if (sampleAt >= 0) {
        ZTMediaKind kind = ZTMediaKind::Book;
        if (sampleAt + 1 < arguments.size() && !ZTMediaKinds::fromCliName(arguments[sampleAt + 1], &kind)) {
            report(tr("Unknown sample"),
                   tr("There is no sample library \"%1\"; choose book, music, movie or comic.")
                       .arg(arguments[sampleAt + 1]));
            kind = ZTMediaKind::Book;
        }
        return openSample(kind) != nullptr;
    }

    QStringList paths;
    for (const QString &argument : arguments)
        if (!argument.startsWith(QLatin1String("--")))
            paths.append(argument);
    if (!paths.isEmpty()) {
        for (const QString &path : std::as_const(paths)) {
            QString error;
            if (!openLibrary(path, &error))
                report(tr("The library could not be opened"), error);
        }
        if (!m_windows.isEmpty())
            return true;
    } else if (ZTAppController::isFirstRun()) {
        ZTAppController::ensureFirstRun();
    } else {
        const QList<ZTAppController::OpenLibrary> reopen = ZTAppController::librariesToReopen();
        for (int i = 0; i < reopen.size(); ++i) {
            ZTLibraryWindow *window = openLibrary(reopen[i].path);
            if (!window)
                continue;
            if (reopen[i].isMiniaturized)
                window->showMinimized();
            else if (i == reopen.size() - 1)
                window->activateWindow();
        }
        if (!m_windows.isEmpty())
            return true;
    }
    // Without a library there is no window to show anything in: offer to
    // make or open one.
    createNewDocument();
    return !m_windows.isEmpty();
}

ZTLibraryWindow *ZTApplicationController::openLibrary(const QString &path, QString *error)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    for (const auto &window : std::as_const(m_windows))
        if (window && QFileInfo(window->libraryPath()).absoluteFilePath() == absolute) {
            window->raise();
            window->activateWindow();
            return window;
        }
    ZTMediaKind kind;
    if (!ZTDocument::kindForPath(absolute, &kind)) {
        if (error)
            *error = tr("\"%1\" is not a Zettary library.").arg(QDir::toNativeSeparators(path));
        return nullptr;
    }
    auto document = ZTDocument::create(kind);
    QString problem;
    if (!document->readFromURL(absolute, &problem)) {
        if (error)
            *error = problem.isEmpty() ? tr("\"%1\" could not be read.").arg(path) : problem;
        return nullptr;
    }
    auto *window = new ZTLibraryWindow(std::move(document));
    adopt(window);
    window->show();
    return window;
}

ZTLibraryWindow *ZTApplicationController::openSample(ZTMediaKind kind)
{
    QString error;
    const QString path = ZTSampleLibrary::ensureInDataFolder(kind, &error);
    ZTLibraryWindow *window = path.isEmpty() ? nullptr : openLibrary(path, &error);
    if (!window)
        report(tr("The sample library could not be made"), error);
    return window;
}

void ZTApplicationController::adopt(ZTLibraryWindow *window)
{
    m_windows.append(window);
    connect(window, &ZTLibraryWindow::newLibraryRequested, this, &ZTApplicationController::createNewDocument);
    connect(window, &ZTLibraryWindow::openRequested, this, &ZTApplicationController::openDocument);
    connect(window, &ZTLibraryWindow::quitRequested, this, &ZTApplicationController::quit);
    connect(window, &ZTLibraryWindow::preferencesRequested, this, [this] { showPreferences(); });
    // Closing the last window ends the program here, so it counts as a quit:
    // that library is the one to reopen.
    connect(window, &ZTLibraryWindow::closing, this, [this, window] {
        if (!m_quitting && windows() == QList<ZTLibraryWindow *>{window})
            ZTAppController::recordOpenLibraries({{window->libraryPath(), false}});
    });
    connect(window, &QObject::destroyed, this,
            [this] { m_windows.removeIf([](const QPointer<ZTLibraryWindow> &w) { return w.isNull(); }); });
}

void ZTApplicationController::createNewDocument()
{
    if (newLibraryDialogHook) {
        newLibraryDialogHook();
        return;
    }
    ZTNewLibraryDialog dialog;
    dialog.exec();
    switch (dialog.outcome()) {
    case ZTNewLibraryDialog::Cancelled:
        return;
    case ZTNewLibraryDialog::Open:
        openDocument();
        return;
    case ZTNewLibraryDialog::Sample:
        openSample(dialog.selectedKind());
        return;
    case ZTNewLibraryDialog::Create:
        break;
    }
    const ZTMediaKind kind = dialog.selectedKind();
    const QString extension = ZTMediaKinds::packageExtension(kind);
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QString path = QFileDialog::getSaveFileName(
        nullptr, dialog.windowTitle(), QDir(folder).filePath(tr("My Library") + QLatin1Char('.') + extension),
        QStringLiteral("%1 (*.%2)").arg(dialog.selectedKind() == kind ? extension : extension, extension));
    path = ZTNewLibraryDialog::pathWithExtension(path, kind);
    if (path.isEmpty())
        return;
    QString error;
    if (!ZTDocument::createPackage(path, kind, &error)) {
        report(tr("The library could not be created"), error);
        return;
    }
    if (!openLibrary(path, &error))
        report(tr("The library could not be opened"), error);
}

void ZTApplicationController::openDocument()
{
    // Libraries are folders with the kind's extension.
    const QString path = QFileDialog::getExistingDirectory(
        nullptr, tr("Open Library"), QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    if (path.isEmpty())
        return;
    QString error;
    if (!openLibrary(path, &error))
        report(tr("The library could not be opened"), error);
}

QList<ZTLibraryWindow *> ZTApplicationController::windows() const
{
    QList<ZTLibraryWindow *> result;
    for (const auto &window : m_windows)
        if (window)
            result.append(window);
    return result;
}

QList<ZTLibraryWindow *> ZTApplicationController::windowsFrontmostLast() const
{
    QList<ZTLibraryWindow *> result = windows();
    QWidget *active = QApplication::activeWindow();
    for (int i = 0; i < result.size(); ++i)
        if (result[i] == active) {
            result.append(result.takeAt(i));
            break;
        }
    return result;
}

bool ZTApplicationController::quit()
{
    if (m_quitting)
        return false;
    QList<ZTAppController::OpenLibrary> record;
    const QList<ZTLibraryWindow *> ordered = windowsFrontmostLast();
    for (ZTLibraryWindow *window : ordered)
        record.append({window->libraryPath(), window->isMinimized()});
    ZTAppController::recordOpenLibraries(record);
    m_quitting = true;
    for (ZTLibraryWindow *window : ordered)
        if (!window->close()) {
            m_quitting = false;
            return false;
        }
    m_quitting = false;
    QApplication::quit();
    return true;
}

void ZTApplicationController::report(const QString &title, const QString &message)
{
    if (qEnvironmentVariableIsSet("ZETTARY_TESTING")) {
        qWarning("%s: %s", qPrintable(title), qPrintable(message));
        return;
    }
    QMessageBox::warning(nullptr, title, message);
}
