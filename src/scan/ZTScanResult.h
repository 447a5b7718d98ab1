#pragma once

#include "scan/ZTLineSegment.h"
#include "scan/ZTRectangle.h"

#include <QMap>
#include <QString>

class ZTBarcodeValidator;
class ZTScanEdge;

// One barcode on one picture: the pair of edges it was read between and every
// raw string the walks between them gave. Single walks are noisy, so the
// result votes position by position before it claims a code.
//
// Raw strings hold one character per code position with the values 0 to 19
// (left digits of parity B keep 10 to 19); 0xFFFF marks a position without a
// reading.
class ZTScanResult {
public:
    static constexpr char16_t s_noReading = 0xFFFF;

    ZTScanResult(const QString &code, qint64 codeLength, ZTScanEdge *startEdge, ZTScanEdge *endEdge,
                 qint64 validatorIndex);

    qint64 codeCount() const { return m_codeCount; }
    void setCodeCount(qint64 count) { m_codeCount = count; }
    qint64 threshold() const { return m_threshold; }
    void setThreshold(qint64 threshold) { m_threshold = threshold; }
    // The edges live only as long as the pass that found them; see detachFromEdges.
    ZTScanEdge *startingScanEdge() const { return m_startingScanEdge; }
    ZTScanEdge *endingScanEdge() const { return m_endingScanEdge; }
    const ZTRectangle &boundingRectangle() const { return m_boundingRectangle; }
    // The 13-digit code once the vote has passed, otherwise null.
    const QString &decodedString() const { return m_decodedString; }
    qint64 fixedLengthOfCode() const { return m_fixedLengthOfCode; }
    qint64 validatorIndex() const { return m_validatorIndex; }
    qint64 scanAngle() const { return m_scanAngle; }
    qint64 codeLength() const { return m_codeLength; }
    const QMap<QString, qint64> &codeDict() const { return m_codeDict; }
    bool hasCodeDict() const { return m_hasCodeDict; }

    void addCode(const QString &code);
    bool hasSimilarCode(const QString &code) const;
    // Settles the code: the majority at every position, checked by the check
    // digit. The raw strings are dropped either way.
    bool isValidWithCodeValidator(const ZTBarcodeValidator &validator);
    void updateBoundingRectangle();
    bool isSimilarToScanResult(const ZTScanResult &other) const;

    ZTLineSegment startingEdge() const;
    ZTLineSegment endingEdge() const;

    // Keeps the two edge segments and forgets the edges, which belong to the
    // pass that found them; a result handed out of a pass is detached.
    void detachFromEdges();

private:
    qint64 m_codeCount = 1;
    qint64 m_threshold = 0;
    ZTScanEdge *m_startingScanEdge;
    ZTScanEdge *m_endingScanEdge;
    ZTLineSegment m_startingSegment;
    ZTLineSegment m_endingSegment;
    ZTRectangle m_boundingRectangle;
    QString m_decodedString;
    qint64 m_fixedLengthOfCode;
    qint64 m_validatorIndex;
    qint64 m_scanAngle;
    QMap<QString, qint64> m_codeDict;
    bool m_hasCodeDict = true;
    qint64 m_codeLength;
};
