#include "scan/ZTScanEdge.h"

#include "scan/ZTImageManager.h"
#include "scan/ZTScanEdgeDelegate.h"
#include "scan/ZTScanMath.h"

#include <algorithm>
#include <cmath>

using ZTScanMath::whole;

namespace {
// Least number of scan lines an edge must rest on; the validator with index 9
// asks for more.
qint64 leastScanLines(qint64 validatorIndex)
{
    return validatorIndex == 9 ? 8 : 3;
}

// Number of window elements behind the guard that the probe learns and checks.
constexpr int s_probeElements = 4;
} // namespace

ZTScanEdge::ZTScanEdge(qint64 scanAngle, qint64 val, const ZTRectangle &rectangle, bool isStartingEdge,
                       double dimension, qint64 runLength, qint64 threshold,
                       std::pmr::memory_resource *memory)
    : m_isStartingEdge(isStartingEdge), m_val(val), m_scanAngle(scanAngle), m_dimension(dimension),
      m_runLength(runLength), m_rectangleScans(memory), m_threshold(threshold)
{
    m_rectangleScans.reserve(16);
    handleRectangle(rectangle);
}

bool ZTScanEdge::isHorizontal() const
{
    return ZTScanMath::isHorizontalAngle(m_scanAngle);
}

QPointF ZTScanEdge::outerEndPoint(const ZTRectangle &r) const
{
    const double right = r.x() + r.width() - 1;
    const double bottom = r.y() + r.height() - 1;
    switch (m_scanAngle) {
    case 90:
        return m_isStartingEdge ? QPointF(r.x(), r.y()) : QPointF(right, r.y());
    case 270:
        return m_isStartingEdge ? QPointF(right, r.y()) : QPointF(r.x(), r.y());
    case 180:
        return m_isStartingEdge ? QPointF(r.x(), r.y()) : QPointF(r.x(), bottom);
    case 360:
        return m_isStartingEdge ? QPointF(r.x(), bottom) : QPointF(r.x(), r.y());
    default:
        return {r.x(), r.y()};
    }
}

double ZTScanEdge::outerLongCoordinate(const ZTRectangle &r) const
{
    const QPointF p = outerEndPoint(r);
    return isHorizontal() ? p.y() : p.x();
}

QPointF ZTScanEdge::pointOnLine(double longCoordinate) const
{
    const double across = lineValueAt(longCoordinate);
    return isHorizontal() ? QPointF(across, longCoordinate) : QPointF(longCoordinate, across);
}

void ZTScanEdge::addToSums(const ZTRectangle &rectangle, double sign)
{
    const QPointF p = outerEndPoint(rectangle);
    m_sumWidth += sign * p.x();
    m_sumHeight += sign * p.y();
    m_sumArea += sign * p.x() * p.y();
    m_sumWidthSquared += sign * p.x() * p.x();
    m_sumHeightSquared += sign * p.y() * p.y();
    m_sumLongDimension += qint64(sign) * whole(isHorizontal() ? rectangle.width() : rectangle.height());
}

void ZTScanEdge::handleRectangle(const ZTRectangle &rectangle)
{
    addToSums(rectangle, 1.0);
    m_rectangleScans.push_back(rectangle);
}

qint64 ZTScanEdge::averageLongDimension() const
{
    if (m_storedAverageLongDimension != -1)
        return m_storedAverageLongDimension;
    if (m_rectangleScans.empty())
        return 0;
    return m_sumLongDimension / qint64(m_rectangleScans.size());
}

void ZTScanEdge::fitLine(double *slope, double *intercept) const
{
    // Least squares of the across coordinate on the long one: x on y for row
    // sweeps, y on x for column sweeps.
    const double n = double(m_rectangleScans.size());
    const double sx = m_sumWidth, sy = m_sumHeight, sxy = m_sumArea;
    if (isHorizontal()) {
        const double d = n * m_sumHeightSquared - sy * sy;
        *slope = (n * sxy - sx * sy) / d;
        *intercept = (sx * m_sumHeightSquared - sy * sxy) / d;
    } else {
        const double d = n * m_sumWidthSquared - sx * sx;
        *slope = (n * sxy - sx * sy) / d;
        *intercept = (sy * m_sumWidthSquared - sx * sxy) / d;
    }
}

bool ZTScanEdge::doesIntersectRectangle(const ZTRectangle &rectangle) const
{
    if (m_rectangleScans.empty())
        return false;
    const ZTRectangle &last = m_rectangleScans.back();
    const qint64 half = averageLongDimension() / 2;
    const bool horizontal = isHorizontal();
    const double offLine = horizontal ? rectangle.y() - last.y() : rectangle.x() - last.x();
    if (std::fabs(offLine) > double(half))
        return false;
    if (m_rectangleScans.size() == 1) {
        if (horizontal)
            return last.x() <= rectangle.x() + rectangle.width() - 1 &&
                   rectangle.x() <= last.x() + last.width() - 1;
        return last.y() <= rectangle.y() + rectangle.height() - 1 &&
               rectangle.y() <= last.y() + last.height() - 1;
    }
    double slope = 0, intercept = 0;
    fitLine(&slope, &intercept);
    const QPointF own = outerEndPoint(rectangle);
    const qint64 predicted = whole(slope * (horizontal ? own.y() : own.x()) + intercept);
    const double actual = horizontal ? own.x() : own.y();
    return std::fabs(double(predicted) - actual) < double(half);
}

