#include "sharing/ZTSharingController.h"

#include "base/ZTSettings.h"
#include "library/ZTDocument.h"
#include "sharing/ZTSharingExportController.h"
#include "sharing/ZTSharingPackage.h"
#include "sharing/ZTWebServer.h"
#include "sharing/http/HTTPServer.h"
#include "store/ZTPropertyList.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QUrl>

#include <sqlite3.h>

#include <limits>

#include <unistd.h>

namespace {
const QString s_listFile = QStringLiteral("sharedLibraries.xml");
const QString s_url = QStringLiteral("url");
const QString s_id = QStringLiteral("id");
const QString s_status = QStringLiteral("status");
const QString s_fileSize = QStringLiteral("fileSize");

// The store may be in the middle of a save by the library's window: a busy
// answer is waited out rather than taken for an empty library.
template <typename Call> int retryWhileBusy(Call call)
{
    int rc;
    while ((rc = call()) == SQLITE_BUSY)
        usleep(20);
    return rc;
}
} // namespace

ZTSharingController::ZTSharingController(ZTSharingExportController &exporter, HTTPServicePublisher *publisher,
                                         std::optional<QStringList> libraries, QObject *parent)
    : QObject(parent), m_exporter(exporter), m_libraries(std::move(libraries)),
      m_webServer(std::make_unique<ZTWebServer>(publisher))
{
    loadSharedLibraries();
    m_receivedObservation = ZTObservation(
        QString::fromLatin1(kZFReceivedURLNotification), nullptr, [this](const ZTNotification &note) {
            receivedURL(note.userInfo.value(QStringLiteral("urlText")).toString());
        });
    m_exportedObservation = ZTObservation(
        QString::fromLatin1(kZFExportedURLNotification), nullptr, [this](const ZTNotification &note) {
            exportedURL(note.userInfo.value(s_url).toString(), note.userInfo.value(s_fileSize).toULongLong());
        });
    m_savedObservation =
        ZTObservation(ZTDocumentNotification::savedLibrary, nullptr, [this](const ZTNotification &note) {
            savedLibrary(note.userInfo.value(QStringLiteral("nodeID")).toLongLong());
        });
    if (!m_libraries && ZTSettings::value(ZTSettingsKey::SharingState).toBool())
        startSharing();
}

ZTSharingController::~ZTSharingController()
{
    m_webServer->stop();
}

QString ZTSharingController::sharedDirectoryPath()
{
    return ZTSharingExportController::sharedDirectoryPath();
}

QStringList ZTSharingController::libraryBookmarks() const
{
    if (m_libraries)
        return *m_libraries;
    return ZTSettings::value(ZTSettingsKey::SharedLibraries).toStringList();
}

void ZTSharingController::loadSharedLibraries()
{
    const QString shared = sharedDirectoryPath();
    QList<QVariantMap> libraries;
    QList<qint64> seen;
    for (const QString &bookmark : libraryBookmarks()) {
        const QFileInfo file(bookmark);
        if (bookmark.isEmpty() || !file.exists())
            continue;
        const QString path = file.absoluteFilePath();
        const qint64 nodeID = ZTSharingExportController::nodeIDForPath(path);
        if (nodeID == std::numeric_limits<qint64>::max() || seen.contains(nodeID))
            continue;
        const QString type = ZTSharingPackage::typeForPath(path);
        if (type.isEmpty())
            continue;
        seen << nodeID;
        QDir(shared).mkpath(QString::number(nodeID));
        QVariantMap library{
            {s_url, path},
            {QStringLiteral("name"), file.completeBaseName()},
            {QStringLiteral("filename"), file.completeBaseName()},
            {QStringLiteral("type"), type},
            {s_id, nodeID},
            {QStringLiteral("itemCount"),
             itemCountFromDatabaseFile(QDir(path).filePath(QStringLiteral("data.sql")))},
            {s_status, isExportCompleteForId(nodeID) ? 1 : 0},
            {s_fileSize, fileSizeForId(nodeID)},
        };
        libraries << library;
    }
    prunePath(shared, seen);
    {
        QMutexLocker lock(&m_mutex);
        m_sharedLibraries = libraries;
    }
    writeSharedLibraryList();
}

QList<QVariantMap> ZTSharingController::sharedLibraries() const
{
    QMutexLocker lock(&m_mutex);
    return m_sharedLibraries;
}

QList<QVariantMap> ZTSharingController::serializableSharedLibraries() const
{
    QList<QVariantMap> list;
    for (QVariantMap library : sharedLibraries()) {
        library.insert(s_url, QUrl::fromLocalFile(library.value(s_url).toString()).toString());
        list << library;
    }
    return list;
}

void ZTSharingController::writeSharedLibraryList()
{
    QVariantList list;
    for (const QVariantMap &library : serializableSharedLibraries())
        list << library;
    // Written beside and renamed, so that the companion never reads half a list.
    const QString path = QDir(sharedDirectoryPath()).filePath(s_listFile);
    const QString partial = path + QStringLiteral(".part");
    if (ZTPropertyList::writeFile(partial, list, ZTPropertyList::Format::Xml)) {
        QFile::remove(path);
        QFile::rename(partial, path);
    }
}

