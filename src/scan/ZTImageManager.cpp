#include "scan/ZTImageManager.h"

#include "scan/ZTBarcodeValidator.h"
#include "scan/ZTScanEdge.h"
#include "scan/ZTScanMath.h"
#include "scan/ZTSecondaryScanState.h"
#include "scan/ZTTemplateReader.h"

#include <algorithm>
#include <array>
#include <memory_resource>

using ZTScanMath::whole;

namespace {

constexpr qint64 s_side = ZTImageManager::s_maxSide;
// Edges of one pass rarely need more than a few kilobytes; a picture full of
// guard-like noise may spill over to the heap, which stays correct.
constexpr size_t s_passMemorySize = 256 * 1024;
// A walk longer than this cannot lie on a picture of at most 640 × 640; such
// walks only come from nearly degenerate line fits and are not taken.
constexpr qint64 s_longestWalk = 8 * s_side;
constexpr qint64 s_walkUnit = 8;
constexpr qint64 s_angles[] = {90, 180, 270, 360};

inline qint64 greyOf(const uchar *p)
{
    // Rounded to nearest; the weights are those the camera reader has always used.
    return qint64(0.247 * p[2] + (0.624 * p[1] + 0.122 * p[0]) + 0.5);
}

} // namespace

ZTImageManager::ZTImageManager(const QImage &image)
    : m_image(image), m_pixelRow(new qint64[size_t(s_side * s_side)]),
      m_pixelColumn(new qint64[size_t(s_side * s_side)]), m_passMemory(new std::byte[s_passMemorySize])
{
    if (!image.isNull())
        m_imageRep = image.convertToFormat(QImage::Format_RGBA8888);
    m_imageWidth = m_imageRep.width();
    m_imageHeight = m_imageRep.height();
}

ZTImageManager::~ZTImageManager() = default;

qint64 ZTImageManager::bandSize() const
{
    return std::max<qint64>(100, m_imageWidth + m_imageHeight);
}

bool ZTImageManager::hasCalculatedThreshold() const
{
    return m_delegate.hasCalculatedThreshold() && m_delegate.numberOfPositiveHistogramValues() > 2;
}

const qint64 *ZTImageManager::pixelsForRow(qint64 row)
{
    if (row < 0 || row >= m_imageHeight || row >= s_side || m_imageWidth > s_side)
        return nullptr;
    qint64 *values = m_pixelRow.get() + row * s_side;
    if (!m_pixelRowCache[row]) {
        const uchar *p = m_imageRep.constScanLine(int(row));
        for (qint64 c = 0; c < m_imageWidth; ++c, p += 4)
            values[c] = greyOf(p);
        m_pixelRowCache[row] = true;
    }
    return values;
}

const qint64 *ZTImageManager::pixelsForColumn(qint64 column)
{
    if (column < 0 || column >= m_imageWidth || column >= s_side || m_imageHeight > s_side)
        return nullptr;
    qint64 *values = m_pixelColumn.get() + column * s_side;
    if (!m_pixelColumnCache[column]) {
        // Starts at byte offset column, not 4 × column, of the first row. This
        // makes column sweeps see a squeezed, channel-mixed picture; it is how
        // the reader has always behaved, so it stays.
        const uchar *bits = m_imageRep.constBits();
        const qint64 stride = 4 * m_imageWidth;
        for (qint64 r = 0; r < m_imageHeight; ++r)
            values[r] = greyOf(bits + r * stride + column);
        m_pixelColumnCache[column] = true;
    }
    return values;
}

qint64 ZTImageManager::pixelAtColumn(qint64 column, qint64 row)
{
    if (column < 0 || column >= m_imageWidth)
        return 255;
    const qint64 *values = pixelsForRow(row);
    return values ? values[column] : 255;
}

int ZTImageManager::intOfColumn(qint64 column, qint64 row, qint64 threshold)
{
    return pixelAtColumn(column, row) >= threshold ? 1 : 0;
}

bool ZTImageManager::isOutlierWithColumn(qint64 column, qint64 row, qint64 threshold)
{
    if (column <= 0 || row <= 0 || column >= m_imageWidth - 1 || row >= m_imageHeight - 1)
        return false;
    const int own = intOfColumn(column, row, threshold);
    for (qint64 dr = -1; dr <= 1; ++dr) {
        for (qint64 dc = -1; dc <= 1; ++dc) {
            if ((dr != 0 || dc != 0) && intOfColumn(column + dc, row + dr, threshold) == own)
                return false;
        }
    }
    return true;
}

