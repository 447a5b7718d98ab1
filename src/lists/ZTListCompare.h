#pragma once

#include <QString>
#include <QStringList>

#include <vector>

// The localised, case-insensitive text order and equality that lists, the
// filter browser and the smart-list rules share. Accents stay significant.
namespace ZTListCompare {
int compareCaseInsensitive(const QString &a, const QString &b);
bool equalCaseInsensitive(const QString &a, const QString &b);
QStringList sortedCaseInsensitive(QStringList values);
// The places of `values` in that order: element i is the index of the i-th value.
std::vector<int> caseInsensitiveOrder(const QStringList &values);
} // namespace ZTListCompare
