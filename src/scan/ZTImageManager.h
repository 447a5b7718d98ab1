#pragma once

#include "scan/ZTImageManagerDelegate.h"
#include "scan/ZTScanContext.h"
#include "scan/ZTScanResult.h"

#include <QImage>
#include <QList>
#include <QString>

#include <cstddef>
#include <memory>
#include <span>

class ZTBarcodeValidator;
class ZTScanEdge;
struct ZTSecondaryScanState;

// Reads EAN-13 barcodes out of one still picture; made afresh for every frame.
//
// The picture becomes grey values, row by row as rows are first touched;
// scan lines are swept across it and each line's run lengths go to the
// validator, which gathers the outer edges of barcodes. Edges that belong
// together are walked between and every walk is decoded. Beside this first
// reader sits a second one, secondaryScanCode, which matches whole templates
// against rows and votes over several frames.
//
// The picture must not exceed s_maxSide in either direction: the caches are
// flat arrays of that size and nothing here checks it. Callers scale frames
// to 480 wide and refuse anything larger (see ZTStillImageScanner).
class ZTImageManager {
public:
    static constexpr qint64 s_maxSide = 640;
    // A bar band (run lengths and a 0 sentinel) never needs more entries than
    // this; bandSize() gives the size for the current picture.
    static constexpr qint64 s_maxBandSize = 2 * s_maxSide + 1;
    static constexpr qint64 s_noWindow = 2147483647;

    enum class OutlierMerge { Off, On };

    explicit ZTImageManager(const QImage &image);
    ~ZTImageManager();
    ZTImageManager(const ZTImageManager &) = delete;
    ZTImageManager &operator=(const ZTImageManager &) = delete;

    const QImage &image() const { return m_image; }
    qint64 imageWidth() const { return m_imageWidth; }
    qint64 imageHeight() const { return m_imageHeight; }
    qint64 quietZoneInt() const { return m_quietZoneInt; }
    ZTImageManagerDelegate &delegate() { return m_delegate; }
    const ZTImageManagerDelegate &delegate() const { return m_delegate; }
    // Entries a caller-owned bar band needs for this picture.
    qint64 bandSize() const;

    QList<ZTScanResult> scanResultsForScanContext(const ZTScanContext &context);
    // The thresholds a scan tries, in order.
    static QList<qint64> thresholdsToTry(qint64 first, qint64 delta, qint64 margin);
    QList<ZTScanResult> validationResultsWithThreshold(qint64 threshold, const ZTScanContext &context);
    // One sweep in one direction; returns the threshold to use from then on.
    qint64 adjustedThresholdWithValidatorList(std::span<ZTBarcodeValidator *const> validators,
                                              qint64 *barBand, qint64 threshold, qint64 scanAngle,
                                              qint64 scanDelta);
    // Walks between two edges; the number of valid decodes, or minus the
    // number of walks when none was valid, or 0 when no walk had 59 elements.
    qint64 scanCountWithValidator(ZTBarcodeValidator &validator, ZTScanEdge *startEdge, ZTScanEdge *endEdge,
                                  qint64 *barBand, qint64 threshold);
    // Fills a sweep band: pixel run lengths starting with a light run.
    qint64 numberOfBarsForColumn(qint64 column, qint64 row, qint64 *barBand, qint64 threshold,
                                 qint64 scanAngle);
    // Fills a walk band: run lengths in eighths of a pixel starting with a dark run.
    qint64 numberOfBarsAndSpacesWithCol1(qint64 col1, qint64 row1, qint64 col2, qint64 row2, qint64 *barBand,
                                         qint64 threshold, OutlierMerge flag = OutlierMerge::On);
    bool isOutlierWithColumn(qint64 column, qint64 row, qint64 threshold);
    int intOfColumn(qint64 column, qint64 row, qint64 threshold);
    qint64 pixelAtColumn(qint64 column, qint64 row);
    // Grey values of one row, or of one column as the column reader sees it;
    // null outside the picture.
    const qint64 *pixelsForRow(qint64 row);
    const qint64 *pixelsForColumn(qint64 column);
    bool hasCalculatedThreshold() const;

    // The template reader over the process-wide votes of the camera loop, or
    // over the given votes.
    QString secondaryScanCode();
    QString secondaryScanCode(ZTSecondaryScanState &state);

    static void normalizeBarBand(qint64 *barBand, qint64 count);
    static void thresholdBarBand(qint64 *barBand, qint64 count, qint64 threshold);
    // Decodes 95 × multiplier normalised grey samples, multiplier per module,
    // by matching whole digit templates; null when no code fits.
    static QString codeFromBarBand(const qint64 *barBand, qint64 multiplier);

private:
    QImage m_image;
    QImage m_imageRep; // 4 bytes a pixel, rows exactly 4 × width long
    qint64 m_imageWidth = 0;
    qint64 m_imageHeight = 0;
    ZTImageManagerDelegate m_delegate;
    qint64 m_quietZoneInt = 1;
    bool m_pixelRowCache[s_maxSide] = {};
    bool m_pixelColumnCache[s_maxSide] = {};
    // s_maxSide × s_maxSide grey values each, one row (column) per s_maxSide
    // entries; allocated once per picture and filled on demand.
    std::unique_ptr<qint64[]> m_pixelRow;
    std::unique_ptr<qint64[]> m_pixelColumn;
    // Backing store for the edges of one pass, so that a sweep never asks the
    // heap for memory.
    std::unique_ptr<std::byte[]> m_passMemory;
};
