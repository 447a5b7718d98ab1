#pragma once

#include "scan/ZTRectangle.h"

#include <QPointF>

// The stretch of a fitted edge line that scan lines actually covered. Its bounds
// are taken once, when the segment is made; moving an end later leaves them be,
// because results compare the bounds of the edges as they were first found.
class ZTLineSegment {
public:
    ZTLineSegment() = default;
    ZTLineSegment(double x1, double y1, double x2, double y2);

    double x1() const { return m_x1; }
    double y1() const { return m_y1; }
    double x2() const { return m_x2; }
    double y2() const { return m_y2; }
    QPointF p1() const { return {m_x1, m_y1}; }
    QPointF p2() const { return {m_x2, m_y2}; }
    void setP1(double x, double y);
    void setP2(double x, double y);
    const ZTRectangle &bounds() const { return m_bounds; }

    double length() const;
    QPointF midpoint() const;
    // Kept exactly as the reader has always computed it, odd product of px, m
    // and py included, because which edges count as "near" depends on it.
    double distanceFromPoint(double px, double py) const;

private:
    double m_x1 = 0;
    double m_y1 = 0;
    double m_x2 = 0;
    double m_y2 = 0;
    ZTRectangle m_bounds;
};
