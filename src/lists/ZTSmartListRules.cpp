// How one qualifier is judged against one item, and the three comparators.
#include "lists/ZTSmartList.h"

#include "lists/ZTListClock.h"
#include "lists/ZTListCompare.h"
#include "model/ZTDateUtil.h"
#include "model/ZTItem.h"
#include "model/ZTPatternDateFormatter.h"

#include <algorithm>
#include <limits>

namespace Op = ZTQualifierOperator;
namespace Key = ZTQualifierKey;

namespace {
const QString s_text = QStringLiteral("text");
const QString s_integer = QStringLiteral("integer");
const QString s_float = QStringLiteral("float");
const QString s_rating = QStringLiteral("rating");
const QString s_boolean = QStringLiteral("boolean");
const QString s_date = QStringLiteral("date");

int skipSpace(const QString &text)
{
    int i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    return i;
}

int skipDigits(const QString &text, int i)
{
    while (i < text.size() && text.at(i) >= QLatin1Char('0') && text.at(i) <= QLatin1Char('9'))
        ++i;
    return i;
}

QDate localDate(const QDateTime &date)
{
    return date.isValid() ? date.toLocalTime().date() : QDate();
}

// The comparison at a precision: by year alone (2), year and month (1) or the day (0).
bool compareDates(const QDate &left, const QString &op, const QDate &right, int dateBit)
{
    if (op.isEmpty())
        return false;
    const int bit = qBound(0, dateBit, 2);
    const bool known = left.isValid() && right.isValid();
    int order = 0;
    if (known) {
        if (left.year() != right.year())
            order = left.year() < right.year() ? -1 : 1;
        else if (bit < 2 && left.month() != right.month())
            order = left.month() < right.month() ? -1 : 1;
        else if (bit == 0 && left.day() != right.day())
            order = left.day() < right.day() ? -1 : 1;
    }
    // A missing date is the same as, before or after nothing: only "is not" holds.
    if (op == Op::is)
        return known && order == 0;
    if (op == Op::isNot)
        return !(known && order == 0);
    if (op == Op::isAfter)
        return known && order > 0;
    if (op == Op::isBefore)
        return known && order < 0;
    if (op == Op::isGreaterThanOrEqualTo)
        return known && order >= 0;
    if (op == Op::isLessThanOrEqualTo)
        return known && order <= 0;
    return false;
}

int dateBitForKey(const ZTItem &item, const QString &key)
{
    const QString bitKey = ZTDateUtil::bitFlagKeyForDateKey(key);
    if (bitKey.isEmpty())
        return 0;
    return int(std::clamp<qint64>(item.valueForKey(bitKey).toLongLong(), 0, 2));
}

// The values a qualifier looks at: one, or the members of a to-many value. An
// empty collection is judged as one missing value.
QVariantList valuesOf(const QVariant &value, bool toMany)
{
    if (!toMany)
        return {value};
    QVariantList values;
    for (const QString &text : ZTItem::variantToStrings(value))
        values << text;
    if (values.isEmpty())
        values << QVariant();
    return values;
}

} // namespace

QStringList ZTQualifierOperator::forType(const QString &type)
{
    if (type == s_text)
        return {contains, doesNotContain, is, isNot, startsWith, endsWith};
    if (type == s_integer || type == s_float || type == s_rating)
        return {is, isNot, isGreaterThan, isLessThan, isInTheRange};
    if (type == s_boolean)
        return {isSet, isNotSet};
    if (type == s_date)
        return {is, isNot, isAfter, isBefore, isInTheLast, isNotInTheLast, isInTheRange};
    return {};
}

const ZTPatternDateFormatter &ZTSmartList::dateFormatter()
{
    static const ZTPatternDateFormatter s_formatter(QStringLiteral("MM-dd-yyyy"));
    return s_formatter;
}

QDateTime ZTSmartList::dateFromRhsString(const QString &text)
{
    return text.isEmpty() ? QDateTime() : dateFormatter().dateFromString(text);
}

