#include "sharing/http/HTTPServer.h"

#include "base/ZTLog.h"
#include "base/ZTNotificationCenter.h"
#include "sharing/http/HTTPConnection.h"
#include "sharing/http/HTTPServicePublisher.h"
#include "support/ZTTestMain.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSemaphore>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <arpa/inet.h>
#include <memory>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {
struct Response {
    int status = 0;
    QList<QPair<QByteArray, QByteArray>> fields;
    QByteArray body;

    QByteArray field(QByteArrayView name) const
    {
        for (const auto &f : fields)
            if (QByteArrayView(f.first).compare(name, Qt::CaseInsensitive) == 0)
                return f.second;
        return {};
    }
};

bool parseHead(const QByteArray &head, Response &response)
{
    const QList<QByteArray> lines = head.trimmed().split('\n');
    const QList<QByteArray> status = lines.value(0).trimmed().split(' ');
    if (status.size() < 2 || status[0] != "HTTP/1.1")
        return false;
    response.status = status[1].toInt();
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QByteArray line = lines[i].trimmed();
        const qsizetype colon = line.indexOf(':');
        if (colon <= 0)
            return false;
        response.fields.append({line.left(colon), line.mid(colon + 1).trimmed()});
    }
    return true;
}

// Reads one response; false when the server closes or stays silent first.
bool readResponse(QTcpSocket &socket, Response &response, bool headOnly = false, int timeoutMs = 10000)
{
    response = Response();
    QDeadlineTimer deadline(timeoutMs);
    QByteArray head;
    while (!head.endsWith("\r\n\r\n")) {
        if (socket.canReadLine())
            head += socket.readLine();
        else if (!socket.waitForReadyRead(int(deadline.remainingTime())))
            return false;
    }
    if (!parseHead(head, response))
        return false;
    const qint64 length = headOnly ? 0 : response.field("Content-Length").toLongLong();
    while (response.body.size() < length) {
        if (socket.bytesAvailable() > 0)
            response.body += socket.read(length - response.body.size());
        else if (!socket.waitForReadyRead(int(deadline.remainingTime())))
            return false;
    }
    return true;
}

bool waitClosed(QTcpSocket &socket, int timeoutMs = 5000)
{
    return socket.state() == QAbstractSocket::UnconnectedState || socket.waitForDisconnected(timeoutMs);
}

QByteArray randomBytes(qsizetype size)
{
    QByteArray data(size, Qt::Uninitialized);
    auto *generator = QRandomGenerator::global();
    for (qsizetype i = 0; i < size; ++i)
        data[i] = char(generator->bounded(256));
    return data;
}

bool writeFile(const QString &path, const QByteArray &data)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size();
}

// Collects the server's lines in the central log while it lives.
class LogCapture {
public:
    LogCapture()
        : m_token(ZTLog::addSink([this](const ZTLog::Line &line) {
              QMutexLocker lock(&m_mutex);
              m_lines.append(
                  QStringLiteral("%1|%2|%3").arg(line.context).arg(int(line.level)).arg(line.message));
          }))
    {
    }
    ~LogCapture() { ZTLog::removeSink(m_token); }
    bool contains(const QString &text) const
    {
        QMutexLocker lock(&m_mutex);
        for (const QString &line : m_lines)
            if (line.contains(text))
                return true;
        return false;
    }

private:
    mutable QMutex m_mutex;
    QStringList m_lines;
    ZTLog::Token m_token;
};

class FakePublisher : public HTTPServicePublisher {
public:
    void publish(const QString &name, const QString &type, const QString &domain, quint16 port) override
    {
        published = QStringList{name, type, domain, QString::number(port)};
    }
    void unpublish() override { published.clear(); }
    QString publishedName() const override { return published.isEmpty() ? QString() : published[0] + " (2)"; }
    QStringList published;
};
} // namespace

class TestHTTPServer : public QObject {
    Q_OBJECT
private:
    QTemporaryDir m_dir;
    QString m_root;
    QByteArray m_big;
    std::unique_ptr<HTTPServer> m_server;

    std::unique_ptr<QTcpSocket> connectClient(quint16 port = 0)
    {
        auto socket = std::make_unique<QTcpSocket>();
        socket->connectToHost(QHostAddress::LocalHost, port ? port : m_server->listeningPort());
        if (!socket->waitForConnected(5000))
            return nullptr;
        return socket;
    }

    // One request on a fresh connection.
    Response exchange(const QByteArray &request, bool headOnly = false)
    {
        Response response;
        auto socket = connectClient();
        if (socket) {
            socket->write(request);
            readResponse(*socket, response, headOnly);
        }
        return response;
    }

