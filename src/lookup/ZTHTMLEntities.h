#pragma once

#include <QStringView>

#include <span>

// One named character reference.
struct ZTHTMLEntity {
    const char *name;
    char32_t code;       // the character a browser shows
    char32_t decodeCode; // what decodeHTML turns it into; 0 when it leaves it alone
};

namespace ZTHTMLEntities {
std::span<const ZTHTMLEntity> all();
// The character a browser shows for a name, 0 for an unknown one.
char32_t codePoint(QStringView name);
} // namespace ZTHTMLEntities
