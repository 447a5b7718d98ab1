#pragma once

#include <QtGlobal>

class ZTLineSegment;

// An axis-aligned rectangle with the desktop's usual rules: a rectangle with no
// width or no height is empty, intersects nothing and vanishes in a union.
class ZTRectangle {
public:
    ZTRectangle() = default;
    // Takes whole numbers: every rectangle made from a scan line sits on pixels.
    ZTRectangle(qint64 x, qint64 y, qint64 width, qint64 height);
    explicit ZTRectangle(const ZTLineSegment &segment);

    double x() const { return m_x; }
    double y() const { return m_y; }
    double width() const { return m_width; }
    double height() const { return m_height; }

    bool isEmpty() const { return !(m_width > 0) || !(m_height > 0); }
    bool intersects(const ZTRectangle &other) const;
    // The smallest rectangle holding both, cut to whole numbers.
    ZTRectangle unionWithRectangle(const ZTRectangle &other) const;

    bool operator==(const ZTRectangle &other) const = default;

private:
    double m_x = 0;
    double m_y = 0;
    double m_width = 0;
    double m_height = 0;
};
