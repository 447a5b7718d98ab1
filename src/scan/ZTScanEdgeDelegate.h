#pragma once

#include <QtGlobal>

// Follows one end of an edge while it is being lengthened line by line. It
// keeps the last three good lines so that one stray good line beyond a gap
// does not move the end.
class ZTScanEdgeDelegate {
public:
    // With shouldSubtract the walk goes towards higher coordinates, and the
    // history starts below x; otherwise the other way round.
    ZTScanEdgeDelegate(qint64 x, bool shouldSubtract);

    void shift(qint64 t);
    qint64 x() const;

    qint64 x1() const { return m_x1; }
    qint64 x2() const { return m_x2; }
    qint64 x3() const { return m_x3; }

private:
    // The coordinate one step further along the direction of travel.
    qint64 next(qint64 value) const { return m_shouldSubtract ? value + 1 : value - 1; }

    bool m_shouldSubtract;
    qint64 m_x1;
    qint64 m_x2;
    qint64 m_x3;
};
