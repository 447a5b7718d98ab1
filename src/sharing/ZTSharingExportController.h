#pragma once

#include <QMutex>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <atomic>

class QThread;

// Sent when an export has ended, on the thread that owns the controller. The
// object points at the library's path (valid while delivered); the user info
// holds it under "url" and the zip's size under "fileSize" (0 when the library
// could not be exported).
inline constexpr char kZFExportedURLNotification[] = "ZFExportedURLNotification";

// Makes the packages the handheld companion downloads, one library at a time,
// on a worker thread over a copy of the library's store, so that the user's
// work goes on undisturbed. Libraries wait in a first-in, first-out queue.
class ZTSharingExportController : public QObject {
    Q_OBJECT
public:
    static ZTSharingExportController &sharedInstance();
    explicit ZTSharingExportController(QObject *parent = nullptr);
    ~ZTSharingExportController() override;

    // Queues a library; one already waiting is not queued again.
    void exportLibrary(const QString &libraryPath);
    // The timer's tick: starts the oldest waiting export unless one runs.
    void checkExport();
    // Empties the queue; a running export finishes.
    void stopSharing();
    bool isExporting() const { return m_isExporting; }
    QStringList sharingQueue() const;

    // Where finished packages go: "<id>/<id>.zip", "<id>/info.xml", "<id>/manifest.xml".
    static QString sharedDirectoryPath();
    // The scratch folder of exports, emptied before and after each.
    QString tempRootPath() const { return m_tempRoot; }
    void setTempRootPath(const QString &path) { m_tempRoot = path; }

    // A new folder named like the library in `tempRoot`, holding a consistent
    // copy of its store; empty on failure.
    static QString makeCopyOfDocumentAtURL(const QString &libraryPath, const QString &tempRoot);
    // Writes the package of a library and its zip "<tempRoot>/<id>.zip",
    // whose size it returns (0 on failure). The library is only read.
    static quint64 exportPackage(const QString &libraryPath, qint64 nodeID, const QString &tempRoot,
                                 QString *zipPath, QString *error = nullptr);
    // The whole export of one library into `sharedDirectory`; returns the zip's size.
    static quint64 performExportForURL(const QString &libraryPath, const QString &tempRoot,
                                       const QString &sharedDirectory);
    static qint64 nodeIDForPath(const QString &path);

private:
    void finishExport(const QString &libraryPath, quint64 fileSize);

    mutable QMutex m_lock;
    QStringList m_sharingQueue;
    std::atomic<bool> m_isExporting{false};
    QTimer m_timer;
    QString m_tempRoot;
    QThread *m_worker = nullptr;
};
