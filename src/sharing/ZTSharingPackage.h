#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

class ZTDocument;
class ZTItem;

// Writes the package the handheld companion downloads: property lists of the
// library, its lists and its items, one XML file per item, the covers and a
// search index, all in one folder; then zips that folder.
namespace ZTSharingPackage {

// Writes the package of `document`, opened from a copy of `libraryPath`, into `packageFolder` (which must
// exist). Covers are copied from `imagesFolder`, the original library's "images" folder, since the document
// may be a copy without pictures. Returns the package's manifest. A file that cannot be written is left out.
QStringList writePackage(const ZTDocument &document, const QString &libraryPath, qint64 nodeID,
                         const QString &packageFolder, const QString &imagesFolder);

// The "info.xml" dictionary of a library.
QVariantMap infoDictionary(const ZTDocument &document, const QString &libraryPath, qint64 nodeID);

// The kind name of a library file by its suffix ("book", "music", "movie",
// "comic"), or empty when the suffix names no kind.
QString typeForPath(const QString &libraryPath);

// The item's XML with its cover's file name: what "items/<oid>.xml" holds
// after the XML declaration.
QString formatXMLWithImage(const ZTItem &item);

// Every regular file below `root`, as paths relative to the folder of `root`
// ("<id>/items.xml" …), zipped at the highest compression into `zipPath`.
bool zipFolder(const QString &root, const QString &zipPath, QString *error = nullptr);

} // namespace ZTSharingPackage
