#pragma once

#include <QString>

// The sites whose URLs carry codes. When the lookup site table arrives these
// should be read from it; until then they live here, in one place.
namespace ZTCodeSites {
inline QString submarinoDomain()
{
    return QStringLiteral("submarino.com.br");
}
inline QString submarinoWebHost()
{
    return QStringLiteral("www.submarino.com.br");
}
inline QString submarinoImageHost()
{
    return QStringLiteral("img.submarino.com.br");
}
inline QString comicBookDBDomain()
{
    return QStringLiteral("comicbookdb.com");
}
inline QString grandComicsDatabaseDomain()
{
    return QStringLiteral("comics.org");
}
} // namespace ZTCodeSites
