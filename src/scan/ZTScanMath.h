#pragma once

#include <QtGlobal>

#include <cmath>

namespace ZTScanMath {

// Largest magnitude a coordinate may take after truncation. Fitted lines can be
// nearly degenerate (an almost zero determinant), and their predictions must
// still turn into whole numbers without undefined behaviour or overflow when
// two of them are subtracted.
constexpr qint64 s_farAway = qint64(1) << 40;

// Cuts a real to a whole number towards zero, as the reader does everywhere;
// values that are not finite or lie far outside any picture are pinned.
inline qint64 whole(double value)
{
    if (std::isnan(value))
        return -s_farAway;
    if (value >= double(s_farAway))
        return s_farAway;
    if (value <= -double(s_farAway))
        return -s_farAway;
    return qint64(value);
}

inline bool isHorizontalAngle(qint64 scanAngle)
{
    return scanAngle == 90 || scanAngle == 270;
}

} // namespace ZTScanMath
