#pragma once

#include <QHostAddress>
#include <QTcpSocket>

// One request to a server on 127.0.0.1 with "Connection: close", read to the end.
struct ZTHttpReply {
    int status = 0;
    QByteArray head;
    QByteArray body;
};

inline ZTHttpReply ztHttpRequest(quint16 port, const QByteArray &method, const QByteArray &target)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port);
    ZTHttpReply reply;
    if (!socket.waitForConnected(5000))
        return reply;
    socket.write(method + " " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n");
    QByteArray all;
    while (socket.state() == QAbstractSocket::ConnectedState && socket.waitForReadyRead(5000))
        all += socket.readAll();
    all += socket.readAll();
    const qsizetype end = all.indexOf("\r\n\r\n");
    reply.head = all.left(end);
    reply.body = end < 0 ? QByteArray() : all.mid(end + 4);
    reply.status = reply.head.mid(9, 3).toInt();
    return reply;
}
