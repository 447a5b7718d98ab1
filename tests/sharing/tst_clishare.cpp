#include "library/ZTLibraryFixture.h"
#include "sharing/ZTZipReader.h"
#include "store/ZTPropertyList.h"
#include "support/ZTTestMain.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QtTest>

#include <csignal>

namespace {
QByteArray get(quint16 port, const QByteArray &target)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port);
    if (!socket.waitForConnected(5000))
        return {};
    socket.write("GET " + target + " HTTP/1.1\r\nConnection: close\r\n\r\n");
    QByteArray all;
    while (socket.state() == QAbstractSocket::ConnectedState && socket.waitForReadyRead(5000))
        all += socket.readAll();
    all += socket.readAll();
    return all;
}

QByteArray bodyOf(const QByteArray &reply)
{
    const qsizetype end = reply.indexOf("\r\n\r\n");
    return end < 0 ? QByteArray() : reply.mid(end + 4);
}
} // namespace

class TestCliShare : public QObject {
    Q_OBJECT
private slots:
    void init();
    void shareExportWritesThePackage();
    void refusesBadArguments_data();
    void refusesBadArguments();
    void shareServesUntilTerminated();

private:
    QProcessEnvironment environment() const;
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestCliShare::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
}

QProcessEnvironment TestCliShare::environment() const
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_CACHE_HOME", m_dir->filePath("cache"));
    env.insert("ZETTARY_SETTINGS_FILE", m_dir->filePath("settings.ini"));
    env.insert("TMPDIR", m_dir->path());
    // No Avahi here, whatever the machine runs.
    env.insert("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + m_dir->filePath("no-bus"));
    return env;
}

void TestCliShare::shareExportWritesThePackage()
{
    ZTLibraryFixture fixture(ZTMediaKind::Album);
    fixture.addTitled(QStringLiteral("Blue Train"), {{"artists", QStringList{"John Coltrane"}}});
    QVERIFY(fixture.document().saveDocument());
    QProcess cli;
    cli.setProcessEnvironment(environment());
    const QString out = m_dir->filePath("out.zip");
    cli.start(ZTTestSupport::cliPath(), {"share-export", fixture.path(), out});
    QVERIFY(cli.waitForFinished(60000));
    QVERIFY2(cli.exitCode() == 0, cli.readAllStandardError().constData());
    ZTZipReader zip(out);
    QVERIFY(zip.isOpen());
    const QString id = zip.names().value(0).section('/', 0, 0);
    QVERIFY(!id.isEmpty());
    const QVariantMap subtitles = ZTPropertyList::deserialize(zip.read(id + "/subtitleDict.xml")).toMap();
    QCOMPARE(subtitles.values().value(0).toString(), QStringLiteral("John Coltrane"));
    QCOMPARE(ZTPropertyList::deserialize(zip.read(id + "/info.xml")).toMap().value("type").toString(),
             QStringLiteral("music"));
}

void TestCliShare::refusesBadArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("export of no library")
        << QStringList{"share-export", "%DIR%/nothing.ztbooklib", "%DIR%/x.zip"} << "is not a library";
    QTest::newRow("export without target")
        << QStringList{"share-export", "%DIR%/a.ztbooklib"} << "share-export needs";
    QTest::newRow("share nothing") << QStringList{"share"} << "at least one library";
    QTest::newRow("port out of range")
        << QStringList{"share", "%DIR%/a.ztbooklib", "--port", "70000"} << "--port";
    QTest::newRow("port not a number")
        << QStringList{"share", "%DIR%/a.ztbooklib", "--port", "http"} << "--port";
    QTest::newRow("unknown option") << QStringList{"share", "%DIR%/a.ztbooklib", "--loud"}
                                    << "unknown option";
}

void TestCliShare::refusesBadArguments()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    arguments.replaceInStrings("%DIR%", m_dir->path());
    QProcess cli;
    cli.setProcessEnvironment(environment());
    cli.start(ZTTestSupport::cliPath(), arguments);
    QVERIFY(cli.waitForFinished(30000));
    QCOMPARE(cli.exitCode(), 2);
    const QString error = QString::fromUtf8(cli.readAllStandardError());
    QVERIFY2(error.contains(message), qPrintable(error));
}

void TestCliShare::shareServesUntilTerminated()
{
    ZTLibraryFixture fixture;
    fixture.addTitled(QStringLiteral("Dune"));
    QVERIFY(fixture.document().saveDocument());
    QProcess cli;
    cli.setProcessEnvironment(environment());
    cli.start(ZTTestSupport::cliPath(), {"share", fixture.path()});
    QVERIFY(cli.waitForStarted());
    QString output;
    QRegularExpressionMatch match;
    const QRegularExpression address(QStringLiteral("at http://0\\.0\\.0\\.0:(\\d+)/"));
    QTRY_VERIFY_WITH_TIMEOUT(
        (output += QString::fromUtf8(cli.readAllStandardOutput()), output.contains("not announced")), 20000);
    match = address.match(output);
    QVERIFY2(match.hasMatch(), qPrintable(output));
    const quint16 port = quint16(match.captured(1).toUInt());

    // The first export starts at once; the list shows it once done.
    QVariantList libraries;
    QTRY_VERIFY_WITH_TIMEOUT(
        (libraries = ZTPropertyList::deserialize(bodyOf(get(port, "/sharedLibraries.xml"))).toList(),
         libraries.value(0).toMap().value("status").toInt() == 1),
        30000);
    const QString id = libraries.value(0).toMap().value("id").toString();
    QVERIFY(get(port, QStringLiteral("/%1/%1.zip").arg(id).toUtf8()).startsWith("HTTP/1.1 200"));

    // A save by another process is noticed and the library exported anew.
    QProcess add;
    add.setProcessEnvironment(environment());
    add.start(ZTTestSupport::cliPath(), {"add", fixture.path(), "-"});
    add.write(R"({"title": "Emma"})");
    add.closeWriteChannel();
    QVERIFY(add.waitForFinished(30000));
    QCOMPARE(add.exitCode(), 0);
    QTRY_VERIFY_WITH_TIMEOUT(
        (libraries = ZTPropertyList::deserialize(bodyOf(get(port, "/sharedLibraries.xml"))).toList(),
         libraries.value(0).toMap().value("itemCount").toInt() == 2 &&
             libraries.value(0).toMap().value("status").toInt() == 1),
        30000);

    ::kill(pid_t(cli.processId()), SIGTERM);
    QVERIFY(cli.waitForFinished(20000));
    QCOMPARE(cli.exitStatus(), QProcess::NormalExit);
    QCOMPARE(cli.exitCode(), 0);
    QVERIFY(QString::fromUtf8(cli.readAllStandardOutput()).contains("Sharing stopped"));
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port);
    QVERIFY(!socket.waitForConnected(2000));
}

ZT_TEST_MAIN(TestCliShare)
#include "tst_clishare.moc"
