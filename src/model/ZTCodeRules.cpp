#include "model/ZTCodeRules.h"

#include <algorithm>

bool ZTCodeRules::allDigits(QStringView text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.isDigit(); });
}

int ZTCodeRules::digitOrZero(QChar c)
{
    return c.isDigit() ? c.digitValue() : 0;
}

int ZTCodeRules::moduloTenCheck(int weightedSum)
{
    return (10 - weightedSum % 10) % 10;
}

bool ZTCodeRules::weightedDigitSum(QStringView text, qsizetype count, int evenWeight, int oddWeight, int *sum)
{
    if (text.size() < count)
        return false;
    int total = 0;
    for (qsizetype i = 0; i < count; ++i) {
        const QChar c = text.at(i);
        if (!c.isDigit())
            return false;
        total += c.digitValue() * (i % 2 == 0 ? evenWeight : oddWeight);
    }
    *sum = total;
    return true;
}

QString ZTCodeRules::digitsAfter(const QString &text, const QString &marker)
{
    const qsizetype at = text.indexOf(marker);
    if (at < 0)
        return QString();
    const qsizetype start = at + marker.size();
    qsizetype end = start;
    while (end < text.size() && text.at(end).isDigit())
        ++end;
    return end > start ? text.mid(start, end - start) : QString();
}
