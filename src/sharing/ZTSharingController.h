#pragma once

#include "base/ZTNotificationCenter.h"

#include <QList>
#include <QMutex>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>
#include <optional>

class HTTPServicePublisher;
class ZTSharingExportController;
class ZTWebServer;

inline constexpr char kZTSharingServiceType[] = "_zettary2._tcp.";

// Offers the chosen libraries to the handheld companion: keeps the list of
// shared libraries and "sharedLibraries.xml", keeps every library's package
// current (a saved library is exported anew), and serves the shared directory
// over HTTP, announced on the local network. A request whose target holds
// "=" asks for the library whose id follows to be exported again.
class ZTSharingController : public QObject {
    Q_OBJECT
public:
    // With `libraries` the controller shares exactly those paths and leaves
    // the settings alone; without, it shares the "Shared Libraries Key" list
    // and starts at once when "Sharing State Key" is on. The publisher (not
    // owned, may be null) announces the service.
    ZTSharingController(ZTSharingExportController &exporter, HTTPServicePublisher *publisher,
                        std::optional<QStringList> libraries = std::nullopt, QObject *parent = nullptr);
    ~ZTSharingController() override;

    void loadSharedLibraries();
    void writeSharedLibraryList();
    void processSharingStatus();
    void prepareForSharing();
    bool startSharing(QString *error = nullptr);
    void stopSharing();

    void savedLibrary(qint64 nodeID);
    void receivedURL(const QString &urlText);
    void exportedURL(const QString &libraryPath, quint64 fileSize);

    static quint64 itemCountFromDatabaseFile(const QString &path);
    static void prunePath(const QString &path, const QList<qint64> &nodeIDs);
    static QString sharedDirectoryPath();

    // Copies of the library dictionaries ("url" is the library's path).
    QList<QVariantMap> sharedLibraries() const;
    QList<QVariantMap> serializableSharedLibraries() const;
    ZTWebServer &webServer() { return *m_webServer; }
    quint16 listeningPort() const;

private:
    QStringList libraryBookmarks() const;
    bool isSharingOn() const;
    bool isExportCompleteForId(qint64 nodeID) const;
    quint64 fileSizeForId(qint64 nodeID) const;

    ZTSharingExportController &m_exporter;
    std::optional<QStringList> m_libraries;
    std::unique_ptr<ZTWebServer> m_webServer;
    mutable QMutex m_mutex;
    QList<QVariantMap> m_sharedLibraries;
    ZTObservation m_receivedObservation;
    ZTObservation m_exportedObservation;
    ZTObservation m_savedObservation;
};
