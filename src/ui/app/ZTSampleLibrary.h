#pragma once

#include "model/ZTMediaKind.h"

#include <QList>
#include <QString>
#include <QVariantMap>

// The sample libraries: real public-domain titles bundled as JSON, made into
// a library package on request.
namespace ZTSampleLibrary {
// The titles of a kind, as item dictionaries.
QList<QVariantMap> entries(ZTMediaKind kind);
// Creates the package at `path` holding the kind's titles, `count` items at
// most (cycling through the titles, with a volume number, when more are asked
// for than there are). An existing package is left as it is.
bool create(const QString &path, ZTMediaKind kind, int count = -1, QString *error = nullptr);
// The sample package of a kind in the user's data folder, created on first use.
QString ensureInDataFolder(ZTMediaKind kind, QString *error = nullptr);
} // namespace ZTSampleLibrary