bool ZTSharingController::isExportCompleteForId(qint64 nodeID) const
{
    const QDir folder(QDir(sharedDirectoryPath()).filePath(QString::number(nodeID)));
    const QString id = QString::number(nodeID);
    return folder.exists() && folder.exists(id + QStringLiteral(".zip")) &&
           folder.exists(QStringLiteral("info.xml")) && folder.exists(QStringLiteral("manifest.xml"));
}

quint64 ZTSharingController::fileSizeForId(qint64 nodeID) const
{
    const QString id = QString::number(nodeID);
    const QFileInfo zip(
        QDir(sharedDirectoryPath()).filePath(id + QLatin1Char('/') + id + QStringLiteral(".zip")));
    return zip.isFile() ? quint64(zip.size()) : 0;
}

void ZTSharingController::prunePath(const QString &path, const QList<qint64> &nodeIDs)
{
    QSet<QString> keep;
    for (qint64 id : nodeIDs)
        keep.insert(QString::number(id));
    const QDir folder(path);
    for (const QFileInfo &entry :
         folder.entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden)) {
        if (entry.isDir() && !entry.isSymLink()) {
            if (!keep.contains(entry.fileName()))
                QDir(entry.absoluteFilePath()).removeRecursively();
        } else if (entry.fileName() != s_listFile) {
            QFile::remove(entry.absoluteFilePath());
        }
    }
}

quint64 ZTSharingController::itemCountFromDatabaseFile(const QString &path)
{
    if (!QFileInfo(path).isFile())
        return 0;
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(path).constData(), &db, SQLITE_OPEN_READONLY, nullptr) !=
        SQLITE_OK) {
        sqlite3_close(db);
        return 0;
    }
    quint64 count = 0;
    sqlite3_stmt *statement = nullptr;
    if (retryWhileBusy([&] {
            return sqlite3_prepare_v2(db, "SELECT COUNT(*) AS CNT FROM ZZTITEM", -1, &statement, nullptr);
        }) == SQLITE_OK) {
        if (retryWhileBusy([&] { return sqlite3_step(statement); }) == SQLITE_ROW) {
            for (int i = 0; i < sqlite3_column_count(statement); ++i)
                if (QString::fromUtf8(sqlite3_column_name(statement, i)).toLower() == QLatin1String("cnt"))
                    count = quint64(sqlite3_column_int64(statement, i));
        }
    }
    sqlite3_finalize(statement);
    retryWhileBusy([&] { return sqlite3_close(db); });
    return count;
}

bool ZTSharingController::startSharing(QString *error)
{
    m_webServer->stop();
    m_webServer->handleType(QString::fromLatin1(kZTSharingServiceType));
    m_webServer->handleName(ZTWebServer::uniqueServiceName(QStringLiteral("Zettary Sharing")));
    m_webServer->handleDocumentRoot(sharedDirectoryPath());
    const bool started = m_webServer->start(error);
    prepareForSharing();
    return started;
}

void ZTSharingController::prepareForSharing()
{
    for (const QVariantMap &library : sharedLibraries())
        if (library.value(s_status).toInt() == 0)
            m_exporter.exportLibrary(library.value(s_url).toString());
}

void ZTSharingController::stopSharing()
{
    m_webServer->stop();
    m_exporter.stopSharing();
}

void ZTSharingController::processSharingStatus()
{
    if (ZTSettings::value(ZTSettingsKey::SharingState).toBool())
        startSharing();
    else
        stopSharing();
}

void ZTSharingController::savedLibrary(qint64 nodeID)
{
    if (nodeID <= 0)
        return;
    QDir folder(QDir(sharedDirectoryPath()).filePath(QString::number(nodeID)));
    if (!folder.exists())
        return;
    folder.removeRecursively();
    loadSharedLibraries();
    if (isSharingOn())
        prepareForSharing();
}

bool ZTSharingController::isSharingOn() const
{
    // Libraries given by the caller are shared for as long as the server runs.
    if (m_libraries)
        return m_webServer->isStarted();
    return ZTSettings::value(ZTSettingsKey::SharingState).toBool();
}

void ZTSharingController::receivedURL(const QString &urlText)
{
    if (urlText.startsWith(QLatin1String("/value=")))
        return;
    const qsizetype equals = urlText.indexOf(QLatin1Char('='));
    if (equals < 0)
        return;
    // Like a C integer reading: leading digits count, anything else is 0.
    const QString rest = urlText.mid(equals + 1);
    qsizetype end = 0;
    if (end < rest.size() && (rest[end] == QLatin1Char('-') || rest[end] == QLatin1Char('+')))
        ++end;
    while (end < rest.size() && rest[end].isDigit())
        ++end;
    const qint64 id = rest.left(end).toLongLong();
    for (const QVariantMap &library : sharedLibraries()) {
        if (library.value(s_id).toLongLong() == id && !library.value(s_url).toString().isEmpty())
            m_exporter.exportLibrary(library.value(s_url).toString());
    }
}

void ZTSharingController::exportedURL(const QString &libraryPath, quint64 fileSize)
{
    {
        QMutexLocker lock(&m_mutex);
        for (QVariantMap &library : m_sharedLibraries) {
            if (library.value(s_url).toString() == libraryPath) {
                library.insert(s_status, 1);
                library.insert(s_fileSize, fileSize);
            }
        }
    }
    writeSharedLibraryList();
}

quint16 ZTSharingController::listeningPort() const
{
    return m_webServer->listeningPort();
}
