#pragma once

#include "scan/ZTScanResult.h"

#include <QString>

#include <memory>
#include <memory_resource>
#include <vector>

class ZTScanEdge;
class ZTRectangle;

// What is particular to EAN-13 (UPC-A being the case with a leading 0): the
// width tables, the search for the outer windows in a scan line, the
// digit-by-digit decoding of a walk and the check digit. One validator serves
// one pass of the image manager; it owns the edges that pass finds.
class ZTBarcodeValidator {
public:
    static constexpr qint64 s_noWindow = 2147483647;

    ZTBarcodeValidator(qint64 quietZoneInt,
                       std::pmr::memory_resource *memory = std::pmr::get_default_resource());
    ~ZTBarcodeValidator();
    ZTBarcodeValidator(const ZTBarcodeValidator &) = delete;
    ZTBarcodeValidator &operator=(const ZTBarcodeValidator &) = delete;

    static qint64 validatorIndex() { return 1; }
    // 59 elements: 30 bars and 29 spaces.
    static qint64 modifiedBSForBS(qint64 barSpaceCount) { return barSpaceCount == 59 ? 59 : -1; }
    static bool shouldEnforceChecksum() { return true; }
    // A whole code is 9.5 times as wide as its 10-module outer window.
    static double dimensionStarting() { return 9.5; }
    static double dimensionEnding() { return 9.5; }

    // The code index of a width pattern (see the width table), or -1.
    static int codeIndexForPattern(qint64 pattern);
    // The leading digit for a parity string such as "AABABB", or -1.
    static int leadingDigitForParity(const QString &parity);

    qint64 quietZoneInt() const { return m_quietZoneInt; }
    const std::pmr::vector<ZTScanEdge *> &listOfStartingScanEdges() const
    {
        return m_listOfStartingScanEdges;
    }
    const std::pmr::vector<ZTScanEdge *> &listOfEndingScanEdges() const { return m_listOfEndingScanEdges; }
    // Entries may be null after processScanResults: a dropped result.
    std::vector<std::unique_ptr<ZTScanResult>> &scanResults() { return m_scanResults; }
    const std::vector<int> &integerList() const { return m_integerList; }

    // Looks for outer windows in a sweep band and files them under edges;
    // returns the width in pixels of the narrowest window that matched.
    qint64 bsCountWithX(qint64 x, qint64 y, qint64 numberOfBars, const qint64 *barBand, qint64 scanAngle,
                        qint64 threshold);
    void scanEdgeWithX(qint64 x, qint64 y, const qint64 *barBand, qint64 startIndex, qint64 runLength,
                       qint64 scanAngle, qint64 val, bool isStartingEdge, qint64 threshold);
    // Rounds lengthOfRun widths to whole modules adding up to multiplier and
    // looks the pattern up; -1 unless its index lies within low and high.
    static int codeIndexWithBarBand(const qint64 *barBand, qint64 startIndex, qint64 lengthOfRun,
                                    qint64 multiplier, qint64 lowValue, qint64 highValue);
    bool isValidWithBarSpaceCount(qint64 barSpaceCount, const qint64 *barBand, ZTScanEdge *startEdge,
                                  ZTScanEdge *endEdge);
    void processIntegerCodeList(const std::vector<int> &codeList, qint64 codeLength, ZTScanEdge *startEdge,
                                ZTScanEdge *endEdge);

    void processWithValidatorIndex(qint64 validatorIndex);
    void updateScanEdges();
    void chooseBestScanResults();
    void processScanResults();

    static bool validateCheckDigit(const QString &rawCode);
    // The 13-digit text of a raw string whose check digit holds, else null.
    static QString validCode(const QString &rawCode);

private:
    qint64 m_quietZoneInt;
    std::pmr::memory_resource *m_memory;
    std::pmr::vector<ZTScanEdge *> m_allEdges;
    std::pmr::vector<ZTScanEdge *> m_listOfStartingScanEdges;
    std::pmr::vector<ZTScanEdge *> m_listOfEndingScanEdges;
    std::vector<std::unique_ptr<ZTScanResult>> m_scanResults;
    std::vector<int> m_integerList;
};
