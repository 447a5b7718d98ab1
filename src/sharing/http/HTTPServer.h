#pragma once

#include "base/ZTNotificationCenter.h"

#include <QHostAddress>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QString>

#include <atomic>
#include <memory>
#include <vector>

class HTTPConnection;
class HTTPDocumentRoot;
class HTTPQueue;
class HTTPServicePublisher;
class QTcpServer;

// Context of the server's lines in the central log.
inline constexpr int kHTTPLogContext = 80;

// Posted when a request's head is complete, before anything is answered, on
// the connection's thread. The object points at the request's QUrl (valid only
// while the notification is delivered); the user info holds the same URL under
// "url" and the request target as the client sent it under "urlText".
inline constexpr char kZFReceivedURLNotification[] = "kZFReceivedURLNotification";
// Posted by a connection that has ended; the object is the connection.
inline constexpr char kHTTPConnectionDidDieNotification[] = "HTTPConnectionDidDie";

// A small static-file HTTP/1.1 server. It listens on its own thread and
// serves its connections on a few worker threads, each connection staying on
// one of them. It knows nothing of what it serves: others watch
// kZFReceivedURLNotification for the requests they care about.
class HTTPServer : public QObject {
    Q_OBJECT
public:
    struct Timeouts {
        int readHeaderLineMs = 30000;
        int writeHeadMs = 30000;
    };

    explicit HTTPServer(QObject *parent = nullptr);
    ~HTTPServer() override;

    QString documentRoot() const;
    void setDocumentRoot(const QString &path);
    QString name() const;
    void setName(const QString &name);
    QString type() const;
    void setType(const QString &type);
    QString domain() const;
    void setDomain(const QString &domain);
    // 0 lets the system choose a free port when the server starts.
    quint16 port() const;
    void setPort(quint16 port);
    // The address to listen on; a null address means every interface.
    QHostAddress interface() const;
    void setInterface(const QHostAddress &address);
    // Not owned. Set it before start.
    void setPublisher(HTTPServicePublisher *publisher);
    // Shorter time-outs for tests; the defaults are those a real client gets.
    void setTimeouts(const Timeouts &timeouts);
    Timeouts timeouts() const;

    // Opens the listening socket and publishes the service. On failure
    // returns false with a message in error, and nothing runs.
    bool start(QString *error = nullptr);
    // Withdraws the service and closes every connection. Must not be called
    // from a connection's thread (that is, from a notification handler).
    void stop();
    bool isRunning() const;
    quint16 listeningPort() const;
    QString publishedName() const;
    int numberOfHTTPConnections() const;

private:
    friend class HTTPConnection;
    void stopQueues();
    void dispatch(qintptr socketDescriptor);
    // The document root held open; made again after the path changes.
    std::shared_ptr<const HTTPDocumentRoot> resolvedDocumentRoot();
    void forgetDocumentRoot(const std::shared_ptr<const HTTPDocumentRoot> &root);
    void addConnection(HTTPConnection *connection);
    void connectionDidDie(const void *connection);

    mutable QMutex m_mutex;
    QString m_documentRoot;
    QString m_name;
    QString m_type;
    QString m_domain = QStringLiteral("local.");
    quint16 m_port = 0;
    QHostAddress m_interface;
    Timeouts m_timeouts;
    HTTPServicePublisher *m_publisher = nullptr;
    QList<HTTPConnection *> m_connections;
    std::shared_ptr<const HTTPDocumentRoot> m_resolvedRoot;

    std::atomic<bool> m_running{false};
    quint16 m_listeningPort = 0;
    std::unique_ptr<HTTPQueue> m_acceptQueue;
    QTcpServer *m_listener = nullptr;
    std::vector<std::unique_ptr<HTTPQueue>> m_queues;
    std::atomic<quint32> m_nextQueue{0};
    ZTObservation m_deathObservation;
};
