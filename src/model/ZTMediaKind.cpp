#include "model/ZTMediaKind.h"

namespace {
struct KindNames {
    const char *itemType;
    const char *extension;
    const char *cli;
};
constexpr KindNames s_names[] = {
    {"Book", "ztbooklib", "book"},
    {"Album", "ztmusiclib", "music"},
    {"Movie", "ztmovielib", "movie"},
    {"Comic", "ztcomiclib", "comic"},
};
const KindNames &names(ZTMediaKind kind) { return s_names[int(kind)]; }
} // namespace

QString ZTMediaKinds::itemType(ZTMediaKind kind) { return QString::fromLatin1(names(kind).itemType); }
QString ZTMediaKinds::itemEntityName(ZTMediaKind kind) { return QStringLiteral("ZT") + itemType(kind); }
QString ZTMediaKinds::packageExtension(ZTMediaKind kind) { return QString::fromLatin1(names(kind).extension); }
QString ZTMediaKinds::cliName(ZTMediaKind kind) { return QString::fromLatin1(names(kind).cli); }

static bool findKind(const QString &text, const char *KindNames::*field, ZTMediaKind *kind)
{
    for (ZTMediaKind k : ZTMediaKinds::all) {
        if (text == QLatin1String(s_names[int(k)].*field)) {
            if (kind)
                *kind = k;
            return true;
        }
    }
    return false;
}

bool ZTMediaKinds::fromCliName(const QString &name, ZTMediaKind *kind)
{
    return findKind(name, &KindNames::cli, kind);
}
bool ZTMediaKinds::fromPackageExtension(const QString &extension, ZTMediaKind *kind)
{
    return findKind(extension, &KindNames::extension, kind);
}
bool ZTMediaKinds::fromItemType(const QString &itemType, ZTMediaKind *kind)
{
    return findKind(itemType, &KindNames::itemType, kind);
}
