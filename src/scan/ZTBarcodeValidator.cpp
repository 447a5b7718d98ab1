#include "scan/ZTBarcodeValidator.h"

#include "scan/ZTRectangle.h"
#include "scan/ZTScanEdge.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace {

constexpr qint64 s_setA[10] = {3211, 2221, 2122, 1411, 1132, 1231, 1114, 1312, 1213, 3112};
constexpr qint64 s_setB[10] = {1123, 1222, 2212, 1141, 2311, 1321, 4111, 2131, 3121, 2113};
constexpr qint64 s_guardPrefix = 1110000; // start guard in front of a 4-element digit
constexpr qint64 s_centreGuard = 11111;
constexpr int s_windowElements = 7;
constexpr int s_digitElements = 4;
constexpr int s_centreElements = 5;
constexpr int s_codeLength = 12;

// The width table as pattern → code index, sorted by pattern. Rows are entered
// in index order, so 1114111 (start guard with digit 6 of set B, and digit 6
// of set A with end guard) ends up as 46: that start window does not exist,
// which costs nothing because the first left digit always has parity A.
const std::vector<std::pair<qint64, int>> &widthTable()
{
    static const std::vector<std::pair<qint64, int>> table = [] {
        std::vector<std::pair<qint64, int>> rows;
        auto enter = [&rows](qint64 pattern, int index) {
            for (auto &row : rows) {
                if (row.first == pattern) {
                    row.second = index;
                    return;
                }
            }
            rows.emplace_back(pattern, index);
        };
        for (int d = 0; d < 10; ++d)
            enter(s_setA[d], d);
        for (int d = 0; d < 10; ++d)
            enter(s_setB[d], 10 + d);
        for (int d = 0; d < 10; ++d)
            enter(s_guardPrefix + s_setA[d], 20 + d);
        for (int d = 0; d < 10; ++d)
            enter(s_guardPrefix + s_setB[d], 30 + d);
        for (int d = 0; d < 10; ++d)
            enter(s_setA[d] * 1000 + 111, 40 + d);
        enter(s_centreGuard, 50);
        std::sort(rows.begin(), rows.end());
        return rows;
    }();
    return table;
}

const char *const s_parityTable[10] = {"AAAAAA", "AABABB", "AABBAB", "AABBBA", "ABAABB",
                                       "ABBAAB", "ABBBAA", "ABABAB", "ABABBA", "ABBABA"};

// The value of one code position: left digits of set B count as their digit.
qint64 positionValue(QChar c)
{
    const qint64 v = c.unicode();
    return v >= 10 ? v - 10 : v;
}

constexpr int s_maxRun = 16;

// One rounding pass over scaled widths; see codeIndexWithBarBand.
qint64 roundedPattern(const qint64 *scaled, qint64 count, qint64 total, bool backward, qint64 flip,
                      qint64 *residues)
{
    qint64 rounded[s_maxRun];
    qint64 carry = 0;
    for (qint64 step = 0; step < count; ++step) {
        const qint64 k = backward ? count - 1 - step : step;
        const qint64 v = scaled[k] + carry;
        qint64 q = v / total;
        qint64 r = v % total;
        const bool roundUp = q == 0 || (k == flip ? r <= total / 2 : r > total / 2);
        if (roundUp) {
            q += 1;
            r -= total;
        }
        rounded[k] = q;
        residues[k] = r;
        carry = r;
    }
    qint64 pattern = 0;
    for (qint64 k = 0; k < count; ++k)
        pattern = pattern * 10 + rounded[k];
    return pattern;
}

} // namespace

ZTBarcodeValidator::ZTBarcodeValidator(qint64 quietZoneInt, std::pmr::memory_resource *memory)
    : m_quietZoneInt(quietZoneInt), m_memory(memory), m_allEdges(memory), m_listOfStartingScanEdges(memory),
      m_listOfEndingScanEdges(memory)
{
    m_allEdges.reserve(64);
    m_listOfStartingScanEdges.reserve(32);
    m_listOfEndingScanEdges.reserve(32);
}

ZTBarcodeValidator::~ZTBarcodeValidator()
{
    std::pmr::polymorphic_allocator<ZTScanEdge> allocator(m_memory);
    for (ZTScanEdge *edge : m_allEdges)
        allocator.delete_object(edge);
}

