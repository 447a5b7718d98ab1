#pragma once

#include <QByteArray>
#include <QString>

// The classic Mac OS Roman character set. Old Mac pages and a few numeric
// references on them (&#130; for "Ç") use its byte values, so we carry the
// table ourselves rather than depend on a converter being installed.
namespace ZTMacRoman {

// The character a Mac OS Roman byte stands for.
QChar character(unsigned char byte);
// Bytes for text; false when a character has no Mac OS Roman byte.
bool encode(const QString &text, QByteArray *bytes);
QString decode(const QByteArray &bytes);

} // namespace ZTMacRoman
