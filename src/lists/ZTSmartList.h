#pragma once

#include "lists/ZTList.h"

#include <QDateTime>
#include <QVariantList>

#include <vector>

class ZTItem;
class ZTPatternDateFormatter;

// The words a qualifier dictionary is written in. They reach disk in every
// smart list, so they never change.
namespace ZTQualifierKey {
inline const QString type = QStringLiteral("type");
inline const QString lhs = QStringLiteral("lhs");
inline const QString lhsKey = QStringLiteral("lhsKey");
inline const QString op = QStringLiteral("operator");
inline const QString rhs = QStringLiteral("rhs");
inline const QString toMany = QStringLiteral("toMany");
inline const QString value = QStringLiteral("value");
inline const QString fromValue = QStringLiteral("fromValue");
inline const QString toValue = QStringLiteral("toValue");
inline const QString numberValue = QStringLiteral("numberValue");
inline const QString timePeriodValue = QStringLiteral("timePeriodValue");
} // namespace ZTQualifierKey

namespace ZTQualifierOperator {
inline const QString contains = QStringLiteral("contains");
inline const QString doesNotContain = QStringLiteral("does not contain");
inline const QString is = QStringLiteral("is");
inline const QString isNot = QStringLiteral("is not");
inline const QString startsWith = QStringLiteral("starts with");
inline const QString endsWith = QStringLiteral("ends with");
inline const QString isGreaterThan = QStringLiteral("is greater than");
inline const QString isLessThan = QStringLiteral("is less than");
inline const QString isInTheRange = QStringLiteral("is in the range");
inline const QString isSet = QStringLiteral("is set");
inline const QString isNotSet = QStringLiteral("is not set");
inline const QString isAfter = QStringLiteral("is after");
inline const QString isBefore = QStringLiteral("is before");
inline const QString isInTheLast = QStringLiteral("is in the last");
inline const QString isNotInTheLast = QStringLiteral("is not in the last");
// Only the evaluators use these two, to compose ranges.
inline const QString isGreaterThanOrEqualTo = QStringLiteral("is greater than or equal to");
inline const QString isLessThanOrEqualTo = QStringLiteral("is less than or equal to");
// The operators a rule of a type offers, in the editor's order.
QStringList forType(const QString &type);
} // namespace ZTQualifierOperator

// A list whose members are computed from rules (qualifiers).
class ZTSmartList : public ZTList {
public:
    static ZTSmartList *createInManagedObjectContext(ZTManagedObjectContext *context, int order);

    bool allowsItemDrop() const override { return false; }
    bool isSmartList() const override { return true; }

    // 0: every qualifier must hold; 1: any one is enough.
    int andOrFlag() const;
    void setAndOrFlag(int flag);
    bool shouldUseAndQualifier() const { return andOrFlag() == 0; }
    const QVariantList &qualifiers() const { return m_qualifiers; }
    bool hasQualifiers() const { return m_hasQualifiers; }
    void setQualifiers(const QVariantList &qualifiers); // then updateQualifierData
    void updateQualifierData();
    QDateTime expirationDate() const;
    void setExpirationDate(const QDateTime &date);

    // Membership by the rules, judged on one item.
    bool itemBelongsOnList(const ZTItem &item) const;
    bool itemBelongsOnListUsingAndQualifier(const ZTItem &item) const;
    bool itemBelongsOnListUsingOrQualifier(const ZTItem &item) const;

    // Rebuilds the member set from the items, in their order.
    void handleItems(const QList<ZTItem *> &items);
    // Lists with a rule such as "is in the last" expire a day from now.
    void updateExpirationDate();

    // The three comparators. Unknown operators answer false.
    static bool evaluateLhsString(const QString &lhs, const QString &op, const QString &rhs);
    static bool evaluateLhsNumber(double lhs, const QString &op, double rhs);
    static bool evaluateLhsDate(const QDateTime &lhs, const QString &op, const QDateTime &rhs, int dateBit);

    // Right-hand dates are written "MM-dd-yyyy" whatever the user's locale.
    static const ZTPatternDateFormatter &dateFormatter();
    static QDateTime dateFromRhsString(const QString &text);
    static QString rhsStringFromDate(const QDateTime &date);
    // Leading number of a text, as a typed field reads it: "12 pages" is 12, "abc" 0.
    static qint64 integerValue(const QString &text);
    static double doubleValue(const QString &text);

    void awakeFromInsert() override;
    void awakeFromFetch() override;

private:
    enum class Verdict { Pass, Fail, Ignored };
    struct Rule;
    static Rule ruleFromQualifier(const QVariantMap &qualifier, const QDateTime &now);
    static Verdict evaluateRule(const ZTItem &item, const Rule &rule);
    // The qualifiers read apart for a pass, those on collections last. A null
    // `now` asks the clock when a rule needs it.
    std::vector<Rule> rulesForPass(const QDateTime &now) const;

    QVariantList m_qualifiers;
    bool m_hasQualifiers = false;
};
