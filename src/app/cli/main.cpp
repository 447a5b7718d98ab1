#include "app/cli/ZTCli.h"
#include "lookup/ZTPageGetter.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTextStream>

#include <memory>

#include <unistd.h>

namespace ZTCliCommands {
int help(const QStringList &)
{
    QTextStream o(stdout);
    o << "usage: zettary-cli COMMAND [ARGUMENTS]\n\n"
      << "Commands:\n";
    for (int i = 0; i < ZTCli::commandCount(); ++i) {
        const ZTCli::Command &c = ZTCli::commands()[i];
        o << "  " << c.name;
        if (*c.usage)
            o << " " << c.usage;
        o << "\n      " << c.summary << "\n";
    }
    o << "\nThe settings store is the user's; ZETTARY_SETTINGS_FILE names another file.\n";
    return 0;
}
} // namespace ZTCliCommands

int main(int argc, char **argv)
{
    // Pictures and fonts need a GUI application object; without a display the
    // offscreen platform serves.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Scripts often run without a session; give Qt a private runtime folder so it
    // does not warn on every call.
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        const QByteArray runtime = QDir::tempPath().toUtf8() + "/zettary-runtime-" + QByteArray::number(getuid());
        QDir().mkpath(QString::fromUtf8(runtime));
        QFile::setPermissions(QString::fromUtf8(runtime), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                              QFileDevice::ExeOwner);
        qputenv("XDG_RUNTIME_DIR", runtime);
    }
    QGuiApplication app(argc, argv);
    app.setApplicationName(QStringLiteral("Zettary"));
    app.setOrganizationName(QStringLiteral("Zettary"));
    ZTPageGetter::install();

    QStringList args = app.arguments().mid(1);
    if (args.isEmpty() || args.first() == QLatin1String("--help") || args.first() == QLatin1String("-h"))
        return ZTCliCommands::help({});
    const QString name = args.takeFirst();
    for (int i = 0; i < ZTCli::commandCount(); ++i) {
        const ZTCli::Command &c = ZTCli::commands()[i];
        if (name == QLatin1String(c.name)) {
            if (args.contains(QStringLiteral("--help"))) {
                QTextStream(stdout) << "usage: zettary-cli " << c.name << " " << c.usage << "\n" << c.summary << "\n";
                return 0;
            }
            return c.run(args);
        }
    }
    return ZTCli::fail(QStringLiteral("unknown command \"%1\" (see zettary-cli --help)").arg(name));
}
