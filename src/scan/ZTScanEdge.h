#pragma once

#include "scan/ZTLineSegment.h"
#include "scan/ZTRectangle.h"

#include <QPointF>

#include <memory_resource>
#include <vector>

class ZTImageManager;

// A straight line on the picture along which the outer end of a barcode was
// seen on many scan lines: the left end of a start guard window, or the right
// end of an end guard window, in the direction of the sweep.
//
// Edges are made while a sweep runs, so their storage comes from the pass's
// memory resource and filing a window never touches the heap.
class ZTScanEdge {
public:
    ZTScanEdge(qint64 scanAngle, qint64 val, const ZTRectangle &rectangle, bool isStartingEdge,
               double dimension, qint64 runLength, qint64 threshold, std::pmr::memory_resource *memory);

    bool isStartingEdge() const { return m_isStartingEdge; }
    bool hasBeenProcessed() const { return m_hasBeenProcessed; }
    qint64 val() const { return m_val; }
    qint64 scanAngle() const { return m_scanAngle; }
    double slope() const { return m_slope; }
    double intercept() const { return m_intercept; }
    double dimension() const { return m_dimension; }
    qint64 runLength() const { return m_runLength; }
    qint64 threshold() const { return m_threshold; }
    qint64 storedAverageLongDimension() const { return m_storedAverageLongDimension; }
    qint64 sumLongDimension() const { return m_sumLongDimension; }
    const ZTLineSegment &lineSegment() const { return m_lineSegment; }
    const std::pmr::vector<ZTRectangle> &rectangleScans() const { return m_rectangleScans; }
    const std::vector<ZTScanEdge *> &listOfScanEdges() const { return m_listOfScanEdges; }

    void handleRectangle(const ZTRectangle &rectangle);
    bool doesIntersectRectangle(const ZTRectangle &rectangle) const;
    qint64 averageLongDimension() const;
    void reset();
    // Drops rectangles that stray from the fitted line until the rest agree;
    // false when fewer scan lines remain than an edge needs.
    bool isValidWithValidatorIndex(qint64 validatorIndex);
    bool isSimilarToScanEdge(const ZTScanEdge &other) const;
    bool isNearScanEdge(const ZTScanEdge &other) const;
    void addScanEdgeToList(ZTScanEdge *edge);

    QPointF startingPoint() const { return m_lineSegment.p1(); }
    QPointF endingPoint() const { return m_lineSegment.p2(); }
    const ZTRectangle &lineSegmentBounds() const { return m_lineSegment.bounds(); }

    // Lengthens the edge to the real ends of the barcode by probing across it
    // beyond the scan lines that found it.
    void processWithImageManager(ZTImageManager &imageManager, qint64 *barBand, qint64 threshold);
    bool isValidWithValidationIndex(qint64 validationIndex, double *valArray, qint64 bsCount,
                                    const qint64 *barBand, qint64 bsWidth) const;

    bool isHorizontal() const;
    // The coordinate across the scan lines (the row for row sweeps) and the
    // other one, on the fitted line.
    double lineValueAt(double longCoordinate) const { return m_slope * longCoordinate + m_intercept; }

private:
    QPointF outerEndPoint(const ZTRectangle &rectangle) const;
    double outerLongCoordinate(const ZTRectangle &rectangle) const;
    void fitLine(double *slope, double *intercept) const;
    QPointF pointOnLine(double longCoordinate) const;
    void addToSums(const ZTRectangle &rectangle, double sign);
    bool probeAt(ZTImageManager &imageManager, qint64 *barBand, qint64 threshold, qint64 t, qint64 dx,
                 qint64 dy, qint64 validationIndex, double *valArray, qint64 bsWidth) const;

    bool m_isStartingEdge;
    bool m_hasBeenProcessed = false;
    qint64 m_val;
    qint64 m_scanAngle;
    double m_slope = 0;
    double m_intercept = 0;
    double m_dimension;
    ZTLineSegment m_lineSegment;
    std::vector<ZTScanEdge *> m_listOfScanEdges;
    qint64 m_runLength;
    qint64 m_storedAverageLongDimension = -1;
    qint64 m_sumLongDimension = 0;
    std::pmr::vector<ZTRectangle> m_rectangleScans;
    // Sums over the outer end points (x, y): Σx, Σy, Σxy, Σx², Σy².
    double m_sumWidth = 0;
    double m_sumHeight = 0;
    double m_sumArea = 0;
    double m_sumWidthSquared = 0;
    double m_sumHeightSquared = 0;
    qint64 m_threshold;
};
