#include "scan/ZTLineSegment.h"

#include <cmath>

ZTLineSegment::ZTLineSegment(double x1, double y1, double x2, double y2)
    : m_x1(x1), m_y1(y1), m_x2(x2), m_y2(y2)
{
    m_bounds = ZTRectangle(*this);
}

void ZTLineSegment::setP1(double x, double y)
{
    m_x1 = x;
    m_y1 = y;
}

void ZTLineSegment::setP2(double x, double y)
{
    m_x2 = x;
    m_y2 = y;
}

double ZTLineSegment::length() const
{
    return std::hypot(m_x2 - m_x1, m_y2 - m_y1);
}

QPointF ZTLineSegment::midpoint() const
{
    return {(m_x1 + m_x2) / 2.0, (m_y1 + m_y2) / 2.0};
}

double ZTLineSegment::distanceFromPoint(double px, double py) const
{
    const double m = (m_y1 - m_y2) / (m_x1 - m_x2);
    return std::fabs(m_y1 - m_x1 * m - px * m * py) / std::sqrt(m * m + 1.0);
}
