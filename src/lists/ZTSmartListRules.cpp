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

qint64 floorDivide(qint64 a, qint64 b)
{
    return a / b - ((a % b != 0) && ((a < 0) != (b < 0)));
}

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

// The operators as the evaluators use them, read once from their English words.
enum class Cmp {
    Contains,
    DoesNotContain,
    Is,
    IsNot,
    StartsWith,
    EndsWith,
    Greater,
    Less,
    GreaterOrEqual,
    LessOrEqual,
    InRange,
    IsSet,
    IsNotSet,
    After,
    Before,
    InTheLast,
    NotInTheLast,
    Unknown
};

Cmp cmpFor(const QString &op)
{
    static const QHash<QString, Cmp> s_table{{Op::contains, Cmp::Contains},
                                             {Op::doesNotContain, Cmp::DoesNotContain},
                                             {Op::is, Cmp::Is},
                                             {Op::isNot, Cmp::IsNot},
                                             {Op::startsWith, Cmp::StartsWith},
                                             {Op::endsWith, Cmp::EndsWith},
                                             {Op::isGreaterThan, Cmp::Greater},
                                             {Op::isLessThan, Cmp::Less},
                                             {Op::isGreaterThanOrEqualTo, Cmp::GreaterOrEqual},
                                             {Op::isLessThanOrEqualTo, Cmp::LessOrEqual},
                                             {Op::isInTheRange, Cmp::InRange},
                                             {Op::isSet, Cmp::IsSet},
                                             {Op::isNotSet, Cmp::IsNotSet},
                                             {Op::isAfter, Cmp::After},
                                             {Op::isBefore, Cmp::Before},
                                             {Op::isInTheLast, Cmp::InTheLast},
                                             {Op::isNotInTheLast, Cmp::NotInTheLast}};
    return s_table.value(op, Cmp::Unknown);
}

// A null side reads as the empty text (Qt treats the two alike). An empty right
// side is found nowhere, so "contains", "starts with" and "ends with" fail on it.
bool compareText(const QString &lhs, Cmp op, const QString &rhs)
{
    switch (op) {
    case Cmp::Contains:
        return !rhs.isEmpty() && lhs.contains(rhs, Qt::CaseInsensitive);
    case Cmp::DoesNotContain:
        return rhs.isEmpty() || !lhs.contains(rhs, Qt::CaseInsensitive);
    case Cmp::Is:
        return ZTListCompare::equalCaseInsensitive(lhs, rhs);
    case Cmp::IsNot:
        return !ZTListCompare::equalCaseInsensitive(lhs, rhs);
    case Cmp::StartsWith:
        return !rhs.isEmpty() && lhs.startsWith(rhs, Qt::CaseInsensitive);
    case Cmp::EndsWith:
        return !rhs.isEmpty() && lhs.endsWith(rhs, Qt::CaseInsensitive);
    default:
        return false;
    }
}

bool compareNumbers(double lhs, Cmp op, double rhs)
{
    switch (op) {
    case Cmp::Is:
        return lhs == rhs;
    case Cmp::IsNot:
        return lhs != rhs;
    case Cmp::Greater:
        return lhs > rhs;
    case Cmp::Less:
        return lhs < rhs;
    case Cmp::GreaterOrEqual:
        return lhs >= rhs;
    case Cmp::LessOrEqual:
        return lhs <= rhs;
    default:
        return false;
    }
}

// The comparison at a precision: by year alone (2), year and month (1) or the day (0).
bool compareDates(const QDate &left, Cmp op, const QDate &right, int dateBit)
{
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
    switch (op) {
    case Cmp::Is:
        return known && order == 0;
    case Cmp::IsNot:
        return !(known && order == 0);
    case Cmp::After:
        return known && order > 0;
    case Cmp::Before:
        return known && order < 0;
    case Cmp::GreaterOrEqual:
        return known && order >= 0;
    case Cmp::LessOrEqual:
        return known && order <= 0;
    default:
        return false;
    }
}

