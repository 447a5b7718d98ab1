#include "scan/ZTIntegerAccumulator.h"

void ZTIntegerAccumulator::addInteger(qint64 value, qint64 times)
{
    m_counts[value] += times;
}

qint64 ZTIntegerAccumulator::highestCount() const
{
    if (m_counts.empty())
        throw ZTIntegerAccumulatorException();
    auto best = m_counts.begin();
    for (auto it = m_counts.begin(); it != m_counts.end(); ++it) {
        if (it->second > best->second)
            best = it;
    }
    return best->first;
}
