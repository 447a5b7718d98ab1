#include "app/cli/ZTCli.h"
#include "scan/ZTStillImageScanner.h"

#include <QFileInfo>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonObject>

namespace ZTCliCommands {

// Reads each picture as the camera loop would if it showed the picture for six
// frames. Prints the 13 digits or "no code", one line per picture ("FILE: CODE"
// when several are given), or a JSON array with --json.
int scan(const QStringList &arguments)
{
    QStringList args = arguments;
    const bool json = ZTCli::takeFlag(args, QStringLiteral("--json"));
    if (args.isEmpty())
        return ZTCli::fail(QStringLiteral("scan needs at least one picture"));
    for (const QString &arg : std::as_const(args)) {
        if (arg.startsWith(QLatin1String("--")))
            return ZTCli::fail(QStringLiteral("scan: unknown option \"%1\"").arg(arg));
    }

    int status = 0;
    QJsonArray found;
    for (const QString &path : std::as_const(args)) {
        QImageReader reader(path);
        const QImage picture = reader.read();
        if (picture.isNull()) {
            status =
                ZTCli::fail(QStringLiteral("cannot read picture \"%1\": %2").arg(path, reader.errorString()));
            continue;
        }
        const QImage frame = ZTStillImageScanner::frameFromImage(picture);
        if (frame.isNull()) {
            status =
                ZTCli::fail(QStringLiteral("picture \"%1\" is too tall to scan: scaled to %2 pixels wide it "
                                           "would exceed 640 pixels in height")
                                .arg(path)
                                .arg(ZTStillImageScanner::s_frameWidth));
            continue;
        }
        const QString code = ZTStillImageScanner::scanFrame(frame);
        if (json) {
            found.append(
                QJsonObject{{QStringLiteral("file"), path},
                            {QStringLiteral("code"), code.isEmpty() ? QJsonValue() : QJsonValue(code)}});
            continue;
        }
        const QString shown = code.isEmpty() ? QStringLiteral("no code") : code;
        ZTCli::out(args.size() > 1 ? path + QStringLiteral(": ") + shown : shown);
    }
    if (json)
        ZTCli::printJson(found);
    return status;
}

} // namespace ZTCliCommands
