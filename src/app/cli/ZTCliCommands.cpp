#include "app/cli/ZTCli.h"

// One table of every command. Each command's code lives in its own file.
namespace ZTCliCommands {
int help(const QStringList &args);
int code(const QStringList &args);
} // namespace ZTCliCommands

namespace {
const ZTCli::Command s_commands[] = {
    {"help", "", "show this list", &ZTCliCommands::help},
    {"code", "TEXT [--kind book|music|movie|comic]", "print the code found in TEXT (kind: book if not given) as JSON; exit 1 if none", &ZTCliCommands::code},
};
} // namespace

const ZTCli::Command *ZTCli::commands() { return s_commands; }
int ZTCli::commandCount() { return int(sizeof(s_commands) / sizeof(s_commands[0])); }