int ZTBarcodeValidator::codeIndexForPattern(qint64 pattern)
{
    const auto &table = widthTable();
    auto it = std::lower_bound(table.begin(), table.end(), std::make_pair(pattern, -1));
    return it != table.end() && it->first == pattern ? it->second : -1;
}

int ZTBarcodeValidator::leadingDigitForParity(const QString &parity)
{
    for (int d = 0; d < 10; ++d) {
        if (parity == QLatin1String(s_parityTable[d]))
            return d;
    }
    return -1;
}

int ZTBarcodeValidator::codeIndexWithBarBand(const qint64 *barBand, qint64 startIndex, qint64 lengthOfRun,
                                             qint64 multiplier, qint64 lowValue, qint64 highValue)
{
    if (lengthOfRun <= 0 || lengthOfRun > s_maxRun)
        return -1;
    // Widths are scaled by the module count before division so that the
    // remainder carried from element to element stays a whole number.
    qint64 scaled[s_maxRun];
    qint64 total = 0;
    for (qint64 k = 0; k < lengthOfRun; ++k) {
        total += barBand[startIndex + k];
        scaled[k] = barBand[startIndex + k] * multiplier;
    }
    if (total <= 0)
        return -1;
    auto accept = [&](qint64 pattern) {
        const int index = codeIndexForPattern(pattern);
        return index >= lowValue && index <= highValue ? index : -1;
    };

    qint64 residues[s_maxRun];
    qint64 flipResidues[s_maxRun];
    int index = accept(roundedPattern(scaled, lengthOfRun, total, false, -1, residues));
    if (index >= 0)
        return index;
    // Second try: round the element with the largest residue the other way.
    qint64 flip = 0;
    for (qint64 k = 1; k <= lengthOfRun - 2; ++k) {
        if (std::llabs(residues[k]) > std::llabs(residues[flip]))
            flip = k;
    }
    index = accept(roundedPattern(scaled, lengthOfRun, total, false, flip, flipResidues));
    if (index >= 0)
        return index;
    // The same two tries from the other end, carrying backwards.
    index = accept(roundedPattern(scaled, lengthOfRun, total, true, -1, residues));
    if (index >= 0)
        return index;
    flip = lengthOfRun - 1;
    for (qint64 k = lengthOfRun - 2; k >= 1; --k) {
        if (std::llabs(residues[k]) > std::llabs(residues[flip]))
            flip = k;
    }
    return accept(roundedPattern(scaled, lengthOfRun, total, true, flip, flipResidues));
}

qint64 ZTBarcodeValidator::bsCountWithX(qint64 x, qint64 y, qint64 numberOfBars, const qint64 *barBand,
                                        qint64 scanAngle, qint64 threshold)
{
    const qint64 n = numberOfBars;
    // Windows start on a dark run: a line that starts dark drops its first
    // bar and the space behind it.
    qint64 s = barBand[0] != 0 ? 1 : 3;
    if (s + s_windowElements > n)
        return s_noWindow;
    qint64 narrowest = s_noWindow;
    qint64 w = 0;
    for (qint64 k = 0; k < s_windowElements; ++k)
        w += barBand[s + k];
    const qint64 quietZone = m_quietZoneInt != 0 ? m_quietZoneInt : 1;
    for (;;) {
        // A start has a wide light run in front and a narrow one behind; an end
        // is its mirror image. Both quiet zones must exceed 7 modules.
        const qint64 q = w * 7 / 10;
        const qint64 p = barBand[s - 1];
        const qint64 f = barBand[s + s_windowElements];
        bool startWay = false;
        if ((s - 1 == 0 || p > q / quietZone) && f < q) {
            startWay = true;
            const int index = codeIndexWithBarBand(barBand, s, s_windowElements, 10, 20, 39);
            if (index >= 0) {
                scanEdgeWithX(x, y, barBand, s, s_windowElements, scanAngle, index, true, threshold);
                narrowest = std::min(narrowest, w);
            }
        }
        if (!startWay && p < q && !(s + s_windowElements != n - 1 && f <= q / quietZone)) {
            const int index = codeIndexWithBarBand(barBand, s, s_windowElements, 10, 40, 49);
            if (index >= 0) {
                scanEdgeWithX(x, y, barBand, s, s_windowElements, scanAngle, index, false, threshold);
                narrowest = std::min(narrowest, w);
            }
        }
        if (s + 2 + s_windowElements > n)
            break;
        w += barBand[s + 7] + barBand[s + 8] - barBand[s] - barBand[s + 1];
        s += 2;
    }
    return narrowest;
}

