#include "lists/ZTListCompare.h"

#include <QCollator>

#include <algorithm>
#include <numeric>

namespace {
const QCollator &collator()
{
    // One collator per thread for the session: building one per comparison costs
    // far more than the comparison, and a collator sets itself up on first use.
    static thread_local const QCollator s_collator = [] {
        QCollator c;
        c.setCaseSensitivity(Qt::CaseInsensitive);
        c.setNumericMode(false);
        return c;
    }();
    return s_collator;
}
// Case folding plain ASCII is lowering it, which costs a small part of the
// general routine; most values of a library are plain ASCII.
QString folded(const QString &value)
{
    bool upper = false;
    for (const QChar c : value) {
        if (c.unicode() >= 0x80)
            return value.toCaseFolded();
        upper = upper || (c >= QLatin1Char('A') && c <= QLatin1Char('Z'));
    }
    if (!upper)
        return value;
    QString lowered = value;
    for (QChar &c : lowered)
        if (c >= QLatin1Char('A') && c <= QLatin1Char('Z'))
            c = QChar(c.unicode() + ('a' - 'A'));
    return lowered;
}
} // namespace

int ZTListCompare::compareCaseInsensitive(const QString &a, const QString &b)
{
    if (a.compare(b, Qt::CaseInsensitive) == 0)
        return 0;
    const int order = collator().compare(a, b);
    // A collation that ignores accents would call "é" and "e" equal; keep them apart.
    return order != 0 ? order : a.compare(b, Qt::CaseInsensitive);
}

bool ZTListCompare::equalCaseInsensitive(const QString &a, const QString &b)
{
    return compareCaseInsensitive(a, b) == 0;
}

std::vector<int> ZTListCompare::caseInsensitiveOrder(const QStringList &values)
{
    std::vector<int> order(size_t(values.size()));
    std::iota(order.begin(), order.end(), 0);
    if (values.size() < 2)
        return order;
    // Sort keys once per value rather than collating at every comparison. The
    // keys of the C locale keep case, so the values are case-folded first.
    std::vector<QCollatorSortKey> keys;
    keys.reserve(size_t(values.size()));
    for (const QString &value : values)
        keys.push_back(collator().sortKey(folded(value)));
    std::stable_sort(order.begin(), order.end(), [&](int x, int y) {
        const int o = keys[size_t(x)].compare(keys[size_t(y)]);
        return o != 0 ? o < 0 : values[x] < values[y];
    });
    return order;
}

QStringList ZTListCompare::sortedCaseInsensitive(QStringList values)
{
    if (values.size() < 2)
        return values;
    QStringList sorted;
    sorted.reserve(values.size());
    for (const int i : caseInsensitiveOrder(values))
        sorted << values[i];
    return sorted;
}
