#include "app/cli/ZTCli.h"
#include "library/ZTDocument.h"

namespace ZTCliCommands {

// Writes the store every new library starts from; the build ships its output as
// resources/data.sql.
int makeTemplate(const QStringList &args)
{
    if (args.size() != 1)
        return ZTCli::fail(QStringLiteral("make-template takes one OUT path"));
    QString error;
    if (!ZTDocument::writeTemplateStore(args.first(), &error))
        return ZTCli::fail(error);
    return 0;
}

} // namespace ZTCliCommands
