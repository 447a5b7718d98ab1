// Validation and conversion of ISBN, EAN, UPC, ASIN, LCCN and comic numbers.
#include "model/ZTCodeFormatter.h"

#include "base/ZTStringExtras.h"
#include "model/ZTCodeRules.h"

#include <algorithm>
#include <atomic>

namespace {

std::atomic<bool> s_allowsASINs{false};

// ISBN-10 check value: the d in 0..10 that makes sum + d divisible by 11.
int isbnCheckValue(int weightedSum)
{
    return (11 - weightedSum % 11) % 11;
}

QString isbnCheckCharacter(int value)
{
    return value == 10 ? QStringLiteral("X") : QString::number(value);
}

bool isSeparator(QChar c)
{
    return c == QLatin1Char('-') || c == QLatin1Char(' ');
}

} // namespace

void ZTCodeFormatter::setIsbnValidationAllowsASINs(bool allow)
{
    s_allowsASINs.store(allow, std::memory_order_relaxed);
}

bool ZTCodeFormatter::isbnValidationAllowsASINs()
{
    return s_allowsASINs.load(std::memory_order_relaxed);
}

bool ZTCodeFormatter::isValidISBN(const QString &code)
{
    if (code.size() < 10)
        return false;
    const QChar first = code.front();
    const QChar last = code.back();
    if (!first.isDigit())
        return false;
    const bool lastIsX = last == QLatin1Char('X') || last == QLatin1Char('x');
    if (!last.isDigit() && !lastIsX)
        return false;

    // Single "-" or " " may group the digits; the weight falls on digits only.
    int sum = first.digitValue() * 10;
    int digits = 0;
    bool previousWasSeparator = false;
    for (qsizetype i = 1; i + 1 < code.size(); ++i) {
        const QChar c = code.at(i);
        if (c.isDigit()) {
            if (++digits > 8)
                return false;
            sum += c.digitValue() * (10 - digits);
            previousWasSeparator = false;
        } else if (isSeparator(c) && !previousWasSeparator) {
            previousWasSeparator = true;
        } else {
            return false;
        }
    }
    if (digits != 8)
        return false;
    const int check = isbnCheckValue(sum);
    return check == 10 ? lastIsX : (last.isDigit() && last.digitValue() == check);
}

bool ZTCodeFormatter::isValidISBNorASIN(const QString &code)
{
    if (isbnValidationAllowsASINs() && isValidASIN(code))
        return true;
    return isValidISBN(code);
}

bool ZTCodeFormatter::isValidASIN(const QString &code)
{
    if (code.size() != 10)
        return false;
    if (isValidISBN(code))
        return true;
    return code.front() == QLatin1Char('B') &&
           std::all_of(code.cbegin(), code.cend(), [](QChar c) { return c.isDigit() || c.isUpper(); });
}

bool ZTCodeFormatter::isValidEAN(const QString &code, const QString &prefix)
{
    if (code.size() < 12)
        return false;
    if (!prefix.isNull() && !code.startsWith(prefix))
        return false;
    const QString stripped = ZTText::stringByStrippingDashesAndWhitespace(code);
    int sum = 0;
    if (!ZTCodeRules::weightedDigitSum(stripped, 12, 1, 3, &sum))
        return false;
    // Twelve digits pass without a check digit: the ISBN search hands in
    // 12-character tails of "978" codes and relies on it.
    if (stripped.size() == 12)
        return true;
    const QChar check = stripped.at(12);
    return check.isDigit() && check.digitValue() == ZTCodeRules::moduloTenCheck(sum);
}

bool ZTCodeFormatter::isValidUPC(const QString &code)
{
    if (code.size() < 12)
        return false;
    int sum = 0;
    if (!ZTCodeRules::weightedDigitSum(code, 11, 3, 1, &sum))
        return false;
    // The check position counts as 0 when it holds no digit.
    const QChar check = code.at(11);
    if (ZTCodeRules::moduloTenCheck(sum) == (check.isDigit() ? check.digitValue() : 0))
        return true;
    return isValidEAN(code, QString());
}

