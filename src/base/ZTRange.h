#pragma once

#include <QString>

#include <limits>

// A stretch of a text, counted in UTF-16 units as QString counts them. A range
// that was not found has the largest signed value as its location, so that
// code ported from range arithmetic keeps comparing against one sentinel.
struct ZTRange {
    static constexpr qsizetype NotFound = std::numeric_limits<qsizetype>::max();

    qsizetype location = NotFound;
    qsizetype length = 0;

    constexpr ZTRange() = default;
    constexpr ZTRange(qsizetype location, qsizetype length) : location(location), length(length) {}
    static constexpr ZTRange notFound() { return ZTRange(); }
    // Every position of any text.
    static constexpr ZTRange all() { return ZTRange(0, NotFound); }

    constexpr bool isFound() const { return location != NotFound; }
    constexpr qsizetype end() const { return location + length; }
    bool operator==(const ZTRange &) const = default;

    // The text the range covers; a null string when the range was not found or
    // does not lie inside the text.
    QString of(const QString &text) const
    {
        if (!isFound() || location < 0 || length < 0 || location > text.size() ||
            length > text.size() - location)
            return QString();
        return text.mid(location, length);
    }
};
