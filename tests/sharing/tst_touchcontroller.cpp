#include "sharing/ZTTouchController.h"

#include "sharing/ZTWebServer.h"
#include "sharing/http/HTTPServicePublisher.h"
#include "support/ZTTestMain.h"

#include <QMutex>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QtTest>

namespace {
class RecordingPublisher : public HTTPServicePublisher {
public:
    void publish(const QString &name, const QString &type, const QString &, quint16) override
    {
        m_name = name;
        m_type = type;
    }
    void unpublish() override { m_name.clear(); }
    QString publishedName() const override { return m_name; }
    QString m_name, m_type;
};

int statusOf(quint16 port, const QByteArray &target)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port);
    if (!socket.waitForConnected(5000))
        return -1;
    socket.write("GET " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n");
    QByteArray all;
    while (socket.state() == QAbstractSocket::ConnectedState && socket.waitForReadyRead(5000))
        all += socket.readAll();
    all += socket.readAll();
    return all.mid(9, 3).toInt();
}
} // namespace

class TestTouchController : public QObject {
    Q_OBJECT
private slots:
    void codeFromURLText_data();
    void codeFromURLText();
    void scanRequestPostsTheCode();
};

void TestTouchController::codeFromURLText_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("code");
    QTest::newRow("EAN") << "/scan=Y29kZT05NzgwMzA2NDA2MTU3"
                         << "9780306406157";
    // "code=123" ends in padding, which a client may percent-encode.
    QTest::newRow("encoded padding") << "/scan=Y29kZT0xMjM%3D"
                                     << "123";
    QTest::newRow("plain padding") << "/scan=Y29kZT0xMjM="
                                   << "123";
    QTest::newRow("equals signs belong to the code") << "/scan=Y29kZT1hPWI9"
                                                     << "a=b=";
    QTest::newRow("text before code=") << "/scan=eHhjb2RlPTU="
                                       << "5";
    QTest::newRow("no code=") << "/scan=aGVsbG8="
                              << "";
    QTest::newRow("blank code") << "/scan=Y29kZT0gIA=="
                                << "";
    QTest::newRow("not base64") << "/scan=!!!***"
                                << "";
    QTest::newRow("empty token") << "/scan="
                                 << "";
    QTest::newRow("no scan marker") << "/x=Y29kZT05NzgwMzA2NDA2MTU3"
                                    << "";
    QTest::newRow("deeper path") << "/a/scan=Y29kZT05NzgwMzA2NDA2MTU3"
                                 << "9780306406157";
}

void TestTouchController::codeFromURLText()
{
    QFETCH(QString, target);
    QFETCH(QString, code);
    QCOMPARE(ZTTouchController::codeFromURLText(target), code);
}

void TestTouchController::scanRequestPostsTheCode()
{
    QTemporaryDir temp;
    qputenv("TMPDIR", QFile::encodeName(temp.path()));
    RecordingPublisher publisher;
    ZTTouchController touch(&publisher);
    QVERIFY(touch.startScanChecking());
    QCOMPARE(publisher.m_type, QStringLiteral("_zettary2scan._tcp."));
    QVERIFY2(QRegularExpression("^Zettary Scanning \\[\\d+\\]$").match(publisher.m_name).hasMatch(),
             qPrintable(publisher.m_name));
    QVERIFY(QFileInfo(temp.path() + "/ZettaryScan").isDir());

    QMutex mutex;
    QStringList codes;
    QList<const void *> objects;
    ZTObservation observation(QString::fromLatin1(kZTTouchScanCompleteNotification), nullptr,
                              [&](const ZTNotification &note) {
                                  QMutexLocker lock(&mutex);
                                  codes << note.userInfo.value("code").toString();
                                  objects << note.object;
                              });
    const quint16 port = touch.webServer().listeningPort();
    // The answer is the same whether or not a code came along.
    QCOMPARE(statusOf(port, "/scan=Y29kZT05NzgwMzA2NDA2MTU3"), 404);
    QCOMPARE(statusOf(port, "/scan=aGVsbG8="), 404);
    QCOMPARE(statusOf(port, "/index.html"), 404);
    QMutexLocker lock(&mutex);
    QCOMPARE(codes, QStringList{"9780306406157"});
    QCOMPARE(objects, QList<const void *>{nullptr});
    lock.unlock();

    touch.stopScanChecking();
    QVERIFY(!touch.webServer().isStarted());
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port);
    QVERIFY(!socket.waitForConnected(2000));
}

ZT_TEST_MAIN(TestTouchController)
#include "tst_touchcontroller.moc"
