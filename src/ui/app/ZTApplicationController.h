#pragma once

#include "model/ZTMediaKind.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <memory>

class ZTAvahiPublisher;
class ZTLibraryWindow;
class ZTPreferencesWindow;
class ZTSharingController;
class ZTSharingExportController;

// The program's side of start-up and quit: first settings, reopening the
// libraries that were open, the "New Library" dialog, one window per library,
// and recording the open libraries when the user quits.
class ZTApplicationController : public QObject {
    Q_OBJECT
public:
    explicit ZTApplicationController(QObject *parent = nullptr);
    ~ZTApplicationController() override;

    // Runs the start-up steps with the program's arguments (without argv[0]):
    // library paths to open, or "--sample" [kind]. Returns false when nothing
    // could be shown and the program should end.
    bool start(const QStringList &arguments);

    ZTLibraryWindow *openLibrary(const QString &path, QString *error = nullptr);
    ZTLibraryWindow *openSample(ZTMediaKind kind);
    // The "New Library" dialog and its save panel.
    void createNewDocument();
    void openDocument();
    // Records the open libraries (frontmost last) and closes their windows,
    // each asking about unsaved changes. False when the user cancelled.
    bool quit();
    QList<ZTLibraryWindow *> windows() const;
    // The windows' libraries as the next start will reopen them.
    QList<ZTLibraryWindow *> windowsFrontmostLast() const;

    // The preferences window (one for the program), on the given pane.
    ZTPreferencesWindow *showPreferences(const QString &pane = QStringLiteral("Sharing ToolbarItem"));
    // The sharing service for the handheld companion, made on first use; it
    // serves when the settings say sharing is on.
    ZTSharingController *sharingController();
    // Libraries to offer for sharing: the open ones and those open at the last quit.
    QStringList knownLibraries() const;

    // The dialogs, replaceable so that tests can drive start-up.
    std::function<void()> newLibraryDialogHook;

private:
    void adopt(ZTLibraryWindow *window);
    void report(const QString &title, const QString &message);

    QList<QPointer<ZTLibraryWindow>> m_windows;
    std::unique_ptr<ZTAvahiPublisher> m_publisher;
    std::unique_ptr<ZTSharingExportController> m_exporter;
    std::unique_ptr<ZTSharingController> m_sharing;
    QPointer<ZTPreferencesWindow> m_preferences;
    bool m_quitting = false;
};
