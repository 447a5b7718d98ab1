#pragma once

#include "model/ZTMediaKind.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

// What the handheld companion shows of an item of each kind: the keys of its
// detail lines, which of them take a whole line, which hold several values
// (with the tag of one value), and the line under the title in lists.
namespace ZTSharingLayout {

QString formatiPhoneSubtitleKey(ZTMediaKind kind);
QStringList formatiPhoneKeys(ZTMediaKind kind);
QStringList formatiPhoneKeysWide(ZTMediaKind kind);
// formatiPhoneKeys less the wide keys.
QStringList formatiPhoneKeysLine(ZTMediaKind kind);
QVariantMap formatiPhoneKeysMultiple(ZTMediaKind kind);
// The "layoutDict.xml" dictionary of the package.
QVariantMap layoutDictionary(ZTMediaKind kind);

} // namespace ZTSharingLayout
