#include "app/cli/ZTCli.h"
#include "library/ZTDocument.h"
#include "platform/ZTAvahiPublisher.h"
#include "sharing/ZTSharingController.h"
#include "sharing/ZTSharingExportController.h"
#include "sharing/ZTWebServer.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QSocketNotifier>
#include <QTemporaryDir>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {
int s_signalPipe[2] = {-1, -1};

void onSignal(int)
{
    const char byte = 1;
    // Only write(2) is safe in a signal handler; the event loop does the rest.
    [[maybe_unused]] const ssize_t written = ::write(s_signalPipe[1], &byte, 1);
}

bool checkLibraries(const QStringList &paths, QStringList *absolute)
{
    for (const QString &path : paths) {
        ZTMediaKind kind;
        if (!ZTDocument::kindForPath(path, &kind) ||
            !QFileInfo::exists(QDir(path).filePath(QStringLiteral("data.sql")))) {
            ZTCli::fail(QStringLiteral("\"%1\" is not a library").arg(path));
            return false;
        }
        *absolute << QFileInfo(path).absoluteFilePath();
    }
    return true;
}
} // namespace

namespace ZTCliCommands {

// Serves the libraries to the handheld companion until SIGINT or SIGTERM. The
// shared list is the one given here; the user's settings are left alone.
int share(const QStringList &arguments)
{
    QStringList args = arguments;
    QString portText;
    quint16 port = 0;
    if (ZTCli::takeOption(args, QStringLiteral("--port"), &portText)) {
        bool ok = false;
        const uint value = portText.toUInt(&ok);
        if (!ok || value > 65535)
            return ZTCli::fail(
                QStringLiteral("share: --port needs a number from 0 to 65535, not \"%1\"").arg(portText));
        port = quint16(value);
    }
    for (const QString &arg : std::as_const(args))
        if (arg.startsWith(QLatin1String("--")))
            return ZTCli::fail(QStringLiteral("share: unknown option \"%1\"").arg(arg));
    if (args.isEmpty())
        return ZTCli::fail(QStringLiteral("share needs at least one library"));
    QStringList libraries;
    if (!checkLibraries(args, &libraries))
        return 2;

    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, s_signalPipe) != 0)
        return ZTCli::fail(QStringLiteral("share: cannot set up signal handling"));
    QSocketNotifier notifier(s_signalPipe[0], QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, qApp, [] { QCoreApplication::quit(); });
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);

    ZTAvahiPublisher publisher;
    ZTSharingExportController exporter;
    // The window's exports use the common scratch folder; this process keeps its own.
    QTemporaryDir scratch;
    if (scratch.isValid())
        exporter.setTempRootPath(scratch.filePath(QStringLiteral("ZettaryTempSharingExport")));
    ZTSharingController sharing(exporter, &publisher, libraries);
    sharing.webServer().setPort(port);
    QString error;
    if (!sharing.startSharing(&error))
        return ZTCli::fail(QStringLiteral("share: cannot listen on port %1: %2").arg(port).arg(error));
    ZTCli::out(QStringLiteral("Sharing %1 librar%2 at http://0.0.0.0:%3/ (folder %4)")
                   .arg(libraries.size())
                   .arg(libraries.size() == 1 ? QStringLiteral("y") : QStringLiteral("ies"))
                   .arg(sharing.listeningPort())
                   .arg(ZTSharingController::sharedDirectoryPath()));
    if (publisher.waitForRegistration(3000) == ZTAvahiPublisher::State::Established)
        ZTCli::out(QStringLiteral("Announced as \"%1\" (%2)")
                       .arg(publisher.publishedName(), QString::fromLatin1(kZTSharingServiceType)));
    else
        ZTCli::out(QStringLiteral("The service is not announced on the network: %1")
                       .arg(publisher.errorString().isEmpty()
                                ? QStringLiteral("no answer from the DNS-SD service")
                                : publisher.errorString()));
    // Other processes (another zettary-cli, the window) save these libraries
    // too; their notifications do not reach us, so the stores are watched.
    QFileSystemWatcher watcher;
    for (const QString &library : std::as_const(libraries))
        watcher.addPath(QDir(library).filePath(QStringLiteral("data.sql")));
    QObject::connect(&watcher, &QFileSystemWatcher::fileChanged, &sharing, [&sharing](const QString &store) {
        sharing.savedLibrary(ZTSharingExportController::nodeIDForPath(QFileInfo(store).absolutePath()));
    });
    // Exports start at once rather than at the first tick.
    exporter.checkExport();
    const int status = QCoreApplication::exec();
    sharing.stopSharing();
    ZTCli::out(QStringLiteral("Sharing stopped"));
    ::close(s_signalPipe[0]);
    ::close(s_signalPipe[1]);
    return status;
}

// Writes the package a handheld would download for one library.
int shareExport(const QStringList &arguments)
{
    QStringList args = arguments;
    if (args.size() != 2)
        return ZTCli::fail(QStringLiteral("share-export needs a library and the zip to write"));
    QStringList libraries;
    if (!checkLibraries({args[0]}, &libraries))
        return 2;
    QTemporaryDir temp;
    if (!temp.isValid())
        return ZTCli::fail(QStringLiteral("share-export: cannot make a temporary folder"));
    QString zip, error;
    const qint64 nodeID = ZTSharingExportController::nodeIDForPath(libraries.first());
    if (ZTSharingExportController::exportPackage(libraries.first(), nodeID, temp.path(), &zip, &error) == 0)
        return ZTCli::fail(QStringLiteral("share-export: %1")
                               .arg(error.isEmpty() ? QStringLiteral("export failed") : error));
    QFile::remove(args[1]);
    if (!QFile::copy(zip, args[1]))
        return ZTCli::fail(QStringLiteral("share-export: cannot write \"%1\"").arg(args[1]));
    ZTCli::out(QStringLiteral("%1 (%2 bytes)").arg(args[1]).arg(QFileInfo(args[1]).size()));
    return 0;
}

} // namespace ZTCliCommands
