#pragma once

#include "model/ZTMediaKind.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QVariantMap>

#include <memory>

class ZTDocument;
class ZTItem;

// Opening, saving and converting for the commands that work on a library.
namespace ZTCliLibrary {

// Opens the library at path; on failure prints one line and returns null.
std::unique_ptr<ZTDocument> open(const QString &path);
// Saves; on failure prints one line and returns false.
bool save(ZTDocument &document);

// JSON forms: dates as "YYYY-MM-DD" in local time, pictures left out.
QJsonValue toJson(const QVariant &value);
QJsonObject itemToJson(const ZTItem &item);
// A JSON value as the dictionary form takes it.
QVariant fromJson(const QJsonValue &value);

} // namespace ZTCliLibrary
