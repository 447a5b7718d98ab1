#include "app/cli/ZTCli.h"

#include "base/ZTStringExtras.h"
#include "model/ZTCodeFormatter.h"
#include "model/ZTMediaKind.h"

#include <QJsonObject>
#include <QTextStream>

namespace ZTCliCommands {

// Prints the code dictionary that a library of the kind makes of TEXT. Exit 0
// with the dictionary, 1 when the text holds no code, 2 on a bad argument.
int code(const QStringList &arguments)
{
    QStringList args = arguments;
    QString kindName = QStringLiteral("book");
    const bool kindGiven = args.contains(QLatin1String("--kind"));
    if (!ZTCli::takeOption(args, QStringLiteral("--kind"), &kindName) && kindGiven)
        return ZTCli::fail(QStringLiteral("--kind needs a value: book, music, movie or comic"));
    ZTMediaKind kind;
    if (!ZTMediaKinds::fromCliName(kindName, &kind))
        return ZTCli::fail(QStringLiteral("unknown kind \"%1\" (book, music, movie or comic)").arg(kindName));
    if (args.size() != 1)
        return ZTCli::fail(QStringLiteral("code takes one TEXT argument (quote it if it holds blanks)"));

    // The program counts ASINs as ISBNs from the first library it opens on.
    ZTCodeFormatter::setIsbnValidationAllowsASINs(true);
    QString text = args.first();
    if (ZTText::isValidEncodedCueCatCode(text))
        text = ZTText::decodedValueFromValidEncodedCueCatCode(text);

    const QVariantMap codes = ZTCodeFormatter::codeDictionaryForRawCode(kind, text);
    if (codes.isEmpty()) {
        QTextStream(stderr) << "zettary-cli: \"" << args.first() << "\" is no " << kindName << " code\n";
        return 1;
    }
    ZTCli::printJson(QJsonObject::fromVariantMap(codes));
    return 0;
}

} // namespace ZTCliCommands