void ZTBarcodeValidator::scanEdgeWithX(qint64 x, qint64 y, const qint64 *barBand, qint64 startIndex,
                                       qint64 runLength, qint64 scanAngle, qint64 val, bool isStartingEdge,
                                       qint64 threshold)
{
    qint64 offset = 0, w = 0;
    for (qint64 k = 0; k < startIndex; ++k)
        offset += barBand[k];
    for (qint64 k = 0; k < runLength; ++k)
        w += barBand[startIndex + k];
    ZTRectangle rectangle;
    switch (scanAngle) {
    case 90:
        rectangle = ZTRectangle(x + offset, y, w, 1);
        break;
    case 180:
        rectangle = ZTRectangle(x, y + offset, 1, w);
        break;
    case 270:
        rectangle = ZTRectangle(x - w - offset + 1, y, w, 1);
        break;
    case 360:
        rectangle = ZTRectangle(x, y - w - offset + 1, 1, w);
        break;
    default:
        return;
    }
    auto &edges = isStartingEdge ? m_listOfStartingScanEdges : m_listOfEndingScanEdges;
    for (auto it = edges.rbegin(); it != edges.rend(); ++it) {
        ZTScanEdge *edge = *it;
        if (edge->scanAngle() != scanAngle || edge->val() != val)
            continue;
        const qint64 average = edge->averageLongDimension();
        if (average > 2 * w / 3 && average < 3 * w / 2 && edge->doesIntersectRectangle(rectangle)) {
            edge->handleRectangle(rectangle);
            return;
        }
    }
    std::pmr::polymorphic_allocator<ZTScanEdge> allocator(m_memory);
    ZTScanEdge *edge = allocator.new_object<ZTScanEdge>(
        scanAngle, val, rectangle, isStartingEdge, isStartingEdge ? dimensionStarting() : dimensionEnding(),
        runLength, threshold, m_memory);
    m_allEdges.push_back(edge);
    edges.push_back(edge);
}

bool ZTBarcodeValidator::isValidWithBarSpaceCount(qint64 barSpaceCount, const qint64 *barBand,
                                                  ZTScanEdge *startEdge, ZTScanEdge *endEdge)
{
    if (barSpaceCount != 59)
        return false;
    m_integerList.clear();
    qint64 i = 0;
    int index = codeIndexWithBarBand(barBand, i, s_windowElements, 10, 20, 39);
    if (index < 0)
        return false;
    m_integerList.push_back(index - 20);
    i += s_windowElements;
    for (int d = 0; d < 5; ++d, i += s_digitElements) {
        index = codeIndexWithBarBand(barBand, i, s_digitElements, 7, 0, 19);
        if (index < 0)
            return false;
        m_integerList.push_back(index);
    }
    if (codeIndexWithBarBand(barBand, i, s_centreElements, 5, 50, 50) != 50)
        return false;
    i += s_centreElements;
    for (int d = 0; d < 5; ++d, i += s_digitElements) {
        index = codeIndexWithBarBand(barBand, i, s_digitElements, 7, 0, 9);
        if (index < 0)
            return false;
        m_integerList.push_back(index);
    }
    index = codeIndexWithBarBand(barBand, i, s_windowElements, 10, 40, 49);
    if (index < 0)
        return false;
    m_integerList.push_back(index - 40);

    QString parity;
    for (int k = 0; k < 6; ++k)
        parity.append(m_integerList[size_t(k)] > 9 ? QLatin1Char('B') : QLatin1Char('A'));
    const int leading = leadingDigitForParity(parity);
    if (leading < 0)
        return false;
    m_integerList.insert(m_integerList.begin(), leading);
    processIntegerCodeList(m_integerList, s_codeLength, startEdge, endEdge);
    return true;
}

void ZTBarcodeValidator::processIntegerCodeList(const std::vector<int> &codeList, qint64 codeLength,
                                                ZTScanEdge *startEdge, ZTScanEdge *endEdge)
{
    QString raw;
    raw.reserve(qsizetype(codeList.size()));
    for (int value : codeList)
        raw.append(QChar(char16_t(value)));
    for (auto it = m_scanResults.rbegin(); it != m_scanResults.rend(); ++it) {
        ZTScanResult *result = it->get();
        if (result && result->startingScanEdge() == startEdge && result->endingScanEdge() == endEdge &&
            result->hasSimilarCode(raw)) {
            result->addCode(raw);
            return;
        }
    }
    m_scanResults.push_back(
        std::make_unique<ZTScanResult>(raw, codeLength, startEdge, endEdge, validatorIndex()));
}