qint64 ZTImageManager::numberOfBarsForColumn(qint64 column, qint64 row, qint64 *barBand, qint64 threshold,
                                             qint64 scanAngle)
{
    const bool alongRow = ZTScanMath::isHorizontalAngle(scanAngle);
    const qint64 *values = alongRow ? pixelsForRow(row) : pixelsForColumn(column);
    const qint64 length = alongRow ? m_imageWidth : m_imageHeight;
    const qint64 from = alongRow ? column : row;
    const qint64 step = scanAngle == 90 || scanAngle == 180 ? 1 : -1;
    const bool feedHistogram = !m_delegate.hasCalculatedThreshold();

    qint64 k = 0;
    barBand[0] = 0;
    if (!values || from < 0 || from >= length) {
        barBand[1] = 0;
        return 1;
    }
    const qint64 count = step > 0 ? length - from : from + 1;
    if (feedHistogram) {
        for (qint64 i = 0, at = from; i < count; ++i, at += step)
            m_delegate.incrementPixelValueAtIndex(int(values[at] & 0xFF));
    }
    // Without branches: scan lines over texture change state at almost every
    // pixel, and this loop is where a sweep spends its time.
    qint64 light = 1;
    for (qint64 i = 0, at = from; i < count; ++i, at += step) {
        const qint64 pixelLight = values[at] >= threshold ? 1 : 0;
        barBand[k + 1] = 0;
        k += pixelLight ^ light;
        ++barBand[k];
        light = pixelLight;
    }
    barBand[k + 1] = 0;
    return k + 1;
}

qint64 ZTImageManager::numberOfBarsAndSpacesWithCol1(qint64 col1, qint64 row1, qint64 col2, qint64 row2,
                                                     qint64 *barBand, qint64 threshold, OutlierMerge flag)
{
    const qint64 dx = col2 > col1 ? col2 - col1 : col1 - col2;
    const qint64 dy = row2 > row1 ? row2 - row1 : row1 - row2;
    barBand[0] = 0;
    if (dx > s_longestWalk || dy > s_longestWalk)
        return 0;
    // Four-connected: a step across the minor axis first visits the pixel at
    // the new major position on the old minor line. With dx = dy the walk
    // runs along the rows' direction of travel, rows being the major axis.
    const bool columnsMajor = dx > dy;
    const qint64 major = columnsMajor ? dx : dy;
    const qint64 minor = columnsMajor ? dy : dx;
    const qint64 stepColumn = col2 >= col1 ? 1 : -1;
    const qint64 stepRow = row2 >= row1 ? 1 : -1;
    const qint64 lastRun = bandSize() - 2; // leaves room for the sentinel
    qint64 error = major / 2;
    qint64 column = col1, row = row1;
    qint64 previousColumn = col1, previousRow = row1;
    qint64 k = 0;
    bool light = false;
    bool full = false;

    auto visit = [&](qint64 c, qint64 r) {
        const bool inside = c >= 0 && r >= 0 && c < m_imageWidth && r < m_imageHeight;
        const bool pixelLight = !inside || intOfColumn(c, r, threshold) == 1;
        if (pixelLight == light) {
            barBand[k] += s_walkUnit;
        } else if (flag == OutlierMerge::On && k >= 1 && barBand[k] == 1 &&
                   isOutlierWithColumn(previousColumn, previousRow, threshold)) {
            // A lone pixel of the other state is folded into the run before.
            // Runs grow in eighths, so this never fires; the merge in the
            // walk's decoder has the same shape and is kept alike.
            --k;
            barBand[k] += s_walkUnit;
            light = pixelLight;
        } else if (k >= lastRun) {
            full = true;
        } else {
            light = pixelLight;
            barBand[++k] = s_walkUnit;
        }
        previousColumn = c;
        previousRow = r;
    };

    qint64 &majorPos = columnsMajor ? column : row;
    qint64 &minorPos = columnsMajor ? row : column;
    const qint64 majorEnd = columnsMajor ? col2 : row2;
    const qint64 majorStep = columnsMajor ? stepColumn : stepRow;
    const qint64 minorStep = columnsMajor ? stepRow : stepColumn;
    for (;;) {
        visit(column, row);
        if (full)
            break;
        error -= minor;
        if (majorPos == majorEnd)
            break;
        majorPos += majorStep;
        if (error < 0) {
            error += major;
            visit(column, row);
            if (full)
                break;
            minorPos += minorStep;
        }
    }
    barBand[k + 1] = 0;
    return k + 1;
}