    int curl(const QStringList &args, QByteArray *output)
    {
        QProcess process;
        process.start(QStringLiteral("curl"), QStringList{"-s", "--max-time", "20"} + args);
        if (!process.waitForFinished(30000))
            return -1;
        *output = process.readAllStandardOutput();
        return process.exitCode();
    }

    QString url(const QString &path) const
    {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(m_server->listeningPort()).arg(path);
    }

private Q_SLOTS:
    void initTestCase()
    {
        // Hundreds of clients and their server ends are open at once in one test.
        struct rlimit limit {};
        if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < 4096) {
            limit.rlim_cur = std::min<rlim_t>(4096, limit.rlim_max);
            setrlimit(RLIMIT_NOFILE, &limit);
        }
        QVERIFY(m_dir.isValid());
        const QString base = m_dir.path();
        m_root = base + "/root";
        QVERIFY(QDir().mkpath(m_root + "/sub"));
        QVERIFY(QDir().mkpath(m_root + "/noindex"));
        QVERIFY(QDir().mkpath(m_root + "/only-htm"));
        QVERIFY(QDir().mkpath(base + "/outside"));
        QVERIFY(writeFile(m_root + "/ten.txt", "0123456789"));
        QVERIFY(writeFile(m_root + "/empty.txt", ""));
        QVERIFY(writeFile(m_root + "/with space.txt", "spaced"));
        QVERIFY(writeFile(m_root + "/sub/index.html", "<p>sub</p>"));
        QVERIFY(writeFile(m_root + "/sub/index.htm", "wrong one"));
        QVERIFY(writeFile(m_root + "/only-htm/index.htm", "htm"));
        QVERIFY(writeFile(base + "/secret.txt", "secret"));
        QVERIFY(writeFile(base + "/outside/secret.txt", "secret too"));
        // Three chunks and a bit, so the body crosses chunk boundaries.
        m_big = randomBytes(3 * HTTPConnection::kReadChunkSize + 12345);
        QVERIFY(writeFile(m_root + "/big.bin", m_big));
        QVERIFY(QFile::link(base + "/secret.txt", m_root + "/outside-link"));
        QVERIFY(QFile::link(base + "/outside", m_root + "/linkdir"));
        QVERIFY(QFile::link(m_root + "/ten.txt", m_root + "/inside-link"));
        QCOMPARE(::mkfifo(QFile::encodeName(m_root + "/fifo").constData(), 0600), 0);

