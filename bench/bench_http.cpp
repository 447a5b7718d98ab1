// Serves a 1 KB and a 1 MB file to wrk over 127.0.0.1 and prints requests per
// second, beside nginx serving the same files in the same run when it is
// installed. The machine may be shared, so the two servers take turns for a few
// rounds and the median of each is compared.
// Usage: bench_http [seconds per load, default 3] [connections, default 50] [rounds, default 3]
#include "sharing/http/HTTPServer.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <optional>
#include <sys/prctl.h>

namespace {
quint16 freeLoopbackPort()
{
    QTcpServer probe;
    if (!probe.listen(QHostAddress::LocalHost))
        return 0;
    return probe.serverPort();
}

bool writeFile(const QString &path, qsizetype size)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QByteArray data(size, Qt::Uninitialized);
    for (qsizetype i = 0; i < size; ++i)
        data[i] = char('a' + i % 26);
    return file.write(data) == size;
}

struct Load {
    double requestsPerSecond = 0;
    QString transferPerSecond;
};

std::optional<Load> runWrk(quint16 port, const QString &file, int seconds, int connections)
{
    QProcess wrk;
    wrk.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
    wrk.start(QStringLiteral("wrk"),
              {"-t2", QStringLiteral("-c%1").arg(connections), QStringLiteral("-d%1s").arg(seconds),
               QStringLiteral("http://127.0.0.1:%1/%2").arg(port).arg(file)});
    if (!wrk.waitForFinished((seconds + 20) * 1000)) {
        wrk.kill();
        wrk.waitForFinished();
        return std::nullopt;
    }
    const QString output = QString::fromLocal8Bit(wrk.readAllStandardOutput());
    const auto rate = QRegularExpression(QStringLiteral("Requests/sec:\\s+([0-9.]+)")).match(output);
    if (!rate.hasMatch()) {
        fprintf(stderr, "wrk said:\n%s\n", qPrintable(output));
        return std::nullopt;
    }
    const auto transfer = QRegularExpression(QStringLiteral("Transfer/sec:\\s+(\\S+)")).match(output);
    const auto errors = QRegularExpression(QStringLiteral("(Socket errors:.*|Non-2xx.*)")).match(output);
    if (errors.hasMatch())
        fprintf(stderr, "  wrk on %s: %s\n", qPrintable(file), qPrintable(errors.captured(1)));
    return Load{rate.captured(1).toDouble(), transfer.captured(1)};
}

// nginx with a throw-away configuration: one worker per core, sendfile, no
// logging, in the foreground so that it ends with this program.
class Nginx {
public:
    bool start(const QString &binary, const QString &root, const QString &work, quint16 port)
    {
        const QString conf = work + "/nginx.conf";
        QFile file(conf);
        if (!file.open(QIODevice::WriteOnly))
            return false;
        QTextStream(&file) << "daemon off;\n"
                           << "worker_processes auto;\n"
                           << "pid " << work << "/nginx.pid;\n"
                           << "error_log " << work << "/error.log warn;\n"
                           << "events { worker_connections 1024; }\n"
                           << "http {\n"
                           << "  access_log off;\n"
                           << "  sendfile on;\n  tcp_nopush on;\n  tcp_nodelay on;\n"
                           << "  keepalive_requests 1000000;\n"
                           << "  client_body_temp_path " << work << "/body;\n"
                           << "  proxy_temp_path " << work << "/proxy;\n"
                           << "  fastcgi_temp_path " << work << "/fastcgi;\n"
                           << "  uwsgi_temp_path " << work << "/uwsgi;\n"
                           << "  scgi_temp_path " << work << "/scgi;\n"
                           << "  server { listen 127.0.0.1:" << port << "; root " << root << "; }\n"
                           << "}\n";
        file.close();
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // Should this program die before it can stop nginx, nginx goes too.
        m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
        m_process.start(binary, {"-p", work, "-e", work + "/error.log", "-c", conf});
        if (!m_process.waitForStarted(5000))
            return false;
        // Ready when it accepts a connection.
        for (int i = 0; i < 100; ++i) {
            QTcpSocket probe;
            probe.connectToHost(QHostAddress::LocalHost, port);
            if (probe.waitForConnected(100))
                return true;
            if (m_process.state() != QProcess::Running)
                return false;
            QThread::msleep(50);
        }
        return false;
    }

