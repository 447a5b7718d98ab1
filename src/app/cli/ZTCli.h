#pragma once

#include <QJsonValue>
#include <QString>
#include <QStringList>

// Shared plumbing of zettary-cli's commands.
namespace ZTCli {

struct Command {
    const char *name;
    const char *usage;   // arguments, as shown by --help
    const char *summary; // one line
    int (*run)(const QStringList &args);
};

// Every command, in the order --help lists them.
const Command *commands();
int commandCount();

// Prints "zettary-cli: <message>" on stderr and returns the exit code to use (2).
int fail(const QString &message);
void out(const QString &text);      // stdout, with a newline
void printJson(const QJsonValue &value);

// Reads "--name value" or "--name=value" out of args (removing them); returns
// false if the option is absent. Repeated options are gathered by takeOptions.
bool takeOption(QStringList &args, const QString &name, QString *value);
QStringList takeOptions(QStringList &args, const QString &name);
bool takeFlag(QStringList &args, const QString &name);

} // namespace ZTCli