void ZTBarcodeValidator::processWithValidatorIndex(qint64 index)
{
    auto keepValid = [index](std::pmr::vector<ZTScanEdge *> &edges) {
        std::erase_if(edges, [index](ZTScanEdge *edge) { return !edge->isValidWithValidatorIndex(index); });
    };
    keepValid(m_listOfStartingScanEdges);
    keepValid(m_listOfEndingScanEdges);
}

void ZTBarcodeValidator::updateScanEdges()
{
    for (ZTScanEdge *start : m_listOfStartingScanEdges) {
        for (ZTScanEdge *end : m_listOfEndingScanEdges) {
            if (start->isSimilarToScanEdge(*end)) {
                start->addScanEdgeToList(end);
                end->addScanEdgeToList(start);
            }
        }
    }
    auto unpaired = [](ZTScanEdge *edge) { return edge->listOfScanEdges().empty(); };
    std::erase_if(m_listOfStartingScanEdges, unpaired);
    std::erase_if(m_listOfEndingScanEdges, unpaired);
}

void ZTBarcodeValidator::chooseBestScanResults()
{
    for (auto &result : m_scanResults) {
        if (result && !result->isValidWithCodeValidator(*this))
            result->setCodeCount(0);
    }
    for (size_t i = 0; i < m_scanResults.size(); ++i) {
        for (size_t j = i + 1; j < m_scanResults.size(); ++j) {
            ZTScanResult *a = m_scanResults[i].get(), *b = m_scanResults[j].get();
            if (!a || !b || a->codeCount() == 0 || b->codeCount() == 0)
                continue;
            if (a->startingScanEdge() != b->startingScanEdge() || a->endingScanEdge() != b->endingScanEdge())
                continue;
            if (a->codeCount() < b->codeCount())
                a->setCodeCount(0);
            else
                b->setCodeCount(0);
        }
    }
    std::erase_if(m_scanResults,
                  [](const std::unique_ptr<ZTScanResult> &r) { return !r || r->codeCount() == 0; });
}

void ZTBarcodeValidator::processScanResults()
{
    // A result dropped as entry i still takes part in the rest of its round,
    // so the marks are gathered first and applied at the end.
    std::vector<bool> dropped(m_scanResults.size(), false);
    for (size_t i = 0; i < m_scanResults.size(); ++i) {
        if (!m_scanResults[i] || dropped[i])
            continue;
        const ZTScanResult &a = *m_scanResults[i];
        for (size_t j = i + 1; j < m_scanResults.size(); ++j) {
            if (!m_scanResults[j] || dropped[j])
                continue;
            const ZTScanResult &b = *m_scanResults[j];
            if (!a.boundingRectangle().intersects(b.boundingRectangle()) || !a.isSimilarToScanResult(b))
                continue;
            if (a.codeCount() > b.codeCount())
                dropped[j] = true;
            else
                dropped[i] = true;
        }
    }
    for (size_t i = 0; i < m_scanResults.size(); ++i) {
        if (dropped[i])
            m_scanResults[i].reset();
    }
}

bool ZTBarcodeValidator::validateCheckDigit(const QString &rawCode)
{
    const qsizetype length = rawCode.size();
    if (length < 1)
        return false;
    qint64 sum = 0;
    for (qsizetype k = length - 2; k >= 0; k -= 2)
        sum += 3 * positionValue(rawCode[k]);
    for (qsizetype k = length - 3; k >= 0; k -= 2)
        sum += positionValue(rawCode[k]);
    const qint64 expected = sum % 10 == 0 ? 0 : sum / 10 * 10 - sum + 10;
    return qint64(rawCode[length - 1].unicode()) == expected;
}

QString ZTBarcodeValidator::validCode(const QString &rawCode)
{
    if (!validateCheckDigit(rawCode))
        return {};
    QString digits;
    digits.reserve(rawCode.size());
    for (QChar c : rawCode)
        digits.append(QString::number(positionValue(c)));
    return digits;
}
