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
// The row of a name (case matters), or null.
const ZTHTMLEntity *find(QStringView name);
} // namespace ZTHTMLEntities