QString ZTSmartList::rhsStringFromDate(const QDateTime &date)
{
    return dateFormatter().stringFromDate(date);
}

qint64 ZTSmartList::integerValue(const QString &text)
{
    int i = skipSpace(text);
    bool negative = false;
    if (i < text.size() && (text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+')))
        negative = text.at(i++) == QLatin1Char('-');
    qint64 value = 0;
    for (; i < text.size() && text.at(i) >= QLatin1Char('0') && text.at(i) <= QLatin1Char('9'); ++i) {
        const int digit = text.at(i).unicode() - '0';
        if (value > (std::numeric_limits<qint64>::max() - digit) / 10)
            return negative ? std::numeric_limits<qint64>::min() : std::numeric_limits<qint64>::max();
        value = value * 10 + digit;
    }
    return negative ? -value : value;
}

double ZTSmartList::doubleValue(const QString &text)
{
    const int start = skipSpace(text);
    int i = start;
    if (i < text.size() && (text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+')))
        ++i;
    const int digitsStart = i;
    i = skipDigits(text, i);
    bool anyDigit = i > digitsStart;
    if (i < text.size() && text.at(i) == QLatin1Char('.')) {
        const int fraction = i + 1;
        i = skipDigits(text, fraction);
        anyDigit = anyDigit || i > fraction;
    }
    if (!anyDigit)
        return 0.0;
    if (i < text.size() && (text.at(i) == QLatin1Char('e') || text.at(i) == QLatin1Char('E'))) {
        int j = i + 1;
        if (j < text.size() && (text.at(j) == QLatin1Char('-') || text.at(j) == QLatin1Char('+')))
            ++j;
        const int exponentEnd = skipDigits(text, j);
        if (exponentEnd > j)
            i = exponentEnd;
    }
    bool ok = false;
    const double value = text.mid(start, i - start).toDouble(&ok);
    return ok ? value : 0.0;
}

// A null side reads as the empty text (Qt treats the two alike). An empty right
// side is found nowhere, so "contains", "starts with" and "ends with" fail on it.
bool ZTSmartList::evaluateLhsString(const QString &lhs, const QString &op, const QString &rhs)
{
    if (op == Op::contains)
        return !rhs.isEmpty() && lhs.contains(rhs, Qt::CaseInsensitive);
    if (op == Op::doesNotContain)
        return rhs.isEmpty() || !lhs.contains(rhs, Qt::CaseInsensitive);
    if (op == Op::is)
        return ZTListCompare::equalCaseInsensitive(lhs, rhs);
    if (op == Op::isNot)
        return !ZTListCompare::equalCaseInsensitive(lhs, rhs);
    if (op == Op::startsWith)
        return !rhs.isEmpty() && lhs.startsWith(rhs, Qt::CaseInsensitive);
    if (op == Op::endsWith)
        return !rhs.isEmpty() && lhs.endsWith(rhs, Qt::CaseInsensitive);
    return false;
}

bool ZTSmartList::evaluateLhsNumber(double lhs, const QString &op, double rhs)
{
    if (op == Op::is)
        return lhs == rhs;
    if (op == Op::isNot)
        return lhs != rhs;
    if (op == Op::isGreaterThan)
        return lhs > rhs;
    if (op == Op::isLessThan)
        return lhs < rhs;
    if (op == Op::isGreaterThanOrEqualTo)
        return lhs >= rhs;
    if (op == Op::isLessThanOrEqualTo)
        return lhs <= rhs;
    return false;
}

bool ZTSmartList::evaluateLhsDate(const QDateTime &lhs, const QString &op, const QDateTime &rhs, int dateBit)
{
    return compareDates(localDate(lhs), op, localDate(rhs), dateBit);
}

ZTSmartList::Verdict ZTSmartList::evaluateQualifier(const ZTItem &item, const QVariantMap &qualifier) const
{
    const QString type = qualifier.value(Key::type).toString();
    const QString key = qualifier.value(Key::lhsKey).toString();
    const QString op = qualifier.value(Key::op).toString();
    const QVariantMap rhs = qualifier.value(Key::rhs).toMap();
    const bool toMany = qualifier.value(Key::toMany).toBool();
    auto verdict = [](bool pass) { return pass ? Verdict::Pass : Verdict::Fail; };

    if (type == s_text) {
        const QString right = rhs.value(Key::value).toString();
        const QVariant value = item.valueForKey(key);
        if (!toMany)
            return verdict(evaluateLhsString(value.toString(), op, right));
        const QStringList values = ZTItem::variantToStrings(value);
        if (values.isEmpty())
            return verdict(evaluateLhsString(QString(), op, right));
        // The negative operators speak of the whole collection: no value may match.
        if (op == Op::doesNotContain || op == Op::isNot) {
            for (const QString &text : values)
                if (!evaluateLhsString(text, op, right))
                    return Verdict::Fail;
            return Verdict::Pass;
        }
        for (const QString &text : values)
            if (evaluateLhsString(text, op, right))
                return Verdict::Pass;
        return Verdict::Fail;
    }

    if (type == s_integer || type == s_rating || type == s_float) {
        const bool isFloat = type == s_float;
        auto read = [isFloat](const QVariant &text) {
            return isFloat ? doubleValue(text.toString()) : double(integerValue(text.toString()));
        };
        const bool range = op == Op::isInTheRange;
        const double from = read(rhs.value(range ? Key::fromValue : Key::value));
        const double to = read(rhs.value(Key::toValue));
        for (const QVariant &value : valuesOf(item.valueForKey(key), toMany)) {
            // A missing number is 0: an item without a price costs less than 5.
            const double number = value.isNull() ? 0.0 : value.toDouble();
            const bool pass = range ? evaluateLhsNumber(number, Op::isGreaterThanOrEqualTo, from) &&
                                          evaluateLhsNumber(number, Op::isLessThanOrEqualTo, to)
                                    : evaluateLhsNumber(number, op, from);
            if (pass)
                return Verdict::Pass;
        }
        return Verdict::Fail;
    }

    if (type == s_boolean)
        return verdict(item.valueForKey(key).toBool() == (op == Op::isSet));

    if (type == s_date) {
        const int bit = dateBitForKey(item, key);
        QDate low, high;
        bool span = false;
        bool inside = true;
        if (op == Op::isInTheRange) {
            low = dateFromRhsString(rhs.value(Key::fromValue).toString()).date();
            high = dateFromRhsString(rhs.value(Key::toValue).toString()).date();
            span = true;
        } else if (op == Op::isInTheLast || op == Op::isNotInTheLast) {
            const QDateTime now = ZTListClock::now();
            const int number = int(
                std::clamp<qint64>(integerValue(rhs.value(Key::numberValue).toString()), -1000000, 1000000));
            const QString period = rhs.value(Key::timePeriodValue).toString();
            QDateTime cutOff;
            if (period == QLatin1String("days"))
                cutOff = now.addDays(-number);
            else if (period == QLatin1String("weeks"))
                cutOff = now.addDays(-7 * qint64(number));
            else if (period == QLatin1String("months"))
                cutOff = now.addMonths(-number);
            else
                cutOff = now.addYears(-number);
            low = cutOff.date();
            high = now.date();
            span = true;
            inside = op == Op::isInTheLast;
        } else {
            low = dateFromRhsString(rhs.value(Key::value).toString()).date();
        }
        for (const QVariant &value : valuesOf(item.valueForKey(key), toMany)) {
            const QDate date =
                toMany ? dateFromRhsString(value.toString()).date() : localDate(value.toDateTime());
            bool pass;
            if (span) {
                const bool within = compareDates(date, Op::isGreaterThanOrEqualTo, low, bit) &&
                                    compareDates(date, Op::isLessThanOrEqualTo, high, bit);
                pass = within == inside;
            } else {
                pass = compareDates(date, op, low, bit);
            }
            if (pass)
                return Verdict::Pass;
        }
        return Verdict::Fail;
    }
    // A rule of a type this program does not know neither fails nor passes.
    return Verdict::Ignored;
}
