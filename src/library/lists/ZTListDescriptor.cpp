// The tool tip of a list: how many items it holds, and for a smart list the
// paragraph that tells the user what it selects.
#include "library/lists/ZTListDescriptor.h"

#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"
#include "lists/ZTSmartList.h"
#include "model/ZTDateUtil.h"

#include <QCoreApplication>

namespace Op = ZTQualifierOperator;
namespace Key = ZTQualifierKey;

namespace {
QString tr(const char *text)
{
    return QCoreApplication::translate("Localizable", text);
}
QString tr(const QString &text)
{
    return QCoreApplication::translate("Localizable", text.toUtf8().constData());
}

QString floatText(const QVariantMap &rhs, const QString &key)
{
    const QString text = rhs.value(key).toString();
    return text.isEmpty() ? QStringLiteral("0.00") : text;
}

QString dateText(const QVariantMap &rhs, const QString &key)
{
    const QDateTime date = ZTSmartList::dateFromRhsString(rhs.value(key).toString());
    if (!date.isValid())
        return QStringLiteral("\"\"");
    return ZTDateUtil::standardDateFormatter().stringFromDate(date.date());
}

QString phrase(const QVariantMap &qualifier)
{
    const QString type = qualifier.value(Key::type).toString();
    const QString op = qualifier.value(Key::op).toString();
    const QVariantMap rhs = qualifier.value(Key::rhs).toMap();
    const QString head = QStringLiteral("%1 %2").arg(
        ZTAttributeTables::localizedLabel(qualifier.value(Key::lhs).toString()), tr(op));
    const bool range = op == Op::isInTheRange;
    auto integer = [&](const QString &key) {
        return QString::number(ZTSmartList::integerValue(rhs.value(key).toString()));
    };
    if (type == QLatin1String("text"))
        return QStringLiteral("%1 \"%2\"").arg(head, rhs.value(Key::value).toString());
    if (type == QLatin1String("integer") || type == QLatin1String("rating")) {
        if (range)
            return tr("%1 %2 to %3").arg(head, integer(Key::fromValue), integer(Key::toValue));
        return QStringLiteral("%1 %2").arg(head, integer(Key::value));
    }
    if (type == QLatin1String("float")) {
        if (range)
            return tr("%1 %2 to %3").arg(head, floatText(rhs, Key::fromValue), floatText(rhs, Key::toValue));
        return QStringLiteral("%1 %2").arg(head, floatText(rhs, Key::value));
    }
    if (type == QLatin1String("date")) {
        if (range)
            return tr("%1 %2 to %3").arg(head, dateText(rhs, Key::fromValue), dateText(rhs, Key::toValue));
        if (op == Op::isInTheLast || op == Op::isNotInTheLast)
            return QStringLiteral("%1 %2 %3")
                .arg(head, integer(Key::numberValue), tr(rhs.value(Key::timePeriodValue).toString()));
        return QStringLiteral("%1 %2").arg(head, dateText(rhs, Key::value));
    }
    // "boolean" has no right side; a type this program does not know shows as much as it can.
    return head;
}
} // namespace

QString ZTListDescriptor::descriptorForDocument(const ZTList &list, const ZTDocument &document)
{
    const QString count = document.itemDescriptionStringForCount(list.count());
    const auto *smart = dynamic_cast<const ZTSmartList *>(&list);
    if (!smart)
        return count;
    QStringList phrases;
    for (const QVariant &qualifier : smart->qualifiers())
        phrases << phrase(qualifier.toMap());
    const QString joiner = QStringLiteral(" %1 ").arg(smart->shouldUseAndQualifier() ? tr("and") : tr("or"));
    return QStringLiteral("%1\n%2").arg(count, phrases.join(joiner));
}