bool ZTCodeFormatter::isValidLCCN(const QString &code)
{
    if (code.isEmpty())
        return false;
    const QString lower = code.toLower();
    if (lower.size() < 4)
        return false;
    qsizetype letters = 0;
    while (letters < 3 && letters < lower.size() && lower.at(letters).isLower())
        ++letters;
    const QString rest = ZTText::stringByTrimmingWhitespace(lower.mid(letters));
    if (rest.size() > 11)
        return false;

    const qsizetype dash = rest.indexOf(QLatin1Char('-'));
    if (dash < 0)
        return (rest.size() == 8 || rest.size() == 10) && ZTCodeRules::allDigits(rest);
    if (dash == 0 || rest.indexOf(QLatin1Char('-'), dash + 1) >= 0)
        return false;
    // Year, "-", serial: "85-2" is as good as "1985-000002"; the serial may be
    // missing while a number is being typed.
    const QString year = rest.left(dash);
    const QString serial = rest.mid(dash + 1);
    return (year.size() == 2 || year.size() == 4) && ZTCodeRules::allDigits(year) && serial.size() <= 6 &&
           (serial.isEmpty() || ZTCodeRules::allDigits(serial));
}

bool ZTCodeFormatter::isValidGCDN(const QString &code)
{
    return !code.isEmpty() && ZTCodeRules::allDigits(code);
}

bool ZTCodeFormatter::isValidCBDBN(const QString &code)
{
    return !code.isEmpty() && ZTCodeRules::allDigits(code);
}

QString ZTCodeFormatter::eanFromISBN(const QString &isbn)
{
    if (!ZTText::containsNonWhitespace(isbn) || isbn.size() < 10)
        return QString();
    // The nine characters are taken as they stand, so the ISBN must come
    // unformatted; a non-digit counts as 0 rather than failing.
    const QString twelve = QLatin1String("978") + isbn.left(9);
    int sum = 0;
    for (qsizetype i = 0; i < twelve.size(); ++i)
        sum += ZTCodeRules::digitOrZero(twelve.at(i)) * (i % 2 == 0 ? 1 : 3);
    return twelve + QString::number(ZTCodeRules::moduloTenCheck(sum));
}

QString ZTCodeFormatter::isbnFromEAN(const QString &ean)
{
    if (!ZTText::containsNonWhitespace(ean) || ean.size() < 12)
        return QString();
    const QString stripped = ZTText::stringByStrippingDashesAndWhitespace(ean);
    const QString nine = stripped.mid(3, 9);
    if (nine.size() != 9 || !ZTCodeRules::allDigits(nine))
        return QString();
    int sum = 0;
    for (qsizetype i = 0; i < 9; ++i)
        sum += nine.at(i).digitValue() * int(10 - i);
    return nine + isbnCheckCharacter(isbnCheckValue(sum));
}

QString ZTCodeFormatter::isbnFromFormattedISBN(const QString &isbn)
{
    if (isbn.isNull())
        return QString();
    if (isbnValidationAllowsASINs() && isValidASIN(isbn))
        return isbn;
    if (isbn.size() < 2)
        return isbn;
    QString out(isbn.front());
    for (qsizetype i = 1; i + 1 < isbn.size(); ++i) {
        if (isbn.at(i).isDigit())
            out.append(isbn.at(i));
    }
    return out + QString(isbn.back()).toUpper();
}

QString ZTCodeFormatter::lccnFromFormattedLCCN(const QString &lccn)
{
    if (lccn.isNull())
        return QString();
    QString out = lccn;
    const qsizetype dash = out.indexOf(QLatin1Char('-'));
    if (dash >= 0) {
        // The serial after the year is always six digits in the normalised form.
        const QString serial = out.mid(dash + 1);
        out = out.left(dash) + serial.rightJustified(6, QLatin1Char('0'));
    }
    return out.replace(QLatin1Char(' '), QLatin1Char('+'));
}
