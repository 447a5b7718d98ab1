#include "scan/ZTScanResult.h"

#include "scan/ZTBarcodeValidator.h"
#include "scan/ZTIntegerAccumulator.h"
#include "scan/ZTScanEdge.h"

#include <QList>

#include <vector>

ZTScanResult::ZTScanResult(const QString &code, qint64 codeLength, ZTScanEdge *startEdge, ZTScanEdge *endEdge,
                           qint64 validatorIndex)
    : m_startingScanEdge(startEdge), m_endingScanEdge(endEdge), m_fixedLengthOfCode(codeLength),
      m_validatorIndex(validatorIndex), m_scanAngle(startEdge ? startEdge->scanAngle() : 0),
      m_codeLength(code.size())
{
    m_codeDict.insert(code, 1);
}

void ZTScanResult::addCode(const QString &code)
{
    ++m_codeCount;
    m_codeDict[code] += 1;
}

bool ZTScanResult::hasSimilarCode(const QString &code) const
{
    if (code.size() != m_codeLength)
        return false;
    // The count of agreeing positions runs across all strings held, so a
    // result that already holds several takes in new ones more easily.
    qint64 agreeing = 0;
    for (auto it = m_codeDict.cbegin(); it != m_codeDict.cend(); ++it) {
        const QString &held = it.key();
        if (held == code)
            return true;
        const qsizetype length = std::min(held.size(), code.size());
        for (qsizetype i = 0; i < length; ++i) {
            const char16_t a = held[i].unicode(), b = code[i].unicode();
            if (a != s_noReading && b != s_noReading && a == b)
                ++agreeing;
        }
    }
    return agreeing >= m_codeLength / 2;
}

bool ZTScanResult::isValidWithCodeValidator(const ZTBarcodeValidator &validator)
{
    std::vector<ZTIntegerAccumulator> votes(size_t(std::max<qint64>(m_codeLength, 0)));
    for (auto it = m_codeDict.cbegin(); it != m_codeDict.cend(); ++it) {
        const QString &held = it.key();
        for (qsizetype i = 0; i < held.size() && i < qsizetype(votes.size()); ++i) {
            if (held[i].unicode() != s_noReading)
                votes[size_t(i)].addInteger(held[i].unicode(), it.value());
        }
    }
    QString majority;
    bool complete = true;
    for (const ZTIntegerAccumulator &vote : votes) {
        try {
            majority.append(QChar(char16_t(vote.highestCount())));
        } catch (const ZTIntegerAccumulatorException &) {
            complete = false;
        }
    }

    bool valid = false;
    if (complete) {
        m_decodedString = validator.validCode(majority);
        valid = !m_decodedString.isNull();
    }
    if (!valid && validator.shouldEnforceChecksum()) {
        // Rescue for symbologies that leave positions unread: fall back on the
        // most frequent string while unreadable failures are weeded out. Our
        // walks read every position, so with EAN-13 this finds nothing.
        QStringList failing;
        for (auto it = m_codeDict.cbegin(); it != m_codeDict.cend(); ++it) {
            if (validator.validCode(it.key()).isNull() && it.key().contains(QChar(s_noReading)))
                failing << it.key();
        }
        for (const QString &string : std::as_const(failing)) {
            if (!m_codeDict.isEmpty()) {
                auto best = m_codeDict.cbegin();
                for (auto it = m_codeDict.cbegin(); it != m_codeDict.cend(); ++it) {
                    if (it.value() > best.value())
                        best = it;
                }
                m_decodedString = validator.validCode(best.key());
                valid = true;
            }
            m_codeDict.remove(string);
        }
    }
    m_codeDict.clear();
    m_hasCodeDict = false;
    return valid;
}

void ZTScanResult::updateBoundingRectangle()
{
    if (!m_startingScanEdge || !m_endingScanEdge)
        return;
    m_boundingRectangle =
        m_startingScanEdge->lineSegmentBounds().unionWithRectangle(m_endingScanEdge->lineSegmentBounds());
}

bool ZTScanResult::isSimilarToScanResult(const ZTScanResult &other) const
{
    ZTScanEdge *start = m_startingScanEdge, *end = m_endingScanEdge;
    ZTScanEdge *otherStart = other.m_startingScanEdge, *otherEnd = other.m_endingScanEdge;
    if (!start || !end || !otherStart || !otherEnd)
        return false;
    if (start == otherStart || end == otherEnd)
        return true;
    if (start->isNearScanEdge(*otherStart) && end->isNearScanEdge(*otherEnd))
        return true;
    return start->isNearScanEdge(*otherEnd) && end->isNearScanEdge(*otherStart);
}

ZTLineSegment ZTScanResult::startingEdge() const
{
    return m_startingScanEdge ? m_startingScanEdge->lineSegment() : m_startingSegment;
}

ZTLineSegment ZTScanResult::endingEdge() const
{
    return m_endingScanEdge ? m_endingScanEdge->lineSegment() : m_endingSegment;
}

void ZTScanResult::detachFromEdges()
{
    m_startingSegment = startingEdge();
    m_endingSegment = endingEdge();
    m_startingScanEdge = nullptr;
    m_endingScanEdge = nullptr;
}
