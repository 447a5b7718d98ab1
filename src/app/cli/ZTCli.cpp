#include "app/cli/ZTCli.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

#include <cstdio>

int ZTCli::fail(const QString &message)
{
    QTextStream err(stderr);
    err << "zettary-cli: " << message << "\n";
    return 2;
}

void ZTCli::out(const QString &text)
{
    QTextStream o(stdout);
    o << text << "\n";
}

void ZTCli::printJson(const QJsonValue &value)
{
    QByteArray bytes;
    if (value.isObject())
        bytes = QJsonDocument(value.toObject()).toJson(QJsonDocument::Indented);
    else if (value.isArray())
        bytes = QJsonDocument(value.toArray()).toJson(QJsonDocument::Indented);
    else {
        QJsonArray wrap{value};
        bytes = QJsonDocument(wrap).toJson(QJsonDocument::Compact);
        bytes = bytes.mid(1, bytes.size() - 2) + '\n';
    }
    fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    fflush(stdout);
}

bool ZTCli::takeOption(QStringList &args, const QString &name, QString *value)
{
    const QString prefix = name + QLatin1Char('=');
    for (int i = 0; i < args.size(); ++i) {
        if (args[i] == name) {
            if (i + 1 >= args.size())
                return false;
            if (value)
                *value = args[i + 1];
            args.removeAt(i + 1);
            args.removeAt(i);
            return true;
        }
        if (args[i].startsWith(prefix)) {
            if (value)
                *value = args[i].mid(prefix.size());
            args.removeAt(i);
            return true;
        }
    }
    return false;
}

QStringList ZTCli::takeOptions(QStringList &args, const QString &name)
{
    QStringList values;
    QString v;
    while (takeOption(args, name, &v))
        values << v;
    return values;
}

bool ZTCli::takeFlag(QStringList &args, const QString &name)
{
    return args.removeAll(name) > 0;
}