qint64 ZTImageManager::adjustedThresholdWithValidatorList(std::span<ZTBarcodeValidator *const> validators,
                                                          qint64 *barBand, qint64 threshold, qint64 scanAngle,
                                                          qint64 scanDelta)
{
    qint64 fixed = 0, limit = 0;
    switch (scanAngle) {
    case 90:
        fixed = 0, limit = m_imageHeight;
        break;
    case 270:
        fixed = m_imageWidth - 1, limit = m_imageHeight;
        break;
    case 180:
        fixed = 0, limit = m_imageWidth;
        break;
    case 360:
        fixed = m_imageHeight - 1, limit = m_imageWidth;
        break;
    default:
        limit = 0;
        break;
    }
    const bool alongRow = ZTScanMath::isHorizontalAngle(scanAngle);
    // A spacing below one line would never move on.
    const qint64 delta = std::max<qint64>(scanDelta, 1);
    qint64 step = delta, countdown = 0;
    for (qint64 p = 0; p < limit; p += step) {
        const qint64 column = alongRow ? fixed : p;
        const qint64 row = alongRow ? p : fixed;
        const qint64 n = numberOfBarsForColumn(column, row, barBand, threshold, scanAngle);
        qint64 narrowest = s_noWindow;
        for (ZTBarcodeValidator *validator : validators)
            narrowest =
                std::min(narrowest, validator->bsCountWithX(column, row, n, barBand, scanAngle, threshold));
        const qint64 w = (narrowest > 7 || narrowest < -7) ? narrowest / 8 : 1;
        if (w < delta) {
            // Something like a guard: narrow the step to an eighth of that
            // 10-module window for the next eight lines.
            countdown = 8;
            step = std::min(w, step);
        } else if (countdown > 0) {
            --countdown;
            if (countdown == 0)
                step = delta;
        }
        step = std::max<qint64>(step, 1);
    }

    if (m_delegate.hasCalculatedThreshold())
        return threshold;
    qint64 count = 0, g1 = -1, g2 = -1;
    for (int g = 0; g < 256; ++g) {
        if (m_delegate.pixelHistogramValue(g) == 0)
            continue;
        ++count;
        if (g1 < 0)
            g1 = g;
        else if (g2 < 0)
            g2 = g;
    }
    m_delegate.setNumberOfPositiveHistogramValues(count);
    m_delegate.setHasCalculatedThreshold(true);
    if (count != 2)
        return threshold;
    // A two-valued picture: make sure the threshold parts the two values, and
    // sweep once more if it had to move.
    qint64 result = threshold;
    if (g1 >= threshold || g2 < threshold)
        result = adjustedThresholdWithValidatorList(validators, barBand, (g1 + g2) / 2, scanAngle, scanDelta);
    m_delegate.setThreshold(result);
    return result;
}

