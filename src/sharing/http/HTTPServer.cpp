#include "sharing/http/HTTPServer.h"

#include "sharing/http/HTTPConnection.h"
#include "sharing/http/HTTPDocumentRoot.h"
#include "sharing/http/HTTPQueue.h"
#include "sharing/http/HTTPServicePublisher.h"

#include <QTcpServer>
#include <QTimer>

#include <algorithm>
#include <csignal>
#include <pthread.h>
#include <unistd.h>

namespace {
// Accepts on the accept queue and hands each new socket to the server, which
// chooses the queue that will serve it.
class HTTPListener : public QTcpServer {
public:
    HTTPListener(std::function<void(qintptr)> dispatch, QObject *parent)
        : QTcpServer(parent), m_dispatch(std::move(dispatch))
    {
    }

protected:
    void incomingConnection(qintptr socketDescriptor) override { m_dispatch(socketDescriptor); }

private:
    std::function<void(qintptr)> m_dispatch;
};

int queueCount()
{
    return std::max(2, QThread::idealThreadCount());
}
} // namespace

HTTPServer::HTTPServer(QObject *parent)
    : QObject(parent),
      m_deathObservation(QString::fromLatin1(kHTTPConnectionDidDieNotification), nullptr,
                         [this](const ZTNotification &note) { connectionDidDie(note.object); })
{
}

HTTPServer::~HTTPServer()
{
    stop();
}

#define HTTP_SERVER_PROPERTY(Type, getter, setter, member)                                                   \
    Type HTTPServer::getter() const                                                                          \
    {                                                                                                        \
        QMutexLocker lock(&m_mutex);                                                                         \
        return member;                                                                                       \
    }                                                                                                        \
    void HTTPServer::setter(const Type &value)                                                               \
    {                                                                                                        \
        QMutexLocker lock(&m_mutex);                                                                         \
        member = value;                                                                                      \
    }

HTTP_SERVER_PROPERTY(QString, name, setName, m_name)
HTTP_SERVER_PROPERTY(QString, type, setType, m_type)
HTTP_SERVER_PROPERTY(QString, domain, setDomain, m_domain)
HTTP_SERVER_PROPERTY(QHostAddress, interface, setInterface, m_interface)
HTTP_SERVER_PROPERTY(HTTPServer::Timeouts, timeouts, setTimeouts, m_timeouts)
#undef HTTP_SERVER_PROPERTY

QString HTTPServer::documentRoot() const
{
    QMutexLocker lock(&m_mutex);
    return m_documentRoot;
}

void HTTPServer::setDocumentRoot(const QString &path)
{
    QMutexLocker lock(&m_mutex);
    m_documentRoot = path;
    m_resolvedRoot.reset();
}

std::shared_ptr<const HTTPDocumentRoot> HTTPServer::resolvedDocumentRoot()
{
    QMutexLocker lock(&m_mutex);
    // An invalid root is tried again on every request, so that a folder made
    // after the server started is found.
    if (!m_resolvedRoot || !m_resolvedRoot->isValid())
        m_resolvedRoot = std::make_shared<const HTTPDocumentRoot>(m_documentRoot);
    return m_resolvedRoot;
}

void HTTPServer::forgetDocumentRoot(const std::shared_ptr<const HTTPDocumentRoot> &root)
{
    QMutexLocker lock(&m_mutex);
    if (m_resolvedRoot == root)
        m_resolvedRoot.reset();
}

quint16 HTTPServer::port() const
{
    QMutexLocker lock(&m_mutex);
    return m_port;
}

void HTTPServer::setPort(quint16 port)
{
    QMutexLocker lock(&m_mutex);
    m_port = port;
}

void HTTPServer::setPublisher(HTTPServicePublisher *publisher)
{
    QMutexLocker lock(&m_mutex);
    m_publisher = publisher;
}

