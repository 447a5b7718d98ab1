#pragma once

#include <QString>
#include <QStringList>

// The localised, case-insensitive text order and equality that lists, the
// filter browser and the smart-list rules share. Accents stay significant.
namespace ZTListCompare {
int compareCaseInsensitive(const QString &a, const QString &b);
bool equalCaseInsensitive(const QString &a, const QString &b);
QStringList sortedCaseInsensitive(QStringList values);
} // namespace ZTListCompare