        m_server = std::make_unique<HTTPServer>();
        m_server->setDocumentRoot(m_root);
        QString error;
        QVERIFY2(m_server->start(&error), qPrintable(error));
        QVERIFY(m_server->isRunning());
        QVERIFY(m_server->listeningPort() != 0);
    }

    void cleanupTestCase() { m_server.reset(); }

    void servesWholeFileWithStandardFields()
    {
        QByteArray output;
        QCOMPARE(curl({"-i", url("/ten.txt")}, &output), 0);
        Response response;
        const qsizetype split = output.indexOf("\r\n\r\n");
        QVERIFY(split > 0);
        QVERIFY(parseHead(output.left(split + 4), response));
        QCOMPARE(response.status, 200);
        QCOMPARE(response.field("Content-Length"), QByteArray("10"));
        QCOMPARE(response.field("Accept-Ranges"), QByteArray("bytes"));
        QCOMPARE(output.mid(split + 4), QByteArray("0123456789"));
        const QByteArray date = response.field("Date");
        QVERIFY2(
            QRegularExpression("^(Mon|Tue|Wed|Thu|Fri|Sat|Sun), \\d\\d (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|"
                               "Oct|Nov|Dec) \\d{4} \\d\\d:\\d\\d:\\d\\d GMT$")
                .match(QString::fromLatin1(date))
                .hasMatch(),
            date.constData());
        QDateTime sent = QLocale(QLocale::English)
                             .toDateTime(QString::fromLatin1(date).chopped(4),
                                         QStringLiteral("ddd, dd MMM yyyy HH:mm:ss"));
        sent.setTimeSpec(Qt::UTC);
        QVERIFY(sent.isValid());
        QVERIFY(qAbs(sent.secsTo(QDateTime::currentDateTimeUtc())) < 120);
    }

    void servesLargeFileIntact()
    {
        const QString out = m_dir.path() + "/big.out";
        QByteArray ignored;
        QCOMPARE(curl({"-o", out, url("/big.bin")}, &ignored), 0);
        QFile file(out);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll() == m_big);
    }

    void survivesClientsThatLeaveEarly()
    {
        // Clients that close right after asking: the answer meets a reset
        // connection, which must fail quietly instead of ending the program.
        for (int i = 0; i < 100; ++i) {
            const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
            QVERIFY(fd >= 0);
            sockaddr_in address{};
            address.sin_family = AF_INET;
            address.sin_port = htons(m_server->listeningPort());
            address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            QCOMPARE(::connect(fd, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
            const QByteArray request = i % 2 ? "GET /big.bin HTTP/1.1\r\n\r\n"
                                             : "GET /big.bin HTTP/1.1\r\nRange: bytes=0-9,100-,20-29\r\n\r\n";
            QCOMPARE(::send(fd, request.constData(), size_t(request.size()), MSG_NOSIGNAL),
                     ssize_t(request.size()));
            ::close(fd);
        }
        QTRY_COMPARE(m_server->numberOfHTTPConnections(), 0);
        const Response response = exchange("GET /ten.txt HTTP/1.1\r\n\r\n");
        QCOMPARE(response.status, 200);
    }

    void answersSingleRanges_data()
    {
        QTest::addColumn<QByteArray>("range");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("contentRange");
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("to the end") << QByteArray("bytes=0-") << 206 << QByteArray("bytes 0-9/10")
                                    << QByteArray("0123456789");
        QTest::newRow("middle") << QByteArray("bytes=2-4") << 206 << QByteArray("bytes 2-4/10")
                                << QByteArray("234");
        QTest::newRow("suffix") << QByteArray("bytes=-3") << 206 << QByteArray("bytes 7-9/10")
                                << QByteArray("789");
        QTest::newRow("end past the file")
            << QByteArray("bytes=8-100") << 206 << QByteArray("bytes 8-9/10") << QByteArray("89");
        QTest::newRow("unsatisfiable: whole file")
            << QByteArray("bytes=10-") << 200 << QByteArray() << QByteArray("0123456789");
        QTest::newRow("reversed: whole file")
            << QByteArray("bytes=5-2") << 200 << QByteArray() << QByteArray("0123456789");
        QTest::newRow("malformed: whole file")
            << QByteArray("lines=1") << 200 << QByteArray() << QByteArray("0123456789");
    }

    void answersSingleRanges()
    {
        QFETCH(QByteArray, range);
        QFETCH(int, status);
        QFETCH(QByteArray, contentRange);
        QFETCH(QByteArray, body);
        const Response response =
            exchange("GET /ten.txt HTTP/1.1\r\nHost: t\r\nRange: " + range + "\r\n\r\n");
        QCOMPARE(response.status, status);
        QCOMPARE(response.field("Content-Range"), contentRange);
        QCOMPARE(response.field("Content-Length"), QByteArray::number(body.size()));
        QCOMPARE(response.body, body);
    }

    void answersRangeWithCurl()
    {
        QByteArray output;
        QCOMPARE(curl({"-r", "3-5", url("/ten.txt")}, &output), 0);
        QCOMPARE(output, QByteArray("345"));
    }

    void answersMultipleRangesAsMultipart_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("range");
        QTest::addColumn<QList<qint64>>("bounds"); // first, last, first, last, ...
        const qint64 chunk = HTTPConnection::kReadChunkSize;
        const qint64 big = 3 * chunk + 12345;
        QTest::newRow("small file") << QStringLiteral("/ten.txt") << QByteArray("bytes=0-1,5-6,-2")
                                    << QList<qint64>{0, 1, 5, 6, 8, 9};
        QTest::newRow("across chunks")
            << QStringLiteral("/big.bin") << QByteArray("bytes=-10,100-" + QByteArray::number(chunk + 5))
            << QList<qint64>{big - 10, big - 1, 100, chunk + 5};
    }

    void answersMultipleRangesAsMultipart()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, range);
        QFETCH(QList<qint64>, bounds);
        QFile file(m_root + path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray content = file.readAll();
        const Response response =
            exchange("GET " + path.toUtf8() + " HTTP/1.1\r\nHost: t\r\nRange: " + range + "\r\n\r\n");
        QCOMPARE(response.status, 206);
        const QByteArray type = response.field("Content-Type");
        QVERIFY2(type.startsWith("multipart/byteranges; boundary="), type.constData());
        const QByteArray boundary = type.mid(type.indexOf('=') + 1);
        QVERIFY(!boundary.isEmpty());
        QCOMPARE(response.field("Content-Length").toLongLong(), response.body.size());
        // Walk the parts: delimiter, fields, empty line, data.
        qsizetype at = 0;
        const QByteArray total = QByteArray::number(content.size());
        for (qsizetype i = 0; i < bounds.size(); i += 2) {
            const QByteArray delimiter = "\r\n--" + boundary + "\r\n";
            QCOMPARE(response.body.mid(at, delimiter.size()), delimiter);
            at += delimiter.size();
            const qsizetype headEnd = response.body.indexOf("\r\n\r\n", at);
            QVERIFY(headEnd > at);
            Response part;
            QVERIFY(parseHead("HTTP/1.1 206 x\r\n" + response.body.mid(at, headEnd - at) + "\r\n\r\n", part));
            QVERIFY(!part.field("Content-Type").isEmpty());
            QCOMPARE(part.field("Content-Range"), "bytes " + QByteArray::number(bounds[i]) + '-' +
                                                      QByteArray::number(bounds[i + 1]) + '/' + total);
            at = headEnd + 4;
            const qint64 length = bounds[i + 1] - bounds[i] + 1;
            QVERIFY(response.body.mid(at, length) == content.mid(bounds[i], length));
            at += length;
        }
        QCOMPARE(response.body.mid(at), "\r\n--" + boundary + "--\r\n");
    }

    void headCarriesLengthWithoutBody()
    {
        auto socket = connectClient();
        QVERIFY(socket);
        // Sent together: the GET's answer must start right where the HEAD's head ends.
        socket->write("HEAD /big.bin HTTP/1.1\r\nHost: t\r\n\r\nGET /ten.txt HTTP/1.1\r\nHost: t\r\n\r\n");
        Response head;
        QVERIFY(readResponse(*socket, head, true));
        QCOMPARE(head.status, 200);
        QCOMPARE(head.field("Content-Length"), QByteArray::number(m_big.size()));
        Response get;
        QVERIFY(readResponse(*socket, get));
        QCOMPARE(get.status, 200);
        QCOMPARE(get.body, QByteArray("0123456789"));
        QVERIFY(!socket->waitForReadyRead(200));
    }

    void followsConnectionRules_data()
    {
        QTest::addColumn<QByteArray>("version");
        QTest::addColumn<QByteArray>("connection");
        QTest::addColumn<bool>("closes");
        QTest::newRow("1.1 default") << QByteArray("HTTP/1.1") << QByteArray() << false;
        QTest::newRow("1.1 close") << QByteArray("HTTP/1.1") << QByteArray("close") << true;
        QTest::newRow("1.1 Close in capitals") << QByteArray("HTTP/1.1") << QByteArray("CLOSE") << true;
        QTest::newRow("1.1 keep-alive") << QByteArray("HTTP/1.1") << QByteArray("keep-alive") << false;
        QTest::newRow("1.0 default") << QByteArray("HTTP/1.0") << QByteArray() << true;
        QTest::newRow("1.0 Keep-Alive") << QByteArray("HTTP/1.0") << QByteArray("Keep-Alive") << false;
        QTest::newRow("1.0 other token") << QByteArray("HTTP/1.0") << QByteArray("upgrade") << true;
    }

    void followsConnectionRules()
    {
        QFETCH(QByteArray, version);
        QFETCH(QByteArray, connection);
        QFETCH(bool, closes);
        auto socket = connectClient();
        QVERIFY(socket);
        QByteArray request = "GET /ten.txt " + version + "\r\nHost: t\r\n";
        if (!connection.isEmpty())
            request += "Connection: " + connection + "\r\n";
        request += "\r\n";
        for (int round = 0; round < (closes ? 1 : 3); ++round) {
            socket->write(request);
            Response response;
            QVERIFY(readResponse(*socket, response));
            QCOMPARE(response.status, 200);
            QCOMPARE(response.body, QByteArray("0123456789"));
            QCOMPARE(response.field("Connection").toLower() == "close", closes);
        }
        if (closes)
            QVERIFY(waitClosed(*socket));
        else
            QCOMPARE(socket->state(), QAbstractSocket::ConnectedState);
    }

    void reusesConnectionWithCurl()
    {
        QByteArray output;
        QCOMPARE(curl({"-o", "/dev/null", "-o", "/dev/null", "-w", "%{http_code} %{num_connects}\\n",
                       url("/ten.txt"), url("/sub/")},
                      &output),
                 0);
        QCOMPARE(output, QByteArray("200 1\n200 0\n"));
    }

    void answersErrors_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("closes");
        QTest::addColumn<QString>("logLine");
        QTest::newRow("POST") << QByteArray("POST /ten.txt HTTP/1.1\r\nContent-Length: 0\r\n\r\n") << 405
                              << true
                              << QStringLiteral(
                                     "HTTP Server: Error 405 - Method Not Allowed: POST (/ten.txt)");
        QTest::newRow("DELETE") << QByteArray("DELETE /ten.txt HTTP/1.1\r\n\r\n") << 405 << true
                                << QStringLiteral("Method Not Allowed: DELETE");
        QTest::newRow("HTTP/2.0")
            << QByteArray("GET /ten.txt HTTP/2.0\r\n\r\n") << 505 << true
            << QStringLiteral("HTTP Server: Error 505 - Version Not Supported: HTTP/2.0 (/ten.txt)");
        QTest::newRow("GET with body")
            << QByteArray("GET /ten.txt HTTP/1.1\r\nContent-Length: 5\r\n\r\n") << 400 << true
            << QStringLiteral("HTTP Server: Error 400 - Bad Request (/ten.txt)");
        QTest::newRow("GET with chunked body")
            << QByteArray("GET /ten.txt HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n") << 400 << true
            << QStringLiteral("Error 400");
        QTest::newRow("GET with bad length")
            << QByteArray("GET /ten.txt HTTP/1.1\r\nContent-Length: x\r\n\r\n") << 400 << true
            << QStringLiteral("Error 400");
        QTest::newRow("garbage") << QByteArray("hello there\r\n\r\n") << 400 << true
                                 << QStringLiteral("Error 400");
        QTest::newRow("bad field") << QByteArray("GET / HTTP/1.1\r\nNo colon here\r\n\r\n") << 400 << true
                                   << QStringLiteral("HTTP Server: Error 400 - Bad Request (/)");
        QTest::newRow("missing file")
            << QByteArray("GET /missing HTTP/1.1\r\n\r\n") << 404 << false << QString();
        QTest::newRow("zero length is no body")
            << QByteArray("GET /ten.txt HTTP/1.1\r\nContent-Length: 0\r\n\r\n") << 200 << false << QString();
    }

    void answersErrors()
    {
        QFETCH(QByteArray, request);
        QFETCH(int, status);
        QFETCH(bool, closes);
        QFETCH(QString, logLine);
        LogCapture log;
        auto socket = connectClient();
        QVERIFY(socket);
        socket->write(request);
        Response response;
        QVERIFY(readResponse(*socket, response));
        QCOMPARE(response.status, status);
        QVERIFY(!response.field("Date").isEmpty());
        if (status != 200) {
            QCOMPARE(response.field("Content-Length"), QByteArray("0"));
        }
        if (closes) {
            QCOMPARE(response.field("Connection"), QByteArray("close"));
            QVERIFY(waitClosed(*socket));
        } else {
            socket->write("GET /ten.txt HTTP/1.1\r\n\r\n");
            QVERIFY(readResponse(*socket, response));
            QCOMPARE(response.status, 200);
        }
        if (!logLine.isEmpty())
            QVERIFY2(log.contains(QStringLiteral("80|2|") + logLine) || log.contains(logLine),
                     qPrintable(logLine));
    }

    void limitsHeaderLines_data()
    {
        QTest::addColumn<int>("lineLength"); // including CRLF
        QTest::addColumn<int>("fieldCount");
        QTest::addColumn<int>("status"); // 0: dropped without an answer
        QTest::newRow("longest line") << 8190 << 1 << 200;
        QTest::newRow("line one byte too long") << 8191 << 1 << 0;
        QTest::newRow("endless line") << 100000 << 1 << 0;
        // The request line, the fields and the empty line all count.
        QTest::newRow("100 lines") << 20 << 98 << 200;
        QTest::newRow("101 lines") << 20 << 99 << 400;
        QTest::newRow("100 lines near the longest") << 8190 << 98 << 200;
        QTest::newRow("many lines") << 20 << 500 << 400;
    }

    void limitsHeaderLines()
    {
        QFETCH(int, lineLength);
        QFETCH(int, fieldCount);
        QFETCH(int, status);
        QByteArray request = "GET /ten.txt HTTP/1.1\r\n";
        for (int i = 0; i < fieldCount; ++i) {
            QByteArray line = "X-F" + QByteArray::number(i) + ": ";
            line += QByteArray(lineLength - 2 - line.size(), 'a') + "\r\n";
            QCOMPARE(line.size(), lineLength);
            request += line;
        }
        request += "\r\n";
        auto socket = connectClient();
        QVERIFY(socket);
        socket->write(request);
        Response response;
        if (status == 0) {
            QVERIFY(!readResponse(*socket, response, false, 5000));
            QVERIFY(waitClosed(*socket));
            QCOMPARE(response.status, 0);
            return;
        }
        QVERIFY(readResponse(*socket, response));
        QCOMPARE(response.status, status);
    }

    void keepsToDocumentRoot_data()
    {
        QTest::addColumn<QByteArray>("target");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<bool>("logsOutside");
        const QByteArray none;
        QTest::newRow("dot-dot") << QByteArray("/../secret.txt") << 404 << none << true;
        QTest::newRow("dot-dot deep") << QByteArray("/sub/../../secret.txt") << 404 << none << true;
        QTest::newRow("encoded dots") << QByteArray("/%2e%2e/secret.txt") << 404 << none << true;
        QTest::newRow("encoded slash") << QByteArray("/%2E%2E%2Fsecret.txt") << 404 << none << true;
        QTest::newRow("encoded deep")
            << QByteArray("/sub/%2e%2e/%2e%2e/outside/secret.txt") << 404 << none << true;
        QTest::newRow("absolute form escape") << QByteArray("http://h/../secret.txt") << 404 << none << true;
        QTest::newRow("link to file outside") << QByteArray("/outside-link") << 404 << none << true;
        QTest::newRow("link to folder outside") << QByteArray("/linkdir/secret.txt") << 404 << none << true;
        QTest::newRow("encoded NUL") << QByteArray("/ten.txt%00.png") << 404 << none << false;
        QTest::newRow("FIFO") << QByteArray("/fifo") << 404 << none << false;
        QTest::newRow("folder without index") << QByteArray("/noindex/") << 404 << none << false;
        QTest::newRow("asterisk") << QByteArray("*") << 404 << none << false;
        QTest::newRow("dot-dot staying inside")
            << QByteArray("/sub/../ten.txt") << 200 << QByteArray("0123456789") << false;
        QTest::newRow("link inside") << QByteArray("/inside-link") << 200 << QByteArray("0123456789")
                                     << false;
        QTest::newRow("index.html first") << QByteArray("/sub/") << 200 << QByteArray("<p>sub</p>") << false;
        QTest::newRow("index.html without slash")
            << QByteArray("/sub") << 200 << QByteArray("<p>sub</p>") << false;
        QTest::newRow("index.htm") << QByteArray("/only-htm") << 200 << QByteArray("htm") << false;
        QTest::newRow("root has no index") << QByteArray("/") << 404 << none << false;
        QTest::newRow("encoded space")
            << QByteArray("/with%20space.txt") << 200 << QByteArray("spaced") << false;
        QTest::newRow("query ignored")
            << QByteArray("/ten.txt?x=../../secret.txt") << 200 << QByteArray("0123456789") << false;
        QTest::newRow("absolute form")
            << QByteArray("http://h/ten.txt") << 200 << QByteArray("0123456789") << false;
        QTest::newRow("empty file") << QByteArray("/empty.txt") << 200 << QByteArray("") << false;
    }

    void keepsToDocumentRoot()
    {
        QFETCH(QByteArray, target);
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(bool, logsOutside);
        LogCapture log;
        const Response response = exchange("GET " + target + " HTTP/1.1\r\nHost: t\r\n\r\n");
        QCOMPARE(response.status, status);
        QCOMPARE(response.body, body);
        QCOMPARE(log.contains(QStringLiteral("Request for file outside document root")), logsOutside);
    }

    void keepsToDocumentRootWithCurl()
    {
        QByteArray output;
        QCOMPARE(curl({"--path-as-is", "-o", "/dev/null", "-w", "%{http_code}", url("/sub/../../secret.txt")},
                      &output),
                 0);
        QCOMPARE(output, QByteArray("404"));
    }

    void postsHookBeforeAnswering_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<QString>("urlText");
        QTest::addColumn<int>("status");
        QTest::newRow("file") << QByteArray("GET /ten.txt HTTP/1.1\r\n\r\n") << QStringLiteral("/ten.txt")
                              << 200;
        QTest::newRow("library id") << QByteArray("GET /x=12 HTTP/1.1\r\n\r\n") << QStringLiteral("/x=12")
                                    << 404;
        QTest::newRow("scan code, still encoded")
            << QByteArray("HEAD /scan=Y29kZT05NzgwMzA2NDA2MTU3%3D HTTP/1.1\r\n\r\n")
            << QStringLiteral("/scan=Y29kZT05NzgwMzA2NDA2MTU3%3D") << 404;
        QTest::newRow("refused method")
            << QByteArray("PUT /value=3 HTTP/1.1\r\n\r\n") << QStringLiteral("/value=3") << 405;
    }

    void postsHookBeforeAnswering()
    {
        QFETCH(QByteArray, request);
        QFETCH(QString, urlText);
        QFETCH(int, status);
        QSemaphore entered;
        QSemaphore release;
        QString seenText;
        QString seenUrl;
        bool objectMatches = false;
        ZTObservation observation(
            QString::fromLatin1(kZFReceivedURLNotification), nullptr, [&](const ZTNotification &note) {
                seenText = note.userInfo.value("urlText").toString();
                const QUrl url = note.userInfo.value("url").toUrl();
                seenUrl = url.toString(QUrl::FullyEncoded);
                objectMatches = note.object && *static_cast<const QUrl *>(note.object) == url;
                entered.release();
                release.tryAcquire(1, 10000);
            });
        auto socket = connectClient();
        QVERIFY(socket);
        socket->write(request);
        QVERIFY(socket->waitForBytesWritten(5000));
        QVERIFY(entered.tryAcquire(1, 5000));
        // The observer still holds the connection's thread: nothing may have been answered.
        QVERIFY(!socket->waitForReadyRead(300));
        QCOMPARE(socket->bytesAvailable(), 0);
        release.release();
        Response response;
        QVERIFY(readResponse(*socket, response, request.startsWith("HEAD")));
        QCOMPARE(response.status, status);
        QCOMPARE(seenText, urlText);
        QCOMPARE(seenUrl, urlText);
        QVERIFY(objectMatches);
    }

    void noHookForRejectedHead()
    {
        int posted = 0;
        ZTObservation observation(QString::fromLatin1(kZFReceivedURLNotification), nullptr,
                                  [&](const ZTNotification &) { ++posted; });
        const Response response = exchange("GET /ten.txt HTTP/1.1\r\nbroken\r\n\r\n");
        QCOMPARE(response.status, 400);
        QCOMPARE(posted, 0);
    }

    void staysResponsiveWhileClientsStall()
    {
        // Enough stalled clients to sit on every connection queue.
        std::vector<std::unique_ptr<QTcpSocket>> stalled;
        for (int i = 0; i < 8; ++i) {
            auto socket = connectClient();
            QVERIFY(socket);
            socket->write(i % 2 ? "GET /ten.txt HTTP/1.1\r\nHost: slo" : "G");
            socket->flush();
            stalled.push_back(std::move(socket));
        }
        for (int i = 0; i < 3; ++i) {
            QByteArray output;
            QCOMPARE(curl({"--max-time", "5", url("/ten.txt")}, &output), 0);
            QCOMPARE(output, QByteArray("0123456789"));
        }
        for (auto &socket : stalled)
            QCOMPARE(socket->state(), QAbstractSocket::ConnectedState);
    }

    void closesStalledClientsAfterTimeout()
    {
        HTTPServer server;
        server.setDocumentRoot(m_root);
        server.setInterface(QHostAddress::LocalHost);
        server.setTimeouts({400, 400});
        QVERIFY(server.start());
        auto idle = connectClient(server.listeningPort());
        auto partial = connectClient(server.listeningPort());
        auto keptAlive = connectClient(server.listeningPort());
        QVERIFY(idle && partial && keptAlive);
        partial->write("GET /ten.txt HTTP/1.1\r\nHost: t");
        keptAlive->write("GET /ten.txt HTTP/1.1\r\n\r\n");
        Response response;
        QVERIFY(readResponse(*keptAlive, response));
        QCOMPARE(response.status, 200);
        QElapsedTimer timer;
        timer.start();
        for (QTcpSocket *socket : {idle.get(), partial.get(), keptAlive.get()}) {
            QVERIFY(waitClosed(*socket, 5000));
            QCOMPARE(socket->readAll(), QByteArray());
        }
        QVERIFY(timer.elapsed() < 4000);
        QTRY_COMPARE(server.numberOfHTTPConnections(), 0);
    }

    void servesManyConnectionsAtOnce()
    {
        constexpr int kClients = 500;
        std::vector<std::unique_ptr<QTcpSocket>> clients;
        clients.reserve(kClients);
        for (int i = 0; i < kClients; ++i) {
            clients.push_back(std::make_unique<QTcpSocket>());
            clients.back()->connectToHost(QHostAddress::LocalHost, m_server->listeningPort());
        }
        for (auto &client : clients)
            QVERIFY(client->state() == QAbstractSocket::ConnectedState || client->waitForConnected(10000));
        QTRY_COMPARE_WITH_TIMEOUT(m_server->numberOfHTTPConnections(), kClients, 10000);
        for (auto &client : clients)
            client->write("GET /ten.txt HTTP/1.1\r\nHost: t\r\n\r\n");
        int ok = 0;
        for (auto &client : clients) {
            Response response;
            if (readResponse(*client, response) && response.status == 200 && response.body == "0123456789")
                ++ok;
        }
        QCOMPARE(ok, kClients);
        clients.clear();
        QTRY_COMPARE_WITH_TIMEOUT(m_server->numberOfHTTPConnections(), 0, 10000);
    }

    void reportsDocumentRootProblems_data()
    {
        QTest::addColumn<QString>("root");
        QTest::addColumn<QString>("logLine");
        QTest::newRow("none") << QString() << QStringLiteral("No configured document root");
        QTest::newRow("missing") << QStringLiteral("/nonexistent/zettary-root")
                                 << QStringLiteral("Document root is invalid file path");
        QTest::newRow("a file") << QStringLiteral("ten.txt")
                                << QStringLiteral("Document root is invalid file path");
    }

    void reportsDocumentRootProblems()
    {
        QFETCH(QString, root);
        QFETCH(QString, logLine);
        LogCapture log;
        HTTPServer server;
        server.setDocumentRoot(root == "ten.txt" ? m_root + "/ten.txt" : root);
        QVERIFY(server.start());
        auto socket = connectClient(server.listeningPort());
        QVERIFY(socket);
        socket->write("GET /ten.txt HTTP/1.1\r\n\r\n");
        Response response;
        QVERIFY(readResponse(*socket, response));
        QCOMPARE(response.status, 404);
        QVERIFY(log.contains(QStringLiteral("80|2|HTTPConnection[0x")));
        QVERIFY(log.contains(logLine));
    }

    void followsDocumentRootChanges()
    {
        HTTPServer server;
        server.setDocumentRoot(m_root);
        QVERIFY(server.start());
        auto socket = connectClient(server.listeningPort());
        QVERIFY(socket);
        Response response;
        socket->write("GET /secret.txt HTTP/1.1\r\n\r\n");
        QVERIFY(readResponse(*socket, response));
        QCOMPARE(response.status, 404);
        server.setDocumentRoot(m_dir.path());
        socket->write("GET /secret.txt HTTP/1.1\r\n\r\n");
        QVERIFY(readResponse(*socket, response));
        QCOMPARE(response.status, 200);
        QCOMPARE(response.body, QByteArray("secret"));
    }

    void findsRootMadeOrReplacedAfterStart()
    {
        const QString root = m_dir.path() + "/later";
        HTTPServer server;
        server.setDocumentRoot(root);
        QVERIFY(server.start());
        auto socket = connectClient(server.listeningPort());
        QVERIFY(socket);
        Response response;
        socket->write("GET /a.txt HTTP/1.1\r\n\r\n");
        QVERIFY(readResponse(*socket, response));
        QCOMPARE(response.status, 404);

        QVERIFY(QDir().mkpath(root));
        QVERIFY(writeFile(root + "/a.txt", "first"));
        socket->write("GET /a.txt HTTP/1.1\r\n\r\n");
        QVERIFY(readResponse(*socket, response));
        QCOMPARE(response.body, QByteArray("first"));

        QVERIFY(QDir().rename(root, root + "-old"));
        QVERIFY(QDir().mkpath(root));
        QVERIFY(writeFile(root + "/b.txt", "second"));
        socket->write("GET /b.txt HTTP/1.1\r\n\r\n");
        QVERIFY(readResponse(*socket, response));
        QCOMPARE(response.body, QByteArray("second"));
    }

    void stopClosesConnectionsAndWithdrawsService()
    {
        FakePublisher publisher;
        HTTPServer server;
        server.setDocumentRoot(m_root);
        server.setName("Zettary Sharing [1]");
        server.setType("_zettary2._tcp.");
        server.setPublisher(&publisher);
        QVERIFY(server.publishedName().isEmpty());
        QVERIFY(server.start());
        const quint16 port = server.listeningPort();
        QCOMPARE(publisher.published,
                 QStringList({"Zettary Sharing [1]", "_zettary2._tcp.", "local.", QString::number(port)}));
        QCOMPARE(server.publishedName(), QStringLiteral("Zettary Sharing [1] (2)"));
        auto socket = connectClient(port);
        QVERIFY(socket);
        socket->write("GET /ten.txt HTTP/1.1\r\n\r\n");
        Response response;
        QVERIFY(readResponse(*socket, response));
        server.stop();
        QVERIFY(!server.isRunning());
        QVERIFY(publisher.published.isEmpty());
        QVERIFY(server.publishedName().isEmpty());
        QVERIFY(waitClosed(*socket));
        QCOMPARE(server.numberOfHTTPConnections(), 0);
        QVERIFY(server.start());
        QVERIFY(connectClient(server.listeningPort()));
    }

    void failedStartReportsError()
    {
        QTcpServer occupant;
        QVERIFY(occupant.listen(QHostAddress::LocalHost));
        HTTPServer server;
        server.setInterface(QHostAddress::LocalHost);
        server.setPort(occupant.serverPort());
        QString error;
        QVERIFY(!server.start(&error));
        QVERIFY(!error.isEmpty());
        QVERIFY(!server.isRunning());
        QCOMPARE(server.listeningPort(), quint16(0));
    }
};

ZT_TEST_MAIN(TestHTTPServer)
#include "tst_httpserver.moc"