void ZTScanEdge::reset()
{
    m_storedAverageLongDimension = averageLongDimension();
    m_rectangleScans.clear();
    m_rectangleScans.shrink_to_fit();
}

bool ZTScanEdge::isValidWithValidatorIndex(qint64 validatorIndex)
{
    const qint64 least = leastScanLines(validatorIndex);
    const bool horizontal = isHorizontal();
    while (qint64(m_rectangleScans.size()) >= least) {
        fitLine(&m_slope, &m_intercept);
        double lowest = 0, highest = 0, worstResidual = -1;
        qsizetype worst = 0;
        for (qsizetype i = 0; i < qsizetype(m_rectangleScans.size()); ++i) {
            const QPointF p = outerEndPoint(m_rectangleScans[i]);
            const double along = horizontal ? p.y() : p.x();
            const double across = horizontal ? p.x() : p.y();
            const double residual = std::fabs(across - lineValueAt(along));
            if (i == 0 || along < lowest)
                lowest = along;
            if (i == 0 || along > highest)
                highest = along;
            if (residual > worstResidual || std::isnan(residual) && worstResidual < 0) {
                worstResidual = residual;
                worst = i;
            }
        }
        if (worstResidual <= double(averageLongDimension() / 4)) {
            const QPointF a = pointOnLine(lowest), b = pointOnLine(highest);
            m_lineSegment = ZTLineSegment(a.x(), a.y(), b.x(), b.y());
            return true;
        }
        addToSums(m_rectangleScans[worst], -1.0);
        m_rectangleScans.erase(m_rectangleScans.begin() + worst);
    }
    return false;
}

bool ZTScanEdge::isSimilarToScanEdge(const ZTScanEdge &other) const
{
    if (m_scanAngle != other.m_scanAngle)
        return false;
    const qint64 a = averageLongDimension(), b = other.averageLongDimension();
    if (!(b * 2 / 3 <= a && a <= b * 3 / 2))
        return false;
    if (!(std::fabs(m_slope - other.m_slope) <= 0.3))
        return false;
    const bool horizontal = isHorizontal();
    if (std::fabs(m_dimension) >= 0.0001 && std::fabs(other.m_dimension) >= 0.0001) {
        // The two outer ends of one code lie 9.5 window widths apart, give or
        // take one window.
        const double along = horizontal ? startingPoint().y() : startingPoint().x();
        const qint64 own = whole(lineValueAt(along));
        const double d = std::fabs(double(own) - other.lineValueAt(along));
        if (!(std::fabs(d - m_dimension * double(a)) <= double(a)))
            return false;
        if (!(std::fabs(d - other.m_dimension * double(b)) <= double(b)))
            return false;
    }
    // The foot of this segment's midpoint on the other line must fall within
    // the other segment, or within one window of its ends.
    const QPointF m = m_lineSegment.midpoint();
    const double s = m_slope, s2 = other.m_slope, c2 = other.m_intercept;
    double fx = 0, fy = 0;
    if (horizontal) {
        fy = double(whole((s * m.x() + m.y() - c2 * s) / (s2 * s + 1)));
        fx = double(whole(c2 + s2 * fy));
    } else {
        fx = double(whole((s * m.y() + m.x() - c2 * s) / (s2 * s + 1)));
        fy = double(whole(c2 + s2 * fx));
    }
    const ZTLineSegment &seg = other.m_lineSegment;
    const double length = seg.length();
    const double d1 = std::hypot(fx - seg.x1(), fy - seg.y1());
    const double d2 = std::hypot(fx - seg.x2(), fy - seg.y2());
    if (d1 < length && d2 < length)
        return true;
    return std::fabs(d1 - length) < double(a) || std::fabs(d2 - length) < double(a);
}

bool ZTScanEdge::isNearScanEdge(const ZTScanEdge &other) const
{
    if (this == &other)
        return true;
    const double r = double(m_storedAverageLongDimension) * 0.25;
    const ZTLineSegment &mine = m_lineSegment, &theirs = other.m_lineSegment;
    if (std::fabs(mine.x1() - theirs.x1()) < r && std::fabs(mine.y1() - theirs.y1()) < r &&
        std::fabs(mine.x2() - theirs.x2()) < r && std::fabs(mine.y2() - theirs.y2()) < r)
        return true;
    const double distances[] = {
        mine.distanceFromPoint(theirs.x1(), theirs.y1()), mine.distanceFromPoint(theirs.x2(), theirs.y2()),
        theirs.distanceFromPoint(mine.x1(), mine.y1()), theirs.distanceFromPoint(mine.x2(), mine.y2())};
    double smallest = distances[0];
    for (double d : distances)
        smallest = std::min(smallest, d);
    return smallest < r;
}

