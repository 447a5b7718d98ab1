#pragma once

#include <QByteArray>
#include <QNetworkRequest>
#include <QString>
#include <QUrl>

// Whether base64 input is broken into lines.
enum class ZTBase64Lines { Unbroken, Broken };

// Helpers on bytes, URLs and requests used by the fetchers.
namespace ZTData {

// Standard base64 in one line, through OpenSSL's base64 filter.
QString base64EncodedString(const QByteArray &data);
// Bytes from base64; input that stops being base64 ends the result there.
QByteArray decodeBase64WithNewLines(const QByteArray &base64, ZTBase64Lines lines);
// UTF-8, or ASCII when the bytes are no valid UTF-8.
QString htmlString(const QByteArray &data);

// Raw digests (16 and 20 bytes) of the published algorithms, from libcrypto.
QByteArray md5(const QByteArray &data);
QByteArray sha1(const QByteArray &data);

// The same URL over https when its scheme is http (in any case).
QUrl ensureSecure(const QUrl &url);

// Some sites refuse Qt's default agent, so every request names the fixed
// client text all sites have always seen from this program.
inline constexpr char s_userAgent[] = "CFNetwork/811.5.4 Darwin/16.7.0 (x86_64)";
QNetworkRequest updatedHeaderRequest(const QNetworkRequest &request);

} // namespace ZTData
