#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

// Sort keys and shelf-mark displays derived from a book's volume number and
// its Library of Congress and Dewey classifications.
namespace ZTItemSortKeys {

// "I", "V", "X", "L", "C", "D", "M".
const QStringList &romanNumeralArray();

// Value of a run of Roman numerals read left to right, where a numeral greater
// than the one before it takes that one back twice ("IV" = 1 + 5 - 2). Any
// other character makes the value -1.
qint64 romanNumeralValue(const QString &numerals);

// A key that sorts volume 9 before volume 10: the trailing number (Roman or
// decimal) zero-filled to six digits, then the text before it. When the text
// ends in neither, previousKey is returned unchanged: an item keeps the key it
// had rather than losing its place.
QString volumeNumberSortable(const QString &volumeNumber, const QString &previousKey);

// "QA76.73" -> "QA 0076 .73": class letters, class number zero-filled to four
// digits, and the rest, with a volume number after "vol." zero-filled as well.
QString locClassificationSortable(const QString &locClassification);

// The three-digit section of a Dewey number ("823.912" -> "823"); a shorter
// value gives its digits only.
QString deweyClassNumberPrefix(const QString &deweyClassNumber);
// "823 English fiction"; the prefix alone when the table has no name for it;
// a null string for a blank prefix.
QString deweyClassNumberDisplayString(const QString &deweyClassNumber, const QVariantMap &classNames);
// The same with the class names shipped with the program.
QString deweyClassNumberDisplayString(const QString &deweyClassNumber);

} // namespace ZTItemSortKeys
