#pragma once

#include <QString>

// The four kinds of library. A library holds items of exactly one kind.
enum class ZTMediaKind { Book = 0, Album = 1, Movie = 2, Comic = 3 };

namespace ZTMediaKinds {
// "Book", "Album", "Movie", "Comic": the item entity is "ZT" + itemType.
QString itemType(ZTMediaKind kind);
QString itemEntityName(ZTMediaKind kind);
// Package extension without the dot: "ztbooklib", "ztmusiclib", "ztmovielib", "ztcomiclib".
QString packageExtension(ZTMediaKind kind);
// The command-line and file names of a kind: "book", "music", "movie", "comic".
QString cliName(ZTMediaKind kind);
bool fromCliName(const QString &name, ZTMediaKind *kind);
bool fromPackageExtension(const QString &extension, ZTMediaKind *kind);
bool fromItemType(const QString &itemType, ZTMediaKind *kind);
inline constexpr ZTMediaKind all[] = {ZTMediaKind::Book, ZTMediaKind::Album, ZTMediaKind::Movie, ZTMediaKind::Comic};
} // namespace ZTMediaKinds
