#pragma once

#include <QtGlobal>

#include <map>
#include <stdexcept>

// Raised by ZTIntegerAccumulator::highestCount on an empty accumulator; the
// result's vote catches it and skips the position.
class ZTIntegerAccumulatorException : public std::runtime_error {
public:
    ZTIntegerAccumulatorException() : std::runtime_error("Hashmap is empty") {}
    static const char *name() { return "ZTIntegerAccumulatorException"; }
};

// Counts how often each integer was seen; the vote of one code position.
class ZTIntegerAccumulator {
public:
    void addInteger(qint64 value, qint64 times = 1);
    // The integer seen most often; on a tie the smallest, the first in the
    // map's order. Throws ZTIntegerAccumulatorException when nothing was added.
    qint64 highestCount() const;
    bool isEmpty() const { return m_counts.empty(); }

private:
    std::map<qint64, qint64> m_counts;
};
