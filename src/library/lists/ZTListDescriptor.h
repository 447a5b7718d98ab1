#pragma once

#include <QString>

class ZTDocument;
class ZTList;

namespace ZTListDescriptor {
// The list's tool tip: how many items it holds, and for a smart list its rules
// in words.
QString descriptorForDocument(const ZTList &list, const ZTDocument &document);
} // namespace ZTListDescriptor
