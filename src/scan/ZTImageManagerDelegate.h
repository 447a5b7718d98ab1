#pragma once

#include <QtGlobal>

#include <array>

// The grey statistics of one picture, gathered from the first direction's
// scan lines, and the threshold worked out for a two-valued picture.
class ZTImageManagerDelegate {
public:
    qint64 pixelHistogramValue(int index) const { return m_pixelHistogram[size_t(index)]; }
    void incrementPixelValueAtIndex(int index) { ++m_pixelHistogram[size_t(index)]; }

    bool hasCalculatedThreshold() const { return m_hasCalculatedThreshold; }
    void setHasCalculatedThreshold(bool calculated) { m_hasCalculatedThreshold = calculated; }
    qint64 numberOfPositiveHistogramValues() const { return m_numberOfPositiveHistogramValues; }
    void setNumberOfPositiveHistogramValues(qint64 count) { m_numberOfPositiveHistogramValues = count; }
    qint64 threshold() const { return m_threshold; }
    void setThreshold(qint64 threshold) { m_threshold = threshold; }

private:
    std::array<qint64, 256> m_pixelHistogram{};
    bool m_hasCalculatedThreshold = false;
    qint64 m_numberOfPositiveHistogramValues = 0;
    qint64 m_threshold = 0;
};
