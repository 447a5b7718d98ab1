#pragma once

#include <QByteArrayView>
#include <QList>

// One satisfiable byte range of a file: the first byte and the number of bytes.
struct HTTPByteRange {
    quint64 location = 0;
    quint64 length = 0;

    quint64 last() const { return location + length - 1; }
    bool operator==(const HTTPByteRange &) const = default;
};

// The ranges a "Range" header asks for ("bytes=a-b", "a-", "-n", separated by
// commas), resolved against the file's length.
class HTTPByteRanges {
public:
    // Returns the ranges in the order asked for, or an empty list when the
    // header is to be ignored and the whole file sent: a malformed header, a
    // unit other than bytes, a range that starts beyond the end, or ranges that
    // overlap (which would let a tiny request ask for the same bytes many times).
    // As usual for HTTP, a last byte past the end is cut to the end and a
    // suffix longer than the file means the whole file.
    static QList<HTTPByteRange> parse(QByteArrayView header, quint64 contentLength);
};
