#include "sharing/ZTSharingExportController.h"

#include "base/ZTNotificationCenter.h"
#include "library/ZTDocument.h"
#include "model/ZTMediaKind.h"
#include "sharing/ZTSharingPackage.h"
#include "store/ZTPropertyList.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>

#include <sqlite3.h>
#include <sys/stat.h>

#include <limits>

ZTSharingExportController &ZTSharingExportController::sharedInstance()
{
    static ZTSharingExportController *s_instance = new ZTSharingExportController;
    return *s_instance;
}

ZTSharingExportController::ZTSharingExportController(QObject *parent)
    : QObject(parent), m_tempRoot(QDir(QDir::tempPath()).filePath(QStringLiteral("ZettaryTempSharingExport")))
{
    connect(&m_timer, &QTimer::timeout, this, &ZTSharingExportController::checkExport);
    m_timer.start(5000);
}

ZTSharingExportController::~ZTSharingExportController()
{
    if (m_worker) {
        m_worker->wait();
        delete m_worker;
    }
}

void ZTSharingExportController::exportLibrary(const QString &libraryPath)
{
    QMutexLocker lock(&m_lock);
    if (!m_sharingQueue.contains(libraryPath))
        m_sharingQueue.prepend(libraryPath);
}

QStringList ZTSharingExportController::sharingQueue() const
{
    QMutexLocker lock(&m_lock);
    return m_sharingQueue;
}

void ZTSharingExportController::stopSharing()
{
    // Marked busy for the moment, so that no tick takes from a queue being emptied.
    const bool wasExporting = m_isExporting.exchange(true);
    {
        QMutexLocker lock(&m_lock);
        m_sharingQueue.clear();
    }
    m_isExporting = wasExporting;
}

void ZTSharingExportController::checkExport()
{
    if (m_isExporting)
        return;
    QString next;
    {
        QMutexLocker lock(&m_lock);
        if (m_sharingQueue.isEmpty())
            return;
        m_isExporting = true;
        next = m_sharingQueue.takeLast();
    }
    if (m_worker) {
        m_worker->wait();
        delete m_worker;
    }
    const QString tempRoot = m_tempRoot;
    const QString shared = sharedDirectoryPath();
    m_worker = QThread::create([this, next, tempRoot, shared] {
        const quint64 size = performExportForURL(next, tempRoot, shared);
        m_isExporting = false;
        QMetaObject::invokeMethod(
            this, [this, next, size] { finishExport(next, size); }, Qt::QueuedConnection);
    });
    m_worker->start();
}

void ZTSharingExportController::finishExport(const QString &libraryPath, quint64 fileSize)
{
    ZTNotificationCenter::defaultCenter().post(
        QString::fromLatin1(kZFExportedURLNotification), &libraryPath,
        {{QStringLiteral("url"), libraryPath}, {QStringLiteral("fileSize"), fileSize}});
}

QString ZTSharingExportController::sharedDirectoryPath()
{
    const QString path = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
                         QStringLiteral("/Zettary/Shared");
    QDir().mkpath(path);
    return path;
}

qint64 ZTSharingExportController::nodeIDForPath(const QString &path)
{
    struct stat st;
    if (path.isEmpty() || ::stat(QFile::encodeName(path).constData(), &st) != 0)
        return std::numeric_limits<qint64>::max();
    return qint64(st.st_ino);
}

QString ZTSharingExportController::makeCopyOfDocumentAtURL(const QString &libraryPath,
                                                           const QString &tempRoot)
{
    const QString copy = QDir(tempRoot).filePath(QFileInfo(libraryPath).fileName());
    QDir(copy).removeRecursively();
    if (!QDir().mkpath(copy))
        return {};
    // The backup API gives a consistent copy even while the library is being
    // written, which a plain file copy would not.
    const QString source = QDir(libraryPath).filePath(QStringLiteral("data.sql"));
    if (!QFileInfo(source).isFile())
        return {};
    sqlite3 *from = nullptr;
    sqlite3 *to = nullptr;
    bool ok = sqlite3_open_v2(QFile::encodeName(source).constData(), &from, SQLITE_OPEN_READONLY, nullptr) ==
                  SQLITE_OK &&
              sqlite3_open(QFile::encodeName(QDir(copy).filePath(QStringLiteral("data.sql"))).constData(),
                           &to) == SQLITE_OK;
    if (ok) {
        sqlite3_backup *backup = sqlite3_backup_init(to, "main", from, "main");
        ok = backup != nullptr;
        if (backup) {
            int rc;
            while ((rc = sqlite3_backup_step(backup, -1)) == SQLITE_BUSY || rc == SQLITE_LOCKED)
                sqlite3_sleep(20);
            ok = rc == SQLITE_DONE;
            sqlite3_backup_finish(backup);
        }
    }
    sqlite3_close(from);
    sqlite3_close(to);
    return ok ? copy : QString();
}

quint64 ZTSharingExportController::exportPackage(const QString &libraryPath, qint64 nodeID,
                                                 const QString &tempRoot, QString *zipPath, QString *error)
{
    const QString id = QString::number(nodeID);
    const QString packageFolder = QDir(tempRoot).filePath(id);
    QDir().mkpath(packageFolder);
    ZTMediaKind kind;
    if (!ZTDocument::kindForPath(libraryPath, &kind)) {
        if (error)
            *error = QStringLiteral("\"%1\" is no library").arg(libraryPath);
        return 0;
    }
    const QString copy = makeCopyOfDocumentAtURL(libraryPath, tempRoot);
    std::unique_ptr<ZTDocument> document = ZTDocument::create(kind);
    if (copy.isEmpty() || !document->readFromURL(copy, error)) {
        if (error && copy.isEmpty())
            *error = QStringLiteral("cannot copy the store of \"%1\"").arg(libraryPath);
        return 0;
    }
    // The copy carries the library's file name, but the package names the library itself.
    ZTSharingPackage::writePackage(*document, libraryPath, nodeID, packageFolder,
                                   QDir(libraryPath).filePath(QStringLiteral("images")));
    document.reset();
    const QString zip = QDir(tempRoot).filePath(id + QStringLiteral(".zip"));
    if (!ZTSharingPackage::zipFolder(packageFolder, zip, error))
        return 0;
    if (zipPath)
        *zipPath = zip;
    return quint64(QFileInfo(zip).size());
}

quint64 ZTSharingExportController::performExportForURL(const QString &libraryPath, const QString &tempRoot,
                                                       const QString &sharedDirectory)
{
    const qint64 nodeID = nodeIDForPath(libraryPath);
    if (libraryPath.isEmpty() || nodeID == std::numeric_limits<qint64>::max())
        return 0;
    QDir(tempRoot).removeRecursively();
    QDir().mkpath(tempRoot);
    const QString id = QString::number(nodeID);
    QString zip;
    const quint64 size = exportPackage(libraryPath, nodeID, tempRoot, &zip);
    if (size > 0) {
        const QString target = QDir(sharedDirectory).filePath(id);
        QDir(target).removeRecursively();
        QDir().mkpath(target);
        QFile::rename(zip, QDir(target).filePath(id + QStringLiteral(".zip")));
        QFile::copy(QDir(tempRoot).filePath(id + QStringLiteral("/info.xml")),
                    QDir(target).filePath(QStringLiteral("info.xml")));
        ZTPropertyList::writeFile(QDir(target).filePath(QStringLiteral("manifest.xml")),
                                  QStringList{QStringLiteral("info.xml"), id + QStringLiteral(".zip")},
                                  ZTPropertyList::Format::Xml);
    }
    QDir(tempRoot).removeRecursively();
    return size;
}
