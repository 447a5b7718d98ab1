#pragma once

#include <QByteArray>
#include <QHash>
#include <QStringList>
#include <QTcpServer>

// A small HTTP/1.1 server on 127.0.0.1 for tests that go through the real
// network stack: each path answers with a fixed status, headers and body, and
// every connection is closed after its answer.
class ZTTestHttpServer : public QTcpServer {
public:
    struct Route {
        int status = 200;
        QByteArray body;
        QList<QPair<QByteArray, QByteArray>> headers;
    };

    ZTTestHttpServer();
    quint16 port() const { return serverPort(); }
    QString baseURL() const;
    // path is matched with its query.
    void route(const QString &path, const Route &route);
    void page(const QString &path, const QByteArray &body);
    void redirect(const QString &path, const QString &location);

    QStringList requestedPaths;

private:
    void answer(class QTcpSocket *socket);
    QHash<QString, Route> m_routes;
};
