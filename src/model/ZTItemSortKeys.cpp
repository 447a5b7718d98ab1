#include "model/ZTItemSortKeys.h"

#include "model/ZTItemResources.h"

#include <limits>

namespace ZTItemSortKeys {

namespace {

int romanDigitValue(QChar c)
{
    switch (c.toUpper().unicode()) {
    case u'I':
        return 1;
    case u'V':
        return 5;
    case u'X':
        return 10;
    case u'L':
        return 50;
    case u'C':
        return 100;
    case u'D':
        return 500;
    case u'M':
        return 1000;
    default:
        return -1;
    }
}

QString zeroFilled(qint64 value, int width)
{
    return QStringLiteral("%1").arg(value, width, 10, QLatin1Char('0'));
}

// Decimal value of a run of digits, held at the largest value rather than
// wrapping round when the run is absurdly long.
qint64 digitRunValue(const QString &digits)
{
    constexpr qint64 largest = std::numeric_limits<qint64>::max();
    qint64 value = 0;
    for (const QChar c : digits) {
        const int digit = c.digitValue();
        if (value > (largest - digit) / 10)
            return largest;
        value = value * 10 + digit;
    }
    return value;
}

} // namespace

const QStringList &romanNumeralArray()
{
    static const QStringList s_numerals = {QStringLiteral("I"), QStringLiteral("V"), QStringLiteral("X"),
                                           QStringLiteral("L"), QStringLiteral("C"), QStringLiteral("D"),
                                           QStringLiteral("M")};
    return s_numerals;
}

qint64 romanNumeralValue(const QString &numerals)
{
    qint64 value = 0;
    int previous = 0;
    for (const QChar c : numerals) {
        const int current = romanDigitValue(c);
        if (current < 0)
            return -1;
        value += current;
        if (current > previous)
            value -= 2 * previous;
        previous = current;
    }
    return value;
}

QString volumeNumberSortable(const QString &volumeNumber, const QString &previousKey)
{
    if (volumeNumber.isEmpty())
        return volumeNumber;
    const QString text = volumeNumber.trimmed();

    qsizetype start = text.size();
    while (start > 0 && romanDigitValue(text.at(start - 1)) > 0)
        --start;
    if (start < text.size()) {
        const qint64 value = romanNumeralValue(text.mid(start));
        // The number leads so that it decides the order; the text before it
        // only breaks ties between equal numbers.
        return value > 0 ? zeroFilled(value, 6) + text.left(start) : volumeNumber;
    }

    start = text.size();
    while (start > 0 && text.at(start - 1).isDigit())
        --start;
    if (start < text.size()) {
        const qint64 value = digitRunValue(text.mid(start));
        return value > 0 ? zeroFilled(value, 6) + text.left(start) : volumeNumber;
    }
    return previousKey;
}

QString locClassificationSortable(const QString &locClassification)
{
    const QString &loc = locClassification;
    if (loc.isNull() || loc.size() < 2)
        return loc;

    QString letters;
    QString number;
    QString rest;
    bool scanned = loc.at(0).isLetter();
    qsizetype position = 0;
    if (scanned) {
        for (qsizetype i = 0; i < 3 && i < loc.size(); ++i) {
            if (loc.at(i).isLetter())
                letters.append(loc.at(i));
        }
        position = letters.size();
        while (position < loc.size() && loc.at(position).isSpace())
            ++position;
        if (position < loc.size() && !loc.at(position).isDigit())
            scanned = false;
        while (scanned && position < loc.size() && loc.at(position).isDigit())
            number.append(loc.at(position++));
    }
    if (scanned) {
        number = number.rightJustified(4, QLatin1Char('0'));
        rest = loc.mid(position);
    } else {
        letters.clear();
        number.clear();
        rest = loc;
    }

    const qsizetype volume = rest.indexOf(QLatin1String("vol."), 0, Qt::CaseInsensitive);
    if (volume >= 0) {
        // Only the number at the very end counts, and never a character of
        // "vol." or the one separator after it.
        qsizetype digitsStart = rest.size();
        while (digitsStart - 1 > volume + 4 && rest.at(digitsStart - 1).isDigit())
            --digitsStart;
        const QString digits = rest.mid(digitsStart).rightJustified(4, QLatin1Char('0'));
        rest = rest.size() >= volume + 5 ? rest.left(volume + 5) + digits : digits;
    }

    // A classification that could not be read keeps two leading blanks, so it
    // sorts ahead of every readable one.
    return letters.trimmed() + QLatin1Char(' ') + number.trimmed() + QLatin1Char(' ') + rest.trimmed();
}

QString deweyClassNumberPrefix(const QString &deweyClassNumber)
{
    if (deweyClassNumber.size() >= 3)
        return deweyClassNumber.left(3);
    if (deweyClassNumber.isNull())
        return {};
    QString digits;
    for (const QChar c : deweyClassNumber) {
        if (c.isDigit())
            digits.append(c);
    }
    return digits;
}

QString deweyClassNumberDisplayString(const QString &deweyClassNumber, const QVariantMap &classNames)
{
    const QString prefix = deweyClassNumberPrefix(deweyClassNumber);
    if (prefix.trimmed().isEmpty())
        return {};
    const QString name = classNames.value(prefix).toString();
    return name.isEmpty() ? prefix : prefix + QLatin1Char(' ') + name;
}

QString deweyClassNumberDisplayString(const QString &deweyClassNumber)
{
    return deweyClassNumberDisplayString(deweyClassNumber, ZTItemResources::deweyClassNames());
}

} // namespace ZTItemSortKeys
