#include "ui/prefs/ZTPreferencesWindow.h"

#include "base/ZTSettings.h"
#include "library/ZTDocument.h"
#include "platform/ZTAvahiPublisher.h"
#include "sharing/ZTSharingController.h"
#include "sharing/ZTWebServer.h"

#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QHostInfo>
#include <QLabel>
#include <QTabWidget>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {
constexpr int s_pathRole = Qt::UserRole + 1;

QString normalPath(const QString &path)
{
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

QString kindName(const QString &path)
{
    ZTMediaKind kind;
    if (!ZTDocument::kindForPath(path, &kind))
        return {};
    switch (kind) {
    case ZTMediaKind::Book:
        return QObject::tr("Books");
    case ZTMediaKind::Album:
        return QObject::tr("Music");
    case ZTMediaKind::Movie:
        return QObject::tr("Movies");
    case ZTMediaKind::Comic:
        return QObject::tr("Comics");
    }
    return {};
}
} // namespace

ZTPreferencesWindow::ZTPreferencesWindow(ZTSharingController *sharing, ZTAvahiPublisher *publisher,
                                         std::function<QStringList()> candidateLibraries, QWidget *parent)
    : QWidget(parent, Qt::Window), m_sharing(sharing), m_publisher(publisher),
      m_candidates(std::move(candidateLibraries))
{
    setWindowTitle(tr("Preferences"));
    setObjectName(QStringLiteral("preferencesWindow"));
    auto *layout = new QVBoxLayout(this);
    m_panes = new QTabWidget(this);
    m_panes->setDocumentMode(true);
    QWidget *sharingPane = makeSharingPane();
    sharingPane->setObjectName(QStringLiteral("Sharing ToolbarItem"));
    m_panes->addTab(sharingPane, QIcon::fromTheme(QStringLiteral("network-server")), tr("Sharing"));
    layout->addWidget(m_panes);
    resize(560, 440);

    // The announcement settles some time after the server starts.
    m_statusTimer = new QTimer(this);
    m_statusTimer->setInterval(1000);
    connect(m_statusTimer, &QTimer::timeout, this, &ZTPreferencesWindow::updateSharingStatus);
    m_statusTimer->start();
    refreshSharedLibraryList();
    updateSharingStatus();
}

QWidget *ZTPreferencesWindow::makeSharingPane()
{
    auto *pane = new QWidget;
    auto *layout = new QVBoxLayout(pane);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setSpacing(10);
    m_sharingBox =
        new QCheckBox(tr("Share libraries with the handheld companion on the local network"), pane);
    m_sharingBox->setChecked(ZTSettings::value(ZTSettingsKey::SharingState).toBool());
    connect(m_sharingBox, &QCheckBox::toggled, this, &ZTPreferencesWindow::toggleSharing);
    layout->addWidget(m_sharingBox);

    auto *explanation = new QLabel(
        tr("Ticked libraries can be browsed, read-only, from other devices on this network."), pane);
    explanation->setWordWrap(true);
    explanation->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(explanation);

    m_libraries = new QTreeWidget(pane);
    m_libraries->setColumnCount(3);
    m_libraries->setHeaderLabels({tr("Library"), tr("Kind"), tr("Folder")});
    m_libraries->setRootIsDecorated(false);
    m_libraries->setUniformRowHeights(true);
    m_libraries->setAlternatingRowColors(true);
    m_libraries->header()->setStretchLastSection(true);
    m_libraries->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_libraries->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    connect(m_libraries, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem *row, int column) {
        if (column == 0 && !m_updatingList)
            toggleSharedLibraryAtRow(row);
    });
    layout->addWidget(m_libraries, 1);

    m_status = new QLabel(pane);
    m_status->setWordWrap(true);
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_status);
    return pane;
}

void ZTPreferencesWindow::selectPane(const QString &identifier)
{
    for (int i = 0; i < m_panes->count(); ++i)
        if (m_panes->widget(i)->objectName() == identifier)
            m_panes->setCurrentIndex(i);
}

