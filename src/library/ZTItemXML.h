#pragma once

#include "model/ZTMediaKind.h"

#include <QString>

class ZTItem;

// The XML form of an item: its singular tag around one element per attribute
// that has a value, indented by five blanks. Lists nest one element per value;
// people with roles carry the role as an attribute. Dates are ISO 8601 and
// only as precise as the item knows them ("1999", "1999-05", "1999-05-17").
namespace ZTItemXML {

// "books", "albums", "movies", "comics": the root element of an XML export.
QString xmlTagNamePlural(ZTMediaKind kind);
// Text made safe for XML 1.0 content and attribute values: markup characters
// escaped, characters XML cannot carry (most control characters) dropped.
QString escape(const QString &text);

QString xmlData(const ZTItem &item);
// "<book>\n" + xmlData + "</book>\n".
QString formatXML(const ZTItem &item);

} // namespace ZTItemXML