void ZTScanEdge::addScanEdgeToList(ZTScanEdge *edge)
{
    m_listOfScanEdges.push_back(edge);
}

bool ZTScanEdge::probeAt(ZTImageManager &imageManager, qint64 *barBand, qint64 threshold, qint64 t, qint64 dx,
                         qint64 dy, qint64 validationIndex, double *valArray, qint64 bsWidth) const
{
    const qint64 across = whole(lineValueAt(double(t)));
    const qint64 px = isHorizontal() ? across : t;
    const qint64 py = isHorizontal() ? t : across;
    const qint64 n =
        imageManager.numberOfBarsAndSpacesWithCol1(px - dx, py - dy, px + dx, py + dy, barBand, threshold);
    return isValidWithValidationIndex(validationIndex, valArray, n, barBand, bsWidth);
}

void ZTScanEdge::processWithImageManager(ZTImageManager &imageManager, qint64 *barBand, qint64 threshold)
{
    if (m_hasBeenProcessed)
        return;
    const double root = std::sqrt(m_slope * m_slope + 1.0);
    const double c = 1.0 / root, sn = m_slope / root;
    const double length = double(m_storedAverageLongDimension);
    const qint64 a = whole(length * c * c);
    const qint64 b = whole(length * c * sn);
    qint64 dx = 0, dy = 0;
    switch (m_scanAngle) {
    case 90:
        dx = a, dy = -b;
        break;
    case 180:
        dx = -b, dy = a;
        break;
    case 270:
        dx = -a, dy = b;
        break;
    case 360:
        dx = b, dy = -a;
        break;
    default:
        break;
    }
    if (!m_isStartingEdge)
        dx = -dx, dy = -dy;

    const bool horizontal = isHorizontal();
    const qint64 lo = whole(horizontal ? m_lineSegment.y1() : m_lineSegment.x1());
    const qint64 hi = whole(horizontal ? m_lineSegment.y2() : m_lineSegment.x2());

    // Learn what the first elements behind the guard look like on the lines
    // that found the edge, then lengthen the edge while probes still agree.
    double learned[s_probeElements] = {0, 0, 0, 0};
    qint64 good = 0;
    for (qint64 t = lo; t <= hi; ++t) {
        if (probeAt(imageManager, barBand, threshold, t, dx, dy, -1, learned, a))
            ++good;
    }
    if (good != 0) {
        for (double &v : learned)
            v /= double(good);
    }

    ZTScanEdgeDelegate down(lo, false);
    for (qint64 t = lo;; --t) {
        if (probeAt(imageManager, barBand, threshold, t, dx, dy, good, learned, a))
            down.shift(t);
        else if (down.x() - t > a / 2)
            break;
    }
    if (down.x() < lo) {
        const QPointF p = pointOnLine(double(down.x()));
        m_lineSegment.setP1(p.x(), p.y());
    }

    ZTScanEdgeDelegate up(hi, true);
    for (qint64 t = hi;; ++t) {
        if (probeAt(imageManager, barBand, threshold, t, dx, dy, good, learned, a))
            up.shift(t);
        else if (t - up.x() > a / 2)
            break;
    }
    if (up.x() > hi) {
        const QPointF p = pointOnLine(double(up.x()));
        m_lineSegment.setP2(p.x(), p.y());
    }
    m_hasBeenProcessed = true;
}

bool ZTScanEdge::isValidWithValidationIndex(qint64 validationIndex, double *valArray, qint64 bsCount,
                                            const qint64 *barBand, qint64 bsWidth) const
{
    // The middle of the probe must lie in a wide light run, the quiet zone,
    // with about one window's worth of elements behind it. The band is in
    // eighths of a pixel and the width in pixels; the thresholds are meant so.
    const qint64 reach = 3 * bsWidth / 4;
    qint64 sum = 0, i = 0;
    for (; i < bsCount; ++i) {
        sum += barBand[i];
        if (sum >= reach)
            break;
    }
    if (i >= bsCount || i % 2 == 0)
        return false;
    if (barBand[i] < bsWidth / 2)
        return false;
    const qint64 behind = bsCount - i - 1;
    if (behind < m_runLength - 2 || behind > m_runLength + 2)
        return false;
    if (validationIndex == 0)
        return true;
    if (validationIndex < 0) {
        for (int k = 0; k < s_probeElements; ++k)
            valArray[k] += double(barBand[i + 1 + k]);
        return true;
    }
    bool agrees = true;
    for (int k = 0; k < s_probeElements; ++k) {
        const double e = double(barBand[i + 1 + k]), v = valArray[k];
        if (std::fabs(e - 0.5 * v) > 2.0 && (e < 0.5 * v || e > 2.0 * v))
            agrees = false;
    }
    return agrees;
}
