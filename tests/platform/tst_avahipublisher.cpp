#include "platform/ZTAvahiPublisher.h"

#include "sharing/http/HTTPServer.h"
#include "support/ZTTestMain.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTextStream>
#include <QtTest>

#include <unistd.h>

// The DNS-SD test runs avahi-daemon and its own system bus inside a private
// network namespace that has nothing but the loopback interface, so that no
// announcement ever leaves the machine. This program re-runs itself in there
// (ZT_AVAHI_INNER set) to publish and browse.
namespace {
const char *s_innerVariable = "ZT_AVAHI_INNER";

const char s_avahiConfig[] =
    "[server]\nhost-name=zettary-test\nuse-ipv4=yes\nuse-ipv6=no\nallow-interfaces=lo\n"
    "enable-dbus=yes\nratelimit-interval-usec=0\n[wide-area]\nenable-wide-area=no\n"
    "[publish]\npublish-hinfo=no\npublish-workstation=no\n";

// "name;port" of each resolved instance of the type avahi-browse finds.
QStringList browse(const QString &type)
{
    QProcess browser;
    browser.start(QStringLiteral("avahi-browse"), {"-r", "-t", "-p", "-k", type});
    if (!browser.waitForFinished(15000))
        browser.kill();
    QStringList found;
    for (const QString &line : QString::fromUtf8(browser.readAllStandardOutput()).split('\n')) {
        const QStringList fields = line.split(';');
        if (fields.size() < 9 || fields[0] != QLatin1String("="))
            continue;
        // avahi-browse writes bytes outside letters and digits as \DDD.
        QString name = fields[3];
        static const QRegularExpression escape(QStringLiteral("\\\\(\\d{3})"));
        QRegularExpressionMatch match;
        while ((match = escape.match(name)).hasMatch())
            name.replace(match.capturedStart(), 4, QChar(match.captured(1).toInt()));
        found << name + QLatin1Char(';') + fields[8];
    }
    found.removeDuplicates();
    return found;
}

int innerCheck()
{
    QTextStream err(stderr);
    auto failed = [&](const QString &what) {
        err << "FAIL: " << what << "\n";
        return 1;
    };
    const QString type = QStringLiteral("_zettary2._tcp.");
    const QString name = QStringLiteral("Zettary Sharing [4242]");
    ZTAvahiPublisher publisher;
    HTTPServer server;
    server.setType(type);
    server.setName(name);
    server.setPublisher(&publisher);
    if (!server.start())
        return failed(QStringLiteral("server did not start"));
    if (publisher.waitForRegistration(10000) != ZTAvahiPublisher::State::Established)
        return failed(QStringLiteral("not established: ") + publisher.errorString());
    if (server.publishedName() != name)
        return failed(QStringLiteral("published as ") + server.publishedName());
    const QString port = QString::number(server.listeningPort());
    QStringList found = browse(QStringLiteral("_zettary2._tcp"));
    if (!found.contains(name + ';' + port))
        return failed(QStringLiteral("browse found ") + found.join(','));

    // A second server under the same name takes the next free one.
    ZTAvahiPublisher rivalPublisher;
    HTTPServer rival;
    rival.setType(type);
    rival.setName(name);
    rival.setPublisher(&rivalPublisher);
    rival.start();
    if (rivalPublisher.waitForRegistration(10000) != ZTAvahiPublisher::State::Established)
        return failed(QStringLiteral("rival not established: ") + rivalPublisher.errorString());
    if (rival.publishedName() == name || !rival.publishedName().startsWith(name))
        return failed(QStringLiteral("rival published as ") + rival.publishedName());

    server.stop();
    rival.stop();
    // Withdrawn records linger in the daemon's cache for a second after their goodbye.
    for (int attempt = 0; attempt < 10; ++attempt) {
        found = browse(QStringLiteral("_zettary2._tcp"));
        if (found.isEmpty())
            break;
        QThread::msleep(500);
    }
    if (!found.isEmpty())
        return failed(QStringLiteral("still announced after stop: ") + found.join(','));
    QTextStream(stdout) << "published and browsed " << name << " on port " << port << "\n";
    return 0;
}
} // namespace

class TestAvahiPublisher : public QObject {
    Q_OBJECT
private slots:
    void withoutDaemonServesUnannounced();
    void publishesAndBrowsesInPrivateNetwork();
};

