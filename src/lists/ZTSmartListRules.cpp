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

qint64 floorDivide(qint64 a, qint64 b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0))); }

// The local calendar day of an instant. Asking the time zone for every item of
// a large library is slow, so the offset is remembered per quarter hour of UTC:
// zones change their offset only on quarter hours.
QDate localDate(const QDateTime &date)
{
    if (!date.isValid())
        return {};
    if (date.timeSpec() == Qt::LocalTime)
        return date.date();
    constexpr qint64 bucketSeconds = 900;
    thread_local QHash<qint64, int> offsets;
    const qint64 seconds = date.toSecsSinceEpoch();
    const qint64 bucket = floorDivide(seconds, bucketSeconds);
    auto it = offsets.constFind(bucket);
    int offset;
    if (it != offsets.constEnd()) {
        offset = *it;
    } else {
        offset = QDateTime::fromSecsSinceEpoch(bucket * bucketSeconds, Qt::LocalTime).offsetFromUtc();
        if (offsets.size() > 100000)
            offsets.clear();
        offsets.insert(bucket, offset);
    }
    return QDate(1970, 1, 1).addDays(floorDivide(seconds + offset, 86400));
}

// A right-hand date, "MM-dd-yyyy" read as the shared formatter reads it: the
// first three runs of digits are month, day and year, whatever stands between.
QDate rhsDate(const QString &text)
{
    int numbers[3] = {0, 0, 0};
    int found = 0;
    int i = 0;
    const int size = int(text.size());
    while (found < 3 && i < size) {
        if (!text.at(i).isDigit()) {
            ++i;
            continue;
        }
        qint64 number = 0;
        for (; i < size && text.at(i).isDigit(); ++i)
            number = qMin<qint64>(number * 10 + text.at(i).digitValue(), 1000000);
        numbers[found++] = int(number);
    }
    if (found < 3)
        return {};
    return QDate(numbers[2], numbers[0], numbers[1]);
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
    const QDate date = rhsDate(text);
    return date.isValid() ? QDateTime(date, QTime(0, 0)) : QDateTime();
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
    const double value = QStringView(text).mid(start, i - start).toDouble(&ok);
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
        auto judge = [&](const QVariant &value) {
            // A missing number is 0: an item without a price costs less than 5.
            const double number = value.isNull() ? 0.0 : value.toDouble();
            return range ? evaluateLhsNumber(number, Op::isGreaterThanOrEqualTo, from) &&
                               evaluateLhsNumber(number, Op::isLessThanOrEqualTo, to)
                         : evaluateLhsNumber(number, op, from);
        };
        if (!toMany)
            return verdict(judge(item.valueForKey(key)));
        for (const QVariant &value : valuesOf(item.valueForKey(key), toMany))
            if (judge(value))
                return Verdict::Pass;
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
            low = rhsDate(rhs.value(Key::fromValue).toString());
            high = rhsDate(rhs.value(Key::toValue).toString());
            span = true;
        } else if (op == Op::isInTheLast || op == Op::isNotInTheLast) {
            // Whole days are compared, so the cut-off is reckoned on the calendar date.
            const QDate today = (m_evaluationTime.isValid() ? m_evaluationTime : ZTListClock::now()).date();
            const int number = int(
                std::clamp<qint64>(integerValue(rhs.value(Key::numberValue).toString()), -1000000, 1000000));
            const QString period = rhs.value(Key::timePeriodValue).toString();
            if (period == QLatin1String("days"))
                low = today.addDays(-number);
            else if (period == QLatin1String("weeks"))
                low = today.addDays(-7 * qint64(number));
            else if (period == QLatin1String("months"))
                low = today.addMonths(-number);
            else
                low = today.addYears(-number);
            high = today;
            span = true;
            inside = op == Op::isInTheLast;
        } else {
            low = rhsDate(rhs.value(Key::value).toString());
        }
        auto judge = [&](const QDate &date) {
            if (!span)
                return compareDates(date, op, low, bit);
            const bool within = compareDates(date, Op::isGreaterThanOrEqualTo, low, bit) &&
                                compareDates(date, Op::isLessThanOrEqualTo, high, bit);
            return within == inside;
        };
        if (!toMany)
            return verdict(judge(localDate(item.valueForKey(key).toDateTime())));
        for (const QVariant &value : valuesOf(item.valueForKey(key), toMany))
            if (judge(rhsDate(value.toString())))
                return Verdict::Pass;
        return Verdict::Fail;
    }
    // A rule of a type this program does not know neither fails nor passes.
    return Verdict::Ignored;
}
