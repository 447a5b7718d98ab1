#pragma once

// Edges built from hand-made scan windows, shared by the scan tests.

#include "scan/ZTRectangle.h"
#include "scan/ZTScanEdge.h"

#include <QtGlobal>

#include <memory>
#include <memory_resource>
#include <vector>

namespace ZTScanEdgeFixtures {

// Windows of width w along rows first..last whose outer end lies at
// x = x0 + slope × y; a starting edge's outer end is its left end at angle 90
// and its right end at 270, and the other way round for an ending edge.
inline std::vector<ZTRectangle> windows(qint64 angle, bool starting, double x0, double slope, qint64 w,
                                        qint64 first, qint64 last)
{
    const bool outerIsLeft = (angle == 90) == starting;
    std::vector<ZTRectangle> out;
    for (qint64 y = first; y <= last; ++y) {
        const qint64 outer = qRound64(x0 + slope * double(y));
        out.emplace_back(outerIsLeft ? outer : outer - w + 1, y, w, 1);
    }
    return out;
}

inline ZTScanEdge *makeEdge(std::vector<std::unique_ptr<ZTScanEdge>> &keep, qint64 angle, bool starting,
                            const std::vector<ZTRectangle> &rectangles)
{
    keep.push_back(std::make_unique<ZTScanEdge>(angle, starting ? 20 : 40, rectangles.front(), starting, 9.5,
                                                7, 128, std::pmr::get_default_resource()));
    for (size_t i = 1; i < rectangles.size(); ++i)
        keep.back()->handleRectangle(rectangles[i]);
    return keep.back().get();
}

// An edge fitted to its windows and reset, as after a pass's sweeps.
inline ZTScanEdge *fittedEdge(std::vector<std::unique_ptr<ZTScanEdge>> &keep, qint64 angle, bool starting,
                              double x0, double slope, qint64 w = 30)
{
    ZTScanEdge *edge = makeEdge(keep, angle, starting, windows(angle, starting, x0, slope, w, 10, 40));
    edge->isValidWithValidatorIndex(1);
    edge->reset();
    return edge;
}

} // namespace ZTScanEdgeFixtures
