#include "scan/ZTScanEdgeDelegate.h"

ZTScanEdgeDelegate::ZTScanEdgeDelegate(qint64 x, bool shouldSubtract)
    : m_shouldSubtract(shouldSubtract), m_x1(shouldSubtract ? x - 1 : x + 1),
      m_x2(shouldSubtract ? x - 2 : x + 2), m_x3(shouldSubtract ? x - 3 : x + 3)
{
}

void ZTScanEdgeDelegate::shift(qint64 t)
{
    if (t == next(m_x1) || m_x1 == next(m_x2)) {
        m_x3 = m_x2;
        m_x2 = m_x1;
    }
    m_x1 = t;
}

qint64 ZTScanEdgeDelegate::x() const
{
    return m_x1 == next(m_x2) ? m_x1 : m_x2;
}
