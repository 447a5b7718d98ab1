#pragma once

#include "library/lists/ZTListDrop.h"

#include <QString>
#include <QStringList>

class QMimeData;
class ZTDocument;

// The drag contents of a library window. The two entries travel as an ASCII
// property list under the program's pasteboard type; the source document is
// found again among the open libraries by its session identifier.
namespace ZTDragData {
QString mimeType();
QMimeData *itemsDrag(const ZTDocument &document, const QStringList &oids);
QMimeData *listDrag(const ZTDocument &document, int row);
// Fills `drag` from the mime data; false when it holds nothing the windows read.
bool read(const QMimeData *data, ZTDragInfo *drag);
// Open libraries announce themselves so that drags between them resolve.
void registerDocument(const ZTDocument *document);
void unregisterDocument(const ZTDocument *document);
} // namespace ZTDragData
