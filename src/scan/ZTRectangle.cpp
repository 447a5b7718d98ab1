#include "scan/ZTRectangle.h"

#include "scan/ZTLineSegment.h"
#include "scan/ZTScanMath.h"

#include <algorithm>
#include <cmath>

ZTRectangle::ZTRectangle(qint64 x, qint64 y, qint64 width, qint64 height)
    : m_x(double(x)), m_y(double(y)), m_width(double(width)), m_height(double(height))
{
}

ZTRectangle::ZTRectangle(const ZTLineSegment &segment)
    : m_x(std::min(segment.x1(), segment.x2())), m_y(std::min(segment.y1(), segment.y2())),
      m_width(std::fabs(segment.x2() - segment.x1())), m_height(std::fabs(segment.y2() - segment.y1()))
{
}

bool ZTRectangle::intersects(const ZTRectangle &other) const
{
    if (isEmpty() || other.isEmpty())
        return false;
    return !(m_x + m_width <= other.m_x || other.m_x + other.m_width <= m_x || m_y + m_height <= other.m_y ||
             other.m_y + other.m_height <= m_y);
}

ZTRectangle ZTRectangle::unionWithRectangle(const ZTRectangle &other) const
{
    using ZTScanMath::whole;
    if (isEmpty())
        return other.isEmpty() ? ZTRectangle()
                               : ZTRectangle(whole(other.m_x), whole(other.m_y), whole(other.m_width),
                                             whole(other.m_height));
    if (other.isEmpty())
        return ZTRectangle(whole(m_x), whole(m_y), whole(m_width), whole(m_height));
    const double left = std::min(m_x, other.m_x);
    const double top = std::min(m_y, other.m_y);
    const double right = std::max(m_x + m_width, other.m_x + other.m_width);
    const double bottom = std::max(m_y + m_height, other.m_y + other.m_height);
    return ZTRectangle(whole(left), whole(top), whole(right - left), whole(bottom - top));
}