bool HTTPServer::start(QString *error)
{
    if (m_running)
        return true;
    // The queues exist before the first client can arrive.
    const Timeouts limits = timeouts();
    const int sweepMs = std::clamp(std::min(limits.readHeaderLineMs, limits.writeHeadMs) / 4, 20, 1000);
    for (int i = 0; i < queueCount(); ++i) {
        auto queue = std::make_unique<HTTPQueue>(QStringLiteral("HTTP connections %1").arg(i + 1));
        QObject *context = queue->context();
        queue->sync([context, sweepMs] {
            // Files are sent with sendfile, which cannot be told to spare us
            // SIGPIPE when a client has gone; blocked here, it turns into EPIPE.
            sigset_t pipe;
            sigemptyset(&pipe);
            sigaddset(&pipe, SIGPIPE);
            pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
            auto *sweep = new QTimer(context);
            QObject::connect(sweep, &QTimer::timeout, context, [context] {
                for (HTTPConnection *connection :
                     context->findChildren<HTTPConnection *>(Qt::FindDirectChildrenOnly))
                    connection->checkTimeouts();
            });
            sweep->start(sweepMs);
        });
        m_queues.push_back(std::move(queue));
    }
    const QHostAddress address = interface().isNull() ? QHostAddress(QHostAddress::Any) : interface();
    const quint16 requestedPort = port();
    m_acceptQueue = std::make_unique<HTTPQueue>(QStringLiteral("HTTP accept"));
    bool listening = false;
    QString message;
    m_acceptQueue->sync([&] {
        m_listener = new HTTPListener([this](qintptr fd) { dispatch(fd); }, m_acceptQueue->context());
        // Many clients may connect at once; the default backlog of 50 would
        // make the rest wait for a retransmitted SYN.
        m_listener->setListenBacklogSize(1024);
        listening = m_listener->listen(address, requestedPort);
        if (listening)
            m_listeningPort = m_listener->serverPort();
        else
            message = m_listener->errorString();
    });
    if (!listening) {
        stopQueues();
        if (error)
            *error = message;
        return false;
    }

    m_running = true;

    QMutexLocker lock(&m_mutex);
    if (m_publisher)
        m_publisher->publish(m_name, m_type, m_domain, m_listeningPort);
    return true;
}

void HTTPServer::stop()
{
    if (!m_running)
        return;
    {
        QMutexLocker lock(&m_mutex);
        if (m_publisher)
            m_publisher->unpublish();
    }
    stopQueues();
    m_running = false;
    m_listeningPort = 0;
}

void HTTPServer::stopQueues()
{
    // No new clients first, then the open connections, each on its own queue.
    m_acceptQueue->stop();
    m_acceptQueue.reset();
    m_listener = nullptr;
    for (auto &queue : m_queues)
        queue->stop();
    m_queues.clear();
}

bool HTTPServer::isRunning() const
{
    return m_running;
}

quint16 HTTPServer::listeningPort() const
{
    return m_listeningPort;
}

QString HTTPServer::publishedName() const
{
    QMutexLocker lock(&m_mutex);
    return m_publisher && m_running ? m_publisher->publishedName() : QString();
}

int HTTPServer::numberOfHTTPConnections() const
{
    QMutexLocker lock(&m_mutex);
    return int(m_connections.size());
}

void HTTPServer::dispatch(qintptr socketDescriptor)
{
    HTTPQueue *queue = m_queues.empty() ? nullptr : m_queues[m_nextQueue++ % m_queues.size()].get();
    if (!queue) {
        ::close(int(socketDescriptor));
        return;
    }
    const Timeouts limits = timeouts();
    QObject *context = queue->context();
    queue->post([this, socketDescriptor, limits, context] {
        new HTTPConnection(socketDescriptor, this, limits, context);
    });
}

void HTTPServer::addConnection(HTTPConnection *connection)
{
    QMutexLocker lock(&m_mutex);
    m_connections.append(connection);
}

void HTTPServer::connectionDidDie(const void *connection)
{
    QMutexLocker lock(&m_mutex);
    m_connections.removeOne(static_cast<HTTPConnection *>(const_cast<void *>(connection)));
}