int dateBitForKey(const ZTItem &item, const QString &bitKey)
{
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

bool ZTSmartList::evaluateLhsString(const QString &lhs, const QString &op, const QString &rhs)
{
    return compareText(lhs, cmpFor(op), rhs);
}

bool ZTSmartList::evaluateLhsNumber(double lhs, const QString &op, double rhs)
{
    return compareNumbers(lhs, cmpFor(op), rhs);
}

bool ZTSmartList::evaluateLhsDate(const QDateTime &lhs, const QString &op, const QDateTime &rhs, int dateBit)
{
    return compareDates(localDate(lhs), cmpFor(op), localDate(rhs), dateBit);
}

// A qualifier read apart once for a pass over items: the same plain lookups as
// for a single item, only not repeated for every item of a rebuild.
struct ZTSmartList::Rule {
    enum class Kind { Text, Number, Boolean, Date, Unknown };
    Kind kind = Kind::Unknown;
    Cmp op = Cmp::Unknown;
    QString key;
    QString bitKey;
    bool toMany = false;
    QString right;
    double from = 0, to = 0;
    bool range = false;
    QDate low, high;
    bool span = false;
    bool inside = true;
};

ZTSmartList::Rule ZTSmartList::ruleFromQualifier(const QVariantMap &qualifier, const QDateTime &now)
{
    Rule rule;
    const QString type = qualifier.value(Key::type).toString();
    const QVariantMap rhs = qualifier.value(Key::rhs).toMap();
    rule.key = qualifier.value(Key::lhsKey).toString();
    rule.op = cmpFor(qualifier.value(Key::op).toString());
    rule.toMany = qualifier.value(Key::toMany).toBool();
    if (type == s_text) {
        rule.kind = Rule::Kind::Text;
        rule.right = rhs.value(Key::value).toString();
    } else if (type == s_integer || type == s_rating || type == s_float) {
        rule.kind = Rule::Kind::Number;
        const bool isFloat = type == s_float;
        auto read = [isFloat](const QVariant &text) {
            return isFloat ? doubleValue(text.toString()) : double(integerValue(text.toString()));
        };
        rule.range = rule.op == Cmp::InRange;
        rule.from = read(rhs.value(rule.range ? Key::fromValue : Key::value));
        rule.to = read(rhs.value(Key::toValue));
    } else if (type == s_boolean) {
        rule.kind = Rule::Kind::Boolean;
    } else if (type == s_date) {
        rule.kind = Rule::Kind::Date;
        rule.bitKey = ZTDateUtil::bitFlagKeyForDateKey(rule.key);
        if (rule.op == Cmp::InRange) {
            rule.low = rhsDate(rhs.value(Key::fromValue).toString());
            rule.high = rhsDate(rhs.value(Key::toValue).toString());
            rule.span = true;
        } else if (rule.op == Cmp::InTheLast || rule.op == Cmp::NotInTheLast) {
            // Whole days are compared, so the cut-off is reckoned on the calendar date.
            const QDate today = (now.isValid() ? now : ZTListClock::now()).date();
            const int number = int(
                std::clamp<qint64>(integerValue(rhs.value(Key::numberValue).toString()), -1000000, 1000000));
            const QString period = rhs.value(Key::timePeriodValue).toString();
            if (period == QLatin1String("days"))
                rule.low = today.addDays(-number);
            else if (period == QLatin1String("weeks"))
                rule.low = today.addDays(-7 * qint64(number));
            else if (period == QLatin1String("months"))
                rule.low = today.addMonths(-number);
            else
                rule.low = today.addYears(-number);
            rule.high = today;
            rule.span = true;
            rule.inside = rule.op == Cmp::InTheLast;
        } else {
            rule.low = rhsDate(rhs.value(Key::value).toString());
        }
    }
    return rule;
}

ZTSmartList::Verdict ZTSmartList::evaluateRule(const ZTItem &item, const Rule &rule)
{
    auto verdict = [](bool pass) { return pass ? Verdict::Pass : Verdict::Fail; };
    switch (rule.kind) {
    case Rule::Kind::Text: {
        const QVariant value = item.valueForKey(rule.key);
        if (!rule.toMany)
            return verdict(compareText(value.toString(), rule.op, rule.right));
        const QStringList values = ZTItem::variantToStrings(value);
        if (values.isEmpty())
            return verdict(compareText(QString(), rule.op, rule.right));
        // The negative operators speak of the whole collection: no value may match.
        if (rule.op == Cmp::DoesNotContain || rule.op == Cmp::IsNot) {
            for (const QString &text : values)
                if (!compareText(text, rule.op, rule.right))
                    return Verdict::Fail;
            return Verdict::Pass;
        }
        for (const QString &text : values)
            if (compareText(text, rule.op, rule.right))
                return Verdict::Pass;
        return Verdict::Fail;
    }
    case Rule::Kind::Number: {
        auto judge = [&](const QVariant &value) {
            // A missing number is 0: an item without a price costs less than 5.
            const double number = value.isNull() ? 0.0 : value.toDouble();
            return rule.range ? compareNumbers(number, Cmp::GreaterOrEqual, rule.from) &&
                                    compareNumbers(number, Cmp::LessOrEqual, rule.to)
                              : compareNumbers(number, rule.op, rule.from);
        };
        if (!rule.toMany)
            return verdict(judge(item.valueForKey(rule.key)));
        for (const QVariant &value : valuesOf(item.valueForKey(rule.key), true))
            if (judge(value))
                return Verdict::Pass;
        return Verdict::Fail;
    }
    case Rule::Kind::Boolean:
        return verdict(item.valueForKey(rule.key).toBool() == (rule.op == Cmp::IsSet));
    case Rule::Kind::Date: {
        const int bit = dateBitForKey(item, rule.bitKey);
        auto judge = [&](const QDate &date) {
            if (!rule.span)
                return compareDates(date, rule.op, rule.low, bit);
            const bool within = compareDates(date, Cmp::GreaterOrEqual, rule.low, bit) &&
                                compareDates(date, Cmp::LessOrEqual, rule.high, bit);
            return within == rule.inside;
        };
        if (!rule.toMany)
            return verdict(judge(localDate(item.valueForKey(rule.key).toDateTime())));
        for (const QVariant &value : valuesOf(item.valueForKey(rule.key), true))
            if (judge(rhsDate(value.toString())))
                return Verdict::Pass;
        return Verdict::Fail;
    }
    case Rule::Kind::Unknown:
        break;
    }
    // A rule of a type this program does not know neither fails nor passes.
    return Verdict::Ignored;
}

std::vector<ZTSmartList::Rule> ZTSmartList::rulesForPass(const QDateTime &now) const
{
    // Each qualifier is a pure test of the item, so their order cannot change
    // the verdict; the rules on collections (authors, keywords …), which must
    // build the collection, are asked last so that the cheap ones decide first.
    std::vector<Rule> rules;
    rules.reserve(size_t(m_qualifiers.size()));
    for (const QVariant &entry : m_qualifiers)
        rules.push_back(ruleFromQualifier(entry.toMap(), now));
    std::stable_partition(rules.begin(), rules.end(), [](const Rule &rule) { return !rule.toMany; });
    return rules;
}

namespace {
template <typename Rules, typename Evaluate> bool judgeAll(const Rules &rules, bool allOf, Evaluate evaluate)
{
    for (const auto &rule : rules) {
        const auto verdict = evaluate(rule);
        using Verdict = decltype(verdict);
        if (allOf && verdict == Verdict::Fail)
            return false;
        if (!allOf && verdict == Verdict::Pass)
            return true;
    }
    return allOf;
}
} // namespace

bool ZTSmartList::itemBelongsOnList(const ZTItem &item) const
{
    return shouldUseAndQualifier() ? itemBelongsOnListUsingAndQualifier(item)
                                   : itemBelongsOnListUsingOrQualifier(item);
}

bool ZTSmartList::itemBelongsOnListUsingAndQualifier(const ZTItem &item) const
{
    return judgeAll(rulesForPass(QDateTime()), true,
                    [&](const Rule &rule) { return evaluateRule(item, rule); });
}

bool ZTSmartList::itemBelongsOnListUsingOrQualifier(const ZTItem &item) const
{
    return judgeAll(rulesForPass(QDateTime()), false,
                    [&](const Rule &rule) { return evaluateRule(item, rule); });
}

void ZTSmartList::handleItems(const QList<ZTItem *> &items)
{
    m_itemOids.clear();
    // Every item is judged at the same moment, with the rules read apart once.
    const std::vector<Rule> rules = rulesForPass(ZTListClock::now());
    const bool allOf = shouldUseAndQualifier();
    // Rows are fetched a few steps ahead: the pass waits on memory, not on the rules.
    constexpr qsizetype ahead = 6;
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (i + ahead < items.size() && items[i + ahead])
            items[i + ahead]->prefetchValues(ZTManagedObject::PrefetchTexts::Yes);
        const ZTItem *item = items[i];
        if (item && judgeAll(rules, allOf, [&](const Rule &rule) { return evaluateRule(*item, rule); }))
            m_itemOids << item->oid();
    }
    itemOidsReplaced();
    updateListData();
}