void ZTPreferencesWindow::refreshSharedLibraryList()
{
    const QStringList shared = ZTSettings::value(ZTSettingsKey::SharedLibraries).toStringList();
    QStringList paths;
    QStringList sharedPaths;
    for (const QString &path : shared)
        sharedPaths << normalPath(path);
    // Shared libraries first, then the others the program knows of; a library
    // that no longer exists is not offered.
    for (const QString &path : sharedPaths + (m_candidates ? m_candidates() : QStringList())) {
        const QString clean = normalPath(path);
        if (!paths.contains(clean) && QFileInfo::exists(clean) && !kindName(clean).isEmpty())
            paths << clean;
    }

    m_updatingList = true;
    m_libraries->clear();
    auto *all = new QTreeWidgetItem(m_libraries, {tr("All Libraries")});
    all->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
    QFont bold = all->font(0);
    bold.setBold(true);
    all->setFont(0, bold);
    int ticked = 0;
    for (const QString &path : std::as_const(paths)) {
        const QFileInfo file(path);
        auto *row = new QTreeWidgetItem(m_libraries, {file.completeBaseName(), kindName(path),
                                                      QDir::toNativeSeparators(file.absolutePath())});
        row->setData(0, s_pathRole, path);
        row->setToolTip(2, QDir::toNativeSeparators(path));
        row->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsSelectable);
        const bool isShared = sharedPaths.contains(path);
        row->setCheckState(0, isShared ? Qt::Checked : Qt::Unchecked);
        ticked += isShared ? 1 : 0;
    }
    all->setCheckState(0, ticked == 0              ? Qt::Unchecked
                          : ticked == paths.size() ? Qt::Checked
                                                   : Qt::PartiallyChecked);
    if (paths.isEmpty())
        all->setDisabled(true);
    m_updatingList = false;
}

void ZTPreferencesWindow::toggleSharedLibraryAtRow(QTreeWidgetItem *row)
{
    const bool on = row->checkState(0) == Qt::Checked;
    QStringList paths;
    if (m_libraries->indexOfTopLevelItem(row) == 0) {
        // The "all" entry ticks or unticks every library.
        if (on)
            for (int i = 1; i < m_libraries->topLevelItemCount(); ++i)
                paths << m_libraries->topLevelItem(i)->data(0, s_pathRole).toString();
    } else {
        for (int i = 1; i < m_libraries->topLevelItemCount(); ++i) {
            QTreeWidgetItem *other = m_libraries->topLevelItem(i);
            if (other->checkState(0) == Qt::Checked)
                paths << other->data(0, s_pathRole).toString();
        }
    }
    writeSharedLibraries(paths);
    // The row whose tick changed is still inside its own setCheckState() here;
    // rebuilding the list now would delete it under the caller, so the list is
    // rebuilt once control is back in the event loop.
    QMetaObject::invokeMethod(this, &ZTPreferencesWindow::refreshSharedLibraryList, Qt::QueuedConnection);
}

void ZTPreferencesWindow::writeSharedLibraries(const QStringList &paths)
{
    ZTSettings::setValue(ZTSettingsKey::SharedLibraries, paths);
    if (!m_sharing)
        return;
    m_sharing->loadSharedLibraries();
    m_sharing->writeSharedLibraryList();
    if (ZTSettings::value(ZTSettingsKey::SharingState).toBool())
        m_sharing->prepareForSharing();
}

void ZTPreferencesWindow::toggleSharing(bool on)
{
    ZTSettings::setValue(ZTSettingsKey::SharingState, on);
    if (m_sharing)
        m_sharing->processSharingStatus();
    updateSharingStatus();
}

void ZTPreferencesWindow::updateSharingStatus()
{
    if (!m_sharing || !ZTSettings::value(ZTSettingsKey::SharingState).toBool()) {
        m_status->setText(tr("Sharing is off."));
        return;
    }
    if (!m_sharing->webServer().isStarted()) {
        m_status->setText(tr("Sharing is on, but the server could not start listening."));
        return;
    }
    QString text =
        tr("Serving at http://%1.local:%2/").arg(QHostInfo::localHostName()).arg(m_sharing->listeningPort());
    if (m_publisher && m_publisher->state() == ZTAvahiPublisher::State::Established)
        text += QLatin1Char('\n') +
                tr("Announced on the local network as \u201c%1\u201d.").arg(m_publisher->publishedName());
    else if (m_publisher && m_publisher->state() == ZTAvahiPublisher::State::Registering)
        text += QLatin1Char('\n') + tr("Announcing on the local network\u2026");
    else
        text += QLatin1Char('\n') + tr("Not announced on the local network: %1")
                                        .arg(m_publisher && !m_publisher->errorString().isEmpty()
                                                 ? m_publisher->errorString()
                                                 : tr("no DNS-SD service is available"));
    m_status->setText(text);
}