    ~Nginx()
    {
        if (m_process.state() == QProcess::NotRunning)
            return;
        m_process.terminate(); // SIGTERM: the master stops its workers
        if (!m_process.waitForFinished(5000)) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }

private:
    QProcess m_process;
};
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int seconds = argc > 1 ? std::max(1, atoi(argv[1])) : 3;
    const int connections = argc > 2 ? std::max(1, atoi(argv[2])) : 50;
    const int rounds = argc > 3 ? std::max(1, atoi(argv[3])) : 3;
    if (QStandardPaths::findExecutable(QStringLiteral("wrk")).isEmpty()) {
        fprintf(stderr, "wrk is not installed\n");
        return 1;
    }
    QTemporaryDir dir;
    const QString root = dir.path() + "/root";
    QDir().mkpath(root);
    // nginx's workers run as an unprivileged user and must read the files.
    const auto readable = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadGroup |
                          QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
    QFile::setPermissions(dir.path(), readable);
    QFile::setPermissions(root, readable);
    if (!writeFile(root + "/1k.bin", 1024) || !writeFile(root + "/1m.bin", 1024 * 1024)) {
        fprintf(stderr, "cannot write the files to serve\n");
        return 1;
    }

    HTTPServer server;
    server.setDocumentRoot(root);
    server.setInterface(QHostAddress::LocalHost);
    QString error;
    if (!server.start(&error)) {
        fprintf(stderr, "server did not start: %s\n", qPrintable(error));
        return 1;
    }

    QString nginxBinary = QStandardPaths::findExecutable(QStringLiteral("nginx"));
    if (nginxBinary.isEmpty())
        nginxBinary = QStandardPaths::findExecutable(QStringLiteral("nginx"), {"/usr/sbin", "/sbin"});
    Nginx nginx;
    quint16 nginxPort = 0;
    if (nginxBinary.isEmpty()) {
        printf("nginx is not installed: measuring Zettary alone\n");
    } else {
        nginxPort = freeLoopbackPort();
        if (!nginxPort || !nginx.start(nginxBinary, root, dir.path(), nginxPort)) {
            printf("nginx did not start: measuring Zettary alone\n");
            nginxPort = 0;
        }
    }

    printf("wrk -t2 -c%d, %d s per load, median of %d alternating rounds, 127.0.0.1\n", connections, seconds,
           rounds);
    printf("%-8s %16s %16s %8s\n", "file", "zettary req/s", "nginx req/s", "ratio");
    for (const QString file : {QStringLiteral("1k.bin"), QStringLiteral("1m.bin")}) {
        QList<double> ours;
        QList<double> theirs;
        for (int round = 0; round < rounds; ++round) {
            if (const auto load = runWrk(server.listeningPort(), file, seconds, connections))
                ours.append(load->requestsPerSecond);
            if (nginxPort) {
                if (const auto load = runWrk(nginxPort, file, seconds, connections))
                    theirs.append(load->requestsPerSecond);
            }
        }
        const auto median = [](QList<double> values) {
            std::sort(values.begin(), values.end());
            return values.isEmpty() ? 0.0 : values[values.size() / 2];
        };
        const auto figures = [](const QList<double> &values) {
            QStringList texts;
            for (double v : values)
                texts.append(QString::number(v, 'f', 0));
            return texts.join(QLatin1Char(' '));
        };
        const double oursMedian = median(ours);
        const double theirsMedian = median(theirs);
        const QString oursText =
            ours.isEmpty() ? QStringLiteral("failed") : QString::number(oursMedian, 'f', 0);
        const QString theirsText =
            theirs.isEmpty() ? QStringLiteral("-") : QString::number(theirsMedian, 'f', 0);
        const QString ratio = oursMedian > 0 && theirsMedian > 0
                                  ? QStringLiteral("%1%").arg(100 * oursMedian / theirsMedian, 0, 'f', 0)
                                  : QStringLiteral("-");
        printf("%-8s %16s %16s %8s   (rounds: zettary %s; nginx %s)\n", qPrintable(file),
               qPrintable(oursText), qPrintable(theirsText), qPrintable(ratio), qPrintable(figures(ours)),
               qPrintable(figures(theirs)));
        fflush(stdout);
    }
    server.stop();
    return 0;
}
