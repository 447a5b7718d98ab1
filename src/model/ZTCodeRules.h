#pragma once

#include <QString>

// Digit arithmetic shared by the code formatter's files.
namespace ZTCodeRules {

bool allDigits(QStringView text);
int digitOrZero(QChar c);
// The digit that brings a weighted sum to a multiple of ten.
int moduloTenCheck(int weightedSum);
// Sums the first count characters with the weights alternating from
// evenWeight (index 0) and oddWeight; false if one of them is no digit or the
// text is shorter.
bool weightedDigitSum(QStringView text, qsizetype count, int evenWeight, int oddWeight, int *sum);
// The run of digits right behind the first occurrence of marker; null if the
// marker is missing or no digit follows.
QString digitsAfter(const QString &text, const QString &marker);

} // namespace ZTCodeRules
