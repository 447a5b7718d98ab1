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
int makeTemplate(const QStringList &args);
int code(const QStringList &args);
int scan(const QStringList &args);
int importItems(const QStringList &args);
int exportItems(const QStringList &args);
int lookup(const QStringList &args);
int lists(const QStringList &args);
int listAdd(const QStringList &args);
int smartAdd(const QStringList &args);
int listShow(const QStringList &args);
int items(const QStringList &args);
int stats(const QStringList &args);
int columns(const QStringList &args);
int duplicates(const QStringList &args);
int unlisted(const QStringList &args);
int lend(const QStringList &args);
int returnItem(const QStringList &args);
int share(const QStringList &args);
int shareExport(const QStringList &args);
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
    {"make-template", "OUT", "write the empty store new libraries start from (for packagers)",
     &ZTCliCommands::makeTemplate},
    {"code", "TEXT [--kind book|music|movie|comic]",
     "print the code a library of the kind (default book) finds in TEXT as JSON;\n"
     "      exit 1 with a message when TEXT holds no code",
     &ZTCliCommands::code},
    {"scan", "IMAGE... [--json]", "read the EAN-13 barcode in each picture", &ZTCliCommands::scan},
    {"import", "PATH FILE [--map 'Column=Attribute']... [--split 'Column=;']... [--date 'Column=INDEX']...",
     "add one item per line of a tab- or comma-delimited UTF-8 file; prints the column mapping.\n"
     "      Without --map the mapping is guessed from the column titles; with --map only the\n"
     "      mapped columns are imported (Attribute is a title such as Title, Authors, Date Read).\n"
     "      --split gives the delimiter inside a multiple-value cell; --date the date format:\n"
     "      0 MM/DD/YYYY, 1 DD/MM/YYYY, 2 YYYY/MM/DD, 3 YYYY/DD/MM, 4 MM-DD-YYYY,\n"
     "      5 DD-MM-YYYY, 6 YYYY-MM-DD, 7 YYYY-DD-MM (default 0; a bare year or month and\n"
     "      year also reads). A file that is not UTF-8, holds a NUL byte or has a broken\n"
     "      header is refused and nothing is added",
     &ZTCliCommands::importItems},
    {"export", "PATH --format tab|csv|xml|bibtex|mla [--list NAME]... [--keys k1,k2,...]\n"
     "      [--multiple separate|single] [--delimiter TEXT] OUT|-",
     "write the library (or the items of the named lists) to OUT, or to standard output for -.\n"
     "      tab and csv write the --keys columns (default all); several values go in numbered\n"
     "      columns (separate) or in one column joined by --delimiter (single, default \"; \").\n"
     "      bibtex and mla are for book libraries; mla writes RTF to a .rtf file, HTML to\n"
     "      .html, plain text otherwise",
     &ZTCliCommands::exportItems},
    {"lookup", "PATH CODE... [--add]",
     "look codes up with the library's active sites and print each merged item as JSON;\n"
     "      --add also adds the items (with their covers) to the library",
     &ZTCliCommands::lookup},
    {"lists", "PATH [--json]", "print each list's row, kind (library, list, smart), item count and name",
     &ZTCliCommands::lists},
    {"list-add", "PATH NAME [OID...]", "make a list holding the items in the order given", &ZTCliCommands::listAdd},
    {"smart-add", "PATH NAME --all|--any --rule 'TITLE|OPERATOR|VALUE'...",
     "make a smart list; VALUE is FROM..TO for a range, '5 days' for a period, dates\n"
     "      MM-dd-yyyy or yyyy-MM-dd, none for yes/no rules ('Signed|is set')",
     &ZTCliCommands::smartAdd},
    {"list-show", "PATH NAME [--json]", "print a list's description and its member oids", &ZTCliCommands::listShow},
    {"items", "PATH [--list NAME] [--search TEXT] [--filter 'Label=Value'] [--sort KEY[:desc],...] [--columns KEY,...] [--json]",
     "print the items a window would show (oid and columns, tab-separated)", &ZTCliCommands::items},
    {"stats", "PATH [--list NAME]", "print the statistics line of the library or a list", &ZTCliCommands::stats},
    {"columns", "PATH", "list the column labels and keys of the library's kind", &ZTCliCommands::columns},
    {"duplicates", "PATH", "make a list \"Duplicates\" of items that share a code", &ZTCliCommands::duplicates},
    {"unlisted", "PATH", "make a list \"Unlisted\" of items that are in no list", &ZTCliCommands::unlisted},
    {"lend", "PATH OID --to NAME [--email E] [--due YYYY-MM-DD]", "record a loan", &ZTCliCommands::lend},
    {"return", "PATH OID", "record that a lent item came back", &ZTCliCommands::returnItem},
    {"share", "PATH... [--port N]",
     "serve the libraries to the handheld companion until interrupted (Ctrl-C); announced as\n"
     "      _zettary2._tcp. when an Avahi daemon runs; packages are kept in the cache folder",
     &ZTCliCommands::share},
    {"share-export", "PATH OUT.zip", "write the package the handheld companion downloads for a library",
     &ZTCliCommands::shareExport},
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
