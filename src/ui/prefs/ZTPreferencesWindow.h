#pragma once

#include <QStringList>
#include <QWidget>

#include <functional>

class QCheckBox;
class QLabel;
class QTabWidget;
class QTimer;
class QTreeWidget;
class QTreeWidgetItem;
class ZTAvahiPublisher;
class ZTSharingController;

// The program's one preferences window. Its panes write the user's settings at
// once; the Sharing pane also drives the running sharing service: turning it on
// or off, and choosing which libraries the handheld companion sees.
class ZTPreferencesWindow : public QWidget {
    Q_OBJECT
public:
    // `sharing` and `publisher` belong to the application; the publisher may be
    // null (the service is then never announced). `candidateLibraries` lists
    // the libraries to offer besides those already shared (open ones, recent ones).
    ZTPreferencesWindow(ZTSharingController *sharing, ZTAvahiPublisher *publisher,
                        std::function<QStringList()> candidateLibraries, QWidget *parent = nullptr);

    // Rebuilds the library list from the settings and the candidates.
    void refreshSharedLibraryList();
    void selectPane(const QString &identifier);

    // For tests and the screenshot: the widgets a user works with.
    QCheckBox *sharingCheckBox() const { return m_sharingBox; }
    QTreeWidget *libraryList() const { return m_libraries; }
    QLabel *sharingStatusLabel() const { return m_status; }

private:
    QWidget *makeSharingPane();
    void toggleSharing(bool on);
    void toggleSharedLibraryAtRow(QTreeWidgetItem *row);
    void writeSharedLibraries(const QStringList &paths);
    void updateSharingStatus();

    ZTSharingController *m_sharing;
    ZTAvahiPublisher *m_publisher;
    std::function<QStringList()> m_candidates;
    QTabWidget *m_panes = nullptr;
    QCheckBox *m_sharingBox = nullptr;
    QTreeWidget *m_libraries = nullptr;
    QLabel *m_status = nullptr;
    QTimer *m_statusTimer = nullptr;
    bool m_updatingList = false;
};
