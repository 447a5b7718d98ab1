#pragma once

#include <QString>

// Settings a library reads when it opens and whenever they change.
namespace ZTDocumentDefaults {
// "/ref=nosim/TAG" for a non-empty associate tag, else "".
QString associateTagURLSuffix();
// The stored default country; "UK" is read as "GB", nothing as "US".
QString defaultLocaleCode();
// The stored default currency; nothing reads as "USD".
QString defaultCurrencyCode();
bool shouldFetchCoverImages();
bool shouldSpeakTitles();
} // namespace ZTDocumentDefaults
