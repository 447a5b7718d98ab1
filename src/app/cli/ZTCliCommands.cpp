#include "app/cli/ZTCli.h"

// One table of every command. Each command's code lives in its own file.
namespace ZTCliCommands {
int help(const QStringList &args);
int code(const QStringList &args);
int scan(const QStringList &args);
} // namespace ZTCliCommands

namespace {
const ZTCli::Command s_commands[] = {
    {"help", "", "show this list", &ZTCliCommands::help},
    {"code", "TEXT [--kind book|music|movie|comic]",
     "print the code a library of the kind (default book) finds in TEXT as JSON;\n"
     "      exit 1 with a message when TEXT holds no code",
     &ZTCliCommands::code},
    {"scan", "IMAGE... [--json]", "read the EAN-13 barcode in each picture", &ZTCliCommands::scan},
};
} // namespace

const ZTCli::Command *ZTCli::commands()
{
    return s_commands;
}
int ZTCli::commandCount()
{
    return int(sizeof(s_commands) / sizeof(s_commands[0]));
}