void TestAvahiPublisher::withoutDaemonServesUnannounced()
{
    // A bus address where nothing listens stands for a machine without Avahi.
    QTemporaryDir dir;
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + QFile::encodeName(dir.filePath("no-bus")));
    ZTAvahiPublisher publisher;
    HTTPServer server;
    server.setType(QStringLiteral("_zettary2._tcp."));
    server.setName(QStringLiteral("Zettary Sharing [1]"));
    server.setDocumentRoot(dir.path());
    server.setPublisher(&publisher);
    QString error;
    QVERIFY2(server.start(&error), qPrintable(error));
    QCOMPARE(publisher.waitForRegistration(5000), ZTAvahiPublisher::State::Failed);
    QVERIFY(!publisher.errorString().isEmpty());
    QVERIFY(server.publishedName().isEmpty());
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, server.listeningPort());
    QVERIFY(socket.waitForConnected(5000));
    socket.write("GET /missing HTTP/1.1\r\nConnection: close\r\n\r\n");
    QByteArray reply;
    while (socket.state() == QAbstractSocket::ConnectedState && socket.waitForReadyRead(5000))
        reply += socket.readAll();
    reply += socket.readAll();
    QVERIFY2(reply.startsWith("HTTP/1.1 404"), reply.constData());
    server.stop();
    qunsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}

void TestAvahiPublisher::publishesAndBrowsesInPrivateNetwork()
{
    if (geteuid() != 0)
        QSKIP("needs root to make a private network namespace");
    for (const char *tool : {"unshare", "avahi-daemon", "dbus-daemon", "avahi-browse", "ip"})
        if (QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty() &&
            !QFileInfo::exists(QStringLiteral("/usr/sbin/") + QString::fromLatin1(tool)))
            QSKIP(qPrintable(QStringLiteral("%1 is not installed").arg(QString::fromLatin1(tool))));
    QProcess probe;
    probe.start(QStringLiteral("unshare"), {"--net", "--mount", "--pid", "--fork", "true"});
    if (!probe.waitForFinished(10000) || probe.exitCode() != 0)
        QSKIP(qPrintable(QStringLiteral("cannot make a network namespace here: ") +
                         QString::fromUtf8(probe.readAllStandardError()).trimmed()));

    QTemporaryDir dir;
    QFile config(dir.filePath("avahi-daemon.conf"));
    QVERIFY(config.open(QIODevice::WriteOnly));
    config.write(s_avahiConfig);
    config.close();
    // Inside: loopback up, a private /run for the bus and the daemon, both
    // ended with the namespace's first process. When they cannot be set up
    // (exit 77) the machine cannot host this test; the test proper runs after.
    const QString script = QStringLiteral(
        "PATH=$PATH:/usr/sbin:/sbin; "
        "{ ip link set lo up && mount -t tmpfs tmpfs /run && mkdir -p /run/dbus /run/avahi-daemon && "
        "dbus-daemon --system --fork --nopidfile && "
        "avahi-daemon -f \"$1\" --no-drop-root --no-chroot --no-rlimits -D; } || exit 77; "
        "for i in $(seq 50); do avahi-daemon -c 2>/dev/null && break; sleep 0.1; done; "
        "exec \"$2\" TestAvahiPublisher");
    QProcess inner;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(s_innerVariable), QStringLiteral("1"));
    environment.remove(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"));
    inner.setProcessEnvironment(environment);
    inner.start(QStringLiteral("unshare"),
                {"--net", "--mount", "--pid", "--fork", "--mount-proc", "bash", "-c", script, "zt-avahi",
                 config.fileName(), QCoreApplication::applicationFilePath()});
    QVERIFY(inner.waitForFinished(120000));
    const QString output = QString::fromUtf8(inner.readAllStandardOutput() + inner.readAllStandardError());
    if (inner.exitCode() == 77)
        QSKIP(qPrintable(QStringLiteral("cannot start a bus and avahi-daemon in the namespace: ") +
                         output.trimmed()));
    QVERIFY2(inner.exitCode() == 0, qPrintable(output));
    QVERIFY2(output.contains(QLatin1String("published and browsed Zettary Sharing [4242]")),
             qPrintable(output));
}

int runAvahiPublisher(int argc, char **argv)
{
    if (qEnvironmentVariableIsSet(s_innerVariable))
        return innerCheck();
    TestAvahiPublisher test;
    return QTest::qExec(&test, argc, argv);
}
ZT_TEST_CUSTOM_MAIN(TestAvahiPublisher, Core, runAvahiPublisher)

#include "tst_avahipublisher.moc"
