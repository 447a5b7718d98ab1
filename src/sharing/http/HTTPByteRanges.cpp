#include "sharing/http/HTTPByteRanges.h"

#include "sharing/http/HTTPMessage.h"

#include <algorithm>
#include <optional>

namespace {
// Digits only: no sign, no spaces inside, no overflow.
std::optional<quint64> parseNumber(QByteArrayView text)
{
    if (text.isEmpty() || text.size() > 19)
        return std::nullopt;
    quint64 value = 0;
    for (char c : text) {
        if (c < '0' || c > '9')
            return std::nullopt;
        value = value * 10 + quint64(c - '0');
    }
    return value;
}

std::optional<HTTPByteRange> parseRange(QByteArrayView part, quint64 contentLength)
{
    const qsizetype dash = part.indexOf('-');
    if (dash < 0)
        return std::nullopt;
    const QByteArrayView first = HTTPMessage::trimmedWhitespace(part.first(dash));
    const QByteArrayView last = HTTPMessage::trimmedWhitespace(part.sliced(dash + 1));
    if (first.isEmpty()) {
        const auto suffix = parseNumber(last);
        if (!suffix || *suffix == 0 || contentLength == 0)
            return std::nullopt;
        const quint64 length = std::min(*suffix, contentLength);
        return HTTPByteRange{contentLength - length, length};
    }
    const auto from = parseNumber(first);
    if (!from || *from >= contentLength)
        return std::nullopt;
    if (last.isEmpty())
        return HTTPByteRange{*from, contentLength - *from};
    const auto to = parseNumber(last);
    if (!to || *to < *from)
        return std::nullopt;
    const quint64 end = std::min(*to, contentLength - 1);
    return HTTPByteRange{*from, end - *from + 1};
}
} // namespace

QList<HTTPByteRange> HTTPByteRanges::parse(QByteArrayView header, quint64 contentLength)
{
    header = HTTPMessage::trimmedWhitespace(header);
    const qsizetype equals = header.indexOf('=');
    if (equals < 0 ||
        HTTPMessage::trimmedWhitespace(header.first(equals)).compare("bytes", Qt::CaseInsensitive) != 0)
        return {};
    QList<HTTPByteRange> ranges;
    QByteArrayView rest = header.sliced(equals + 1);
    while (true) {
        const qsizetype comma = rest.indexOf(',');
        const QByteArrayView part = HTTPMessage::trimmedWhitespace(comma < 0 ? rest : rest.first(comma));
        // Empty list elements ("0-1,,4-5") are allowed by the list syntax.
        if (!part.isEmpty()) {
            const auto range = parseRange(part, contentLength);
            if (!range)
                return {};
            ranges.append(*range);
        }
        if (comma < 0)
            break;
        rest = rest.sliced(comma + 1);
    }
    QList<HTTPByteRange> sorted = ranges;
    std::sort(sorted.begin(), sorted.end(),
              [](const HTTPByteRange &a, const HTTPByteRange &b) { return a.location < b.location; });
    for (qsizetype i = 1; i < sorted.size(); ++i)
        if (sorted[i].location <= sorted[i - 1].last())
            return {};
    return ranges;
}