qint64 ZTImageManager::scanCountWithValidator(ZTBarcodeValidator &validator, ZTScanEdge *startEdge,
                                              ZTScanEdge *endEdge, qint64 *barBand, qint64 threshold)
{
    const bool horizontal = startEdge->isHorizontal();
    auto span = [horizontal](const ZTScanEdge *edge, qint64 *lower) {
        const ZTLineSegment &s = edge->lineSegment();
        const double a = horizontal ? s.y1() : s.x1();
        const double b = horizontal ? s.y2() : s.x2();
        *lower = whole(std::min(a, b));
        return whole(std::max(a, b)) - *lower;
    };
    qint64 startLower = 0, endLower = 0;
    const qint64 walks = 1 + std::min(span(startEdge, &startLower), span(endEdge, &endLower));
    const bool outsideIsLight = 255 >= threshold;
    auto inside = [this](qint64 c, qint64 r) {
        return c >= 0 && r >= 0 && c < m_imageWidth && r < m_imageHeight;
    };
    auto light = [&](qint64 c, qint64 r) { return intOfColumn(c, r, threshold) == 1; };
    // The direction of the sweep that found the edges.
    const qint64 angle = startEdge->scanAngle();
    const qint64 dc = angle == 90 ? 1 : angle == 270 ? -1 : 0;
    const qint64 dr = angle == 180 ? 1 : angle == 360 ? -1 : 0;
    if (dc == 0 && dr == 0)
        return 0;
    qint64 successes = 0, counted = 0;
    for (qint64 i = 0; i < walks; ++i) {
        const qint64 ts = startLower + i, te = endLower + i;
        const qint64 as = whole(startEdge->lineValueAt(double(ts)));
        const qint64 ae = whole(endEdge->lineValueAt(double(te)));
        qint64 sc = horizontal ? as : ts, sr = horizontal ? ts : as;
        qint64 ec = horizontal ? ae : te, er = horizontal ? te : ae;

        // Settle both ends on dark pixels: a walk must begin and end on a bar.
        // The start moves in the sweep's direction while inside the picture,
        // the end against it until the border.
        while (light(sc, sr) && inside(sc, sr))
            sc += dc, sr += dr;
        qint64 &end = dc != 0 ? ec : er;
        const qint64 back = dc != 0 ? -dc : -dr;
        const qint64 last = (dc != 0 ? m_imageWidth : m_imageHeight) - 1;
        // Everything outside the picture is light, so an end far outside may
        // jump straight to the border it would have crawled to.
        if (outsideIsLight && back < 0 && end > last)
            end = std::max<qint64>(last, 0);
        if (outsideIsLight && back > 0 && end < 0)
            end = 0;
        while (light(ec, er) && (back < 0 ? end > 0 : end < last))
            end += back;

        qint64 n = numberOfBarsAndSpacesWithCol1(sc, sr, ec, er, barBand, threshold);
        if (ZTBarcodeValidator::modifiedBSForBS(n) < 0) {
            // Merge thin elements between two wide ones. Walk runs come in
            // eighths, so a run of exactly 1 never occurs; the rule is kept as
            // the reader has it.
            qint64 marks = 0;
            for (qint64 j = 1; j + 1 < n; ++j) {
                if (barBand[j] == 1 && barBand[j - 1] >= 2 && barBand[j + 1] >= 2)
                    ++marks;
            }
            const qint64 merged = n - 2 * marks;
            if (ZTBarcodeValidator::modifiedBSForBS(merged) < 0)
                continue;
            qint64 out = 0;
            for (qint64 j = 0; j < n; ++out) {
                qint64 value = barBand[j++];
                while (j + 1 < n && barBand[j] == 1 && barBand[j - 1] >= 2 && barBand[j + 1] >= 2) {
                    value += barBand[j] + barBand[j + 1] + 1;
                    j += 2;
                }
                barBand[out] = value;
            }
            barBand[out] = 0;
            n = merged;
        }
        ++counted;
        if (validator.isValidWithBarSpaceCount(n, barBand, startEdge, endEdge))
            ++successes;
    }
    if (successes > 0)
        return successes;
    return counted > 0 ? -counted : 0;
}

QList<ZTScanResult> ZTImageManager::validationResultsWithThreshold(qint64 threshold,
                                                                   const ZTScanContext &context)
{
    std::pmr::monotonic_buffer_resource memory(m_passMemory.get(), s_passMemorySize,
                                               std::pmr::new_delete_resource());
    ZTBarcodeValidator validator(m_quietZoneInt, &memory);
    ZTBarcodeValidator *const validators[] = {&validator};
    qint64 band[s_maxBandSize + 1];
    band[0] = 0;

    const bool enabled[] = {context.scanToRight, context.scanDown, context.scanToLeft, context.scanUp};
    qint64 t = threshold;
    for (size_t i = 0; i < std::size(s_angles); ++i) {
        if (enabled[i])
            t = adjustedThresholdWithValidatorList(validators, band, t, s_angles[i], context.scanDelta);
    }

    validator.processWithValidatorIndex(ZTBarcodeValidator::validatorIndex());
    validator.updateScanEdges();
    for (ZTScanEdge *start : validator.listOfStartingScanEdges()) {
        for (ZTScanEdge *end : start->listOfScanEdges())
            scanCountWithValidator(validator, start, end, band, t);
    }
    for (ZTScanEdge *edge : validator.listOfStartingScanEdges())
        edge->reset();
    for (ZTScanEdge *edge : validator.listOfEndingScanEdges())
        edge->reset();
    validator.chooseBestScanResults();
    for (auto &result : validator.scanResults()) {
        result->startingScanEdge()->processWithImageManager(*this, band, t);
        result->endingScanEdge()->processWithImageManager(*this, band, t);
        result->updateBoundingRectangle();
    }
    validator.processScanResults();

    QList<ZTScanResult> output;
    for (auto &result : validator.scanResults()) {
        if (!result)
            continue;
        result->setThreshold(t);
        ZTScanResult detached = *result;
        detached.detachFromEdges();
        output.append(detached);
    }
    return output;
}

