#include "support/ZTTestHttpServer.h"

#include <QTcpSocket>

ZTTestHttpServer::ZTTestHttpServer()
{
    listen(QHostAddress::LocalHost, 0);
    connect(this, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
}

QString ZTTestHttpServer::baseURL() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(serverPort());
}

void ZTTestHttpServer::route(const QString &path, const Route &route)
{
    m_routes.insert(path, route);
}

void ZTTestHttpServer::page(const QString &path, const QByteArray &body)
{
    Route r;
    r.body = body;
    r.headers << qMakePair(QByteArrayLiteral("Content-Type"), QByteArrayLiteral("text/html; charset=utf-8"));
    route(path, r);
}

void ZTTestHttpServer::redirect(const QString &path, const QString &location)
{
    Route r;
    r.status = 302;
    r.headers << qMakePair(QByteArrayLiteral("Location"), location.toUtf8());
    route(path, r);
}

void ZTTestHttpServer::answer(QTcpSocket *socket)
{
    QByteArray request = socket->property("request").toByteArray() + socket->readAll();
    socket->setProperty("request", request);
    if (!request.contains("\r\n\r\n"))
        return;
    const QList<QByteArray> words = request.left(request.indexOf("\r\n")).split(' ');
    const QString path = QString::fromUtf8(words.value(1));
    requestedPaths << path;
    Route r;
    if (m_routes.contains(path)) {
        r = m_routes.value(path);
    } else {
        r.status = 404;
        r.body = "<html><body>Not here</body></html>";
    }
    QByteArray response =
        "HTTP/1.1 " + QByteArray::number(r.status) + (r.status == 200 ? " OK" : " Other") + "\r\n";
    for (const auto &[name, value] : std::as_const(r.headers))
        response += name + ": " + value + "\r\n";
    response +=
        "Content-Length: " + QByteArray::number(r.body.size()) + "\r\nConnection: close\r\n\r\n" + r.body;
    socket->write(response);
    socket->disconnectFromHost();
}
