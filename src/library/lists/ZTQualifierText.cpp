#include "library/lists/ZTQualifierText.h"

#include "library/ZTAttributeTables.h"
#include "lists/ZTSmartList.h"

#include <QRegularExpression>

namespace Key = ZTQualifierKey;
namespace Op = ZTQualifierOperator;

namespace {

bool fail(QString *error, const QString &message)
{
    if (error)
        *error = message;
    return false;
}

// A typed number must be a number: the editor's fields refuse anything else.
bool readNumber(const QString &type, const QString &text, QString *out, QString *error)
{
    const QString trimmed = text.trimmed();
    bool ok = false;
    if (type == QLatin1String("float")) {
        trimmed.toDouble(&ok);
    } else {
        const qint64 value = trimmed.toLongLong(&ok);
        if (ok && type == QLatin1String("rating") && (value < 0 || value > 5))
            return fail(error, QStringLiteral("a rating is 0 to 5 stars, not \"%1\"").arg(text));
    }
    if (!ok)
        return fail(error, QStringLiteral("\"%1\" is not a number").arg(text));
    *out = trimmed;
    return true;
}

bool readDate(const QString &text, QString *out, QString *error)
{
    static const QRegularExpression iso(QStringLiteral("^(\\d{4})-(\\d{1,2})-(\\d{1,2})$"));
    static const QRegularExpression us(QStringLiteral("^(\\d{1,2})-(\\d{1,2})-(\\d{4})$"));
    const QString trimmed = text.trimmed();
    QDate date;
    if (const auto m = iso.match(trimmed); m.hasMatch())
        date = QDate(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
    else if (const auto m = us.match(trimmed); m.hasMatch())
        date = QDate(m.captured(3).toInt(), m.captured(1).toInt(), m.captured(2).toInt());
    if (!date.isValid())
        return fail(error, QStringLiteral("\"%1\" is not a date (MM-dd-yyyy or yyyy-MM-dd)").arg(text));
    *out = ZTSmartList::rhsStringFromDate(QDateTime(date, QTime(0, 0)));
    return true;
}

bool readValue(const QString &type, const QString &text, QString *out, QString *error)
{
    if (type == QLatin1String("date"))
        return readDate(text, out, error);
    if (type == QLatin1String("text")) {
        *out = text;
        return true;
    }
    return readNumber(type, text, out, error);
}

} // namespace

QVariantMap ZTQualifierText::makeQualifier(const QString &lhs, const QString &lhsKey, const QString &type,
                                           const QString &op, const QVariantMap &rhs, bool toMany)
{
    QVariantMap qualifier{{Key::lhs, lhs},
                          {Key::lhsKey, lhsKey},
                          {Key::type, type},
                          {Key::op, op},
                          {Key::toMany, toMany ? 1 : 0}};
    if (!rhs.isEmpty())
        qualifier.insert(Key::rhs, rhs);
    return qualifier;
}

QVariantMap ZTQualifierText::qualifierFromText(const ZTAttributeTables &tables, const QString &text,
                                               QString *error)
{
    const QStringList parts = text.split(QLatin1Char('|'));
    if (parts.size() < 2) {
        fail(error, QStringLiteral("a rule is TITLE|OPERATOR|VALUE, not \"%1\"").arg(text));
        return {};
    }
    const QString title = parts[0].trimmed();
    const QString op = parts[1].trimmed();
    // The right side may itself hold the separator.
    const QString right = parts.mid(2).join(QLatin1Char('|'));
    const ZTSmartListAttribute *attribute = tables.smartListAttribute(title);
    if (!attribute) {
        QStringList titles;
        for (const ZTSmartListAttribute &row : tables.smartListDictionaryArray())
            titles << row.title;
        fail(error, QStringLiteral("no rule attribute \"%1\" in this library (one of: %2)")
                        .arg(title, titles.join(QStringLiteral(", "))));
        return {};
    }
    const QStringList operators = Op::forType(attribute->type);
    if (!operators.contains(op)) {
        fail(error, QStringLiteral("\"%1\" is no operator for %2 (one of: %3)")
                        .arg(op, title, operators.join(QStringLiteral(", "))));
        return {};
    }
    QVariantMap qualifier =
        makeQualifier(attribute->title, attribute->key, attribute->type, op, {}, attribute->toMany);
    const QString &type = attribute->type;
    if (type == QLatin1String("boolean")) {
        if (!right.trimmed().isEmpty()) {
            fail(error, QStringLiteral("%1 takes no value").arg(title));
            return {};
        }
        return qualifier;
    }
    if (parts.size() < 3) {
        fail(error, QStringLiteral("the rule \"%1\" needs a value").arg(text));
        return {};
    }
    QVariantMap rhs;
    if (op == Op::isInTheRange) {
        const int dots = int(right.indexOf(QStringLiteral("..")));
        QString from, to;
        if (dots < 0) {
            fail(error, QStringLiteral("a range is written FROM..TO, not \"%1\"").arg(right));
            return {};
        }
        if (!readValue(type, right.left(dots), &from, error) ||
            !readValue(type, right.mid(dots + 2), &to, error))
            return {};
        rhs = {{Key::fromValue, from}, {Key::toValue, to}};
    } else if (op == Op::isInTheLast || op == Op::isNotInTheLast) {
        static const QRegularExpression period(QStringLiteral("^\\s*(\\d+)\\s*(day|week|month|year)s?\\s*$"));
        const auto m = period.match(right);
        if (!m.hasMatch()) {
            fail(error, QStringLiteral("a period is a number and days, weeks, months or years, not \"%1\"")
                            .arg(right));
            return {};
        }
        rhs = {{Key::numberValue, m.captured(1)}, {Key::timePeriodValue, m.captured(2) + QLatin1Char('s')}};
    } else {
        QString value;
        if (!readValue(type, right, &value, error))
            return {};
        rhs = {{Key::value, value}};
    }
    qualifier.insert(Key::rhs, rhs);
    return qualifier;
}
