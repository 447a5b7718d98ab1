#include "lookup/ZTPageGetter.h"
#include "lookup/ZTSiteOverride.h"
#include "support/ZTTestMain.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

// A page fetched by the code rules goes through the network stack and the site
// override, here against a server on 127.0.0.1.
class TestPageGetter : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void fetchesThroughTheOverrideAndReportsFailureAsNull()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        QByteArray request;
        connect(&server, &QTcpServer::newConnection, this, [&] {
            QTcpSocket *socket = server.nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, socket, [&request, socket] {
                request += socket->readAll();
                if (!request.contains("\r\n\r\n"))
                    return;
                const bool missing = request.startsWith("GET /missing");
                const QByteArray body = missing ? QByteArray("gone") : QByteArray("<b>ISBN:</b> 8535902775");
                socket->write((missing ? "HTTP/1.1 404 Not Found\r\n" : "HTTP/1.1 200 OK\r\n") +
                              QByteArray("Content-Length: ") + QByteArray::number(body.size()) +
                              "\r\nConnection: close\r\n\r\n" + body);
                socket->disconnectFromHost();
            });
        });
        ZTSiteOverride::setOverrides(
            QStringLiteral("www.submarino.com.br=http://127.0.0.1:%1").arg(server.serverPort()));
        const QByteArray page =
            ZTPageGetter::fetch(QUrl(QStringLiteral("http://www.submarino.com.br/produto/123")));
        QCOMPARE(page, QByteArray("<b>ISBN:</b> 8535902775"));
        QVERIFY(request.startsWith("GET /produto/123 "));
        QVERIFY(request.toLower().contains("user-agent:"));
        request.clear();
        QVERIFY(ZTPageGetter::fetch(QUrl(QStringLiteral("http://www.submarino.com.br/missing"))).isNull());
        QVERIFY(ZTPageGetter::fetch(QUrl()).isNull());
        ZTSiteOverride::setOverrides(QString());
    }
};

ZT_TEST_MAIN(TestPageGetter)
#include "tst_pagegetter.moc"
