#include "lists/ZTListCompare.h"

#include <QCollator>

#include <algorithm>

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

QStringList ZTListCompare::sortedCaseInsensitive(QStringList values)
{
    if (values.size() < 2)
        return values;
    // Sort keys once per value rather than collating at every comparison. The
    // keys of the C locale keep case, so the values are case-folded first.
    QList<std::pair<QCollatorSortKey, int>> keyed;
    keyed.reserve(values.size());
    for (int i = 0; i < values.size(); ++i)
        keyed.append({collator().sortKey(values[i].toCaseFolded()), i});
    std::stable_sort(keyed.begin(), keyed.end(), [&](const auto &x, const auto &y) {
        const int order = x.first.compare(y.first);
        return order != 0 ? order < 0 : values[x.second] < values[y.second];
    });
    QStringList sorted;
    sorted.reserve(values.size());
    for (const auto &entry : keyed)
        sorted << values[entry.second];
    return sorted;
}
