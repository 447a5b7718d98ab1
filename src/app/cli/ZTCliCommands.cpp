#include "app/cli/ZTCli.h"

// One table of every command. Each command's code lives in its own file.
namespace ZTCliCommands {
int help(const QStringList &args);
int newLibrary(const QStringList &args);
int info(const QStringList &args);
int add(const QStringList &args);
int get(const QStringList &args);
int set(const QStringList &args);
int remove(const QStringList &args);
int cover(const QStringList &args);
int code(const QStringList &args);
int scan(const QStringList &args);
int items(const QStringList &args);
int stats(const QStringList &args);
int columns(const QStringList &args);
int duplicates(const QStringList &args);
int unlisted(const QStringList &args);
int lend(const QStringList &args);
int returnItem(const QStringList &args);
} // namespace ZTCliCommands

namespace {
const ZTCli::Command s_commands[] = {
    {"help", "", "show this list", &ZTCliCommands::help},
    {"new", "PATH --kind book|music|movie|comic",
     "create an empty library (the package extension follows the kind)", &ZTCliCommands::newLibrary},
    {"info", "PATH [--json]", "print the library's kind, item count and number of lists", &ZTCliCommands::info},
    {"add", "PATH FILE|-",
     "add items from their dictionary form as JSON (one object or an array); prints the new oids",
     &ZTCliCommands::add},
    {"get", "PATH OID", "print an item's dictionary form as JSON", &ZTCliCommands::get},
    {"set", "PATH OID KEY=VALUE...",
     "change attributes (VALUE is JSON where it reads as such: [\"a\",\"b\"], 12, true)", &ZTCliCommands::set},
    {"remove", "PATH OID...", "remove items from the library and from every list", &ZTCliCommands::remove},
    {"cover", "PATH OID IMAGEFILE", "give an item a cover picture", &ZTCliCommands::cover},
    {"code", "TEXT [--kind book|music|movie|comic]",
     "print the code a library of the kind (default book) finds in TEXT as JSON;\n"
     "      exit 1 with a message when TEXT holds no code",
     &ZTCliCommands::code},
    {"scan", "IMAGE... [--json]", "read the EAN-13 barcode in each picture", &ZTCliCommands::scan},
    {"items", "PATH [--list NAME] [--search TEXT] [--filter 'Label=Value'] [--sort KEY[:desc],...] [--columns KEY,...] [--json]",
     "print the items a window would show (oid and columns, tab-separated)", &ZTCliCommands::items},
    {"stats", "PATH [--list NAME]", "print the statistics line of the library or a list", &ZTCliCommands::stats},
    {"columns", "PATH", "list the column labels and keys of the library's kind", &ZTCliCommands::columns},
    {"duplicates", "PATH", "make a list \"Duplicates\" of items that share a code", &ZTCliCommands::duplicates},
    {"unlisted", "PATH", "make a list \"Unlisted\" of items that are in no list", &ZTCliCommands::unlisted},
    {"lend", "PATH OID --to NAME [--email E] [--due YYYY-MM-DD]", "record a loan", &ZTCliCommands::lend},
    {"return", "PATH OID", "record that a lent item came back", &ZTCliCommands::returnItem},
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