QList<qint64> ZTImageManager::thresholdsToTry(qint64 first, qint64 delta, qint64 margin)
{
    // The first threshold, then alternately below and above it by growing
    // steps, while they stay within the margin and within 0 to 255.
    QList<qint64> thresholds{first};
    if (delta == 0 || margin == 0)
        return thresholds;
    for (qint64 k = 1;; ++k) {
        qint64 offset = 0, below = 0, above = 0;
        if (__builtin_mul_overflow(k, delta, &offset) || __builtin_sub_overflow(first, offset, &below) ||
            __builtin_add_overflow(first, offset, &above))
            break;
        const qint64 distance = offset < 0 ? -offset : offset;
        const bool belowKept = distance <= margin && below >= 0 && below <= 255;
        const bool aboveKept = distance <= margin && above >= 0 && above <= 255;
        if (!belowKept && !aboveKept)
            break;
        if (belowKept)
            thresholds << below;
        if (aboveKept)
            thresholds << above;
    }
    return thresholds;
}

QList<ZTScanResult> ZTImageManager::scanResultsForScanContext(const ZTScanContext &context)
{
    m_quietZoneInt = 1;
    const qint64 first =
        m_delegate.hasCalculatedThreshold() && m_delegate.numberOfPositiveHistogramValues() == 2
            ? m_delegate.threshold()
            : context.threshold;

    const QList<qint64> thresholds = thresholdsToTry(first, context.thresholdDelta, context.thresholdMargin);
    QList<ZTScanResult> results = validationResultsWithThreshold(thresholds.first(), context);
    if (m_delegate.numberOfPositiveHistogramValues() < 3)
        return results;
    QList<ZTScanResult> best;
    qint64 bestSum = 0;
    for (qsizetype next = 1;; ++next) {
        if (results.size() >= context.barcodeCount)
            return results;
        qint64 sum = 0;
        for (const ZTScanResult &r : std::as_const(results))
            sum += r.codeCount();
        if (results.size() > best.size() || (results.size() == best.size() && sum > bestSum)) {
            best = results;
            bestSum = sum;
        }
        if (next >= thresholds.size())
            return best;
        results = validationResultsWithThreshold(thresholds[next], context);
        if (m_delegate.numberOfPositiveHistogramValues() < 3)
            return results;
    }
}

QString ZTImageManager::secondaryScanCode()
{
    return secondaryScanCode(ZTSecondaryScanState::processWide());
}

QString ZTImageManager::secondaryScanCode(ZTSecondaryScanState &state)
{
    // Zeros stand in for the samples of a candidate before the first one.
    qint64 samples[ZTTemplateReader::s_maxSamples + 1] = {};
    for (qint64 row = m_imageHeight / 4; row < 3 * m_imageHeight / 4; ++row) {
        if (const qint64 *grey = pixelsForRow(row))
            ZTTemplateReader::readRow(grey, m_imageWidth, samples, state);
    }
    return ZTTemplateReader::decide(state);
}

void ZTImageManager::normalizeBarBand(qint64 *barBand, qint64 count)
{
    ZTTemplateReader::normalizeBarBand(barBand, count);
}

void ZTImageManager::thresholdBarBand(qint64 *barBand, qint64 count, qint64 threshold)
{
    ZTTemplateReader::thresholdBarBand(barBand, count, threshold);
}

QString ZTImageManager::codeFromBarBand(const qint64 *barBand, qint64 multiplier)
{
    return ZTTemplateReader::codeFromBarBand(barBand, multiplier);
}
