#include "library/lists/ZTSmartListEntryController.h"

#include "lists/ZTSmartList.h"

#include <QCoreApplication>

#include <algorithm>

namespace Op = ZTQualifierOperator;
namespace Key = ZTQualifierKey;

namespace {
QString translated(const QString &text)
{
    return QCoreApplication::translate("Localizable", text.toUtf8().constData());
}

const QStringList &allOperators()
{
    static const QStringList s_all = [] {
        QStringList all;
        for (const char *type : {"text", "integer", "boolean", "date"})
            for (const QString &op : Op::forType(QLatin1String(type)))
                if (!all.contains(op))
                    all << op;
        return all;
    }();
    return s_all;
}
} // namespace

const QStringList &ZTSmartListEntryController::timePeriods()
{
    static const QStringList s_periods{QStringLiteral("days"), QStringLiteral("weeks"),
                                       QStringLiteral("months"), QStringLiteral("years")};
    return s_periods;
}

ZTSmartListEntryController::ZTSmartListEntryController(
    const QList<ZTSmartListAttribute> &smartListDictionaryArray)
{
    for (const ZTSmartListAttribute &row : smartListDictionaryArray) {
        m_lhsDict.insert(row.title, row.type);
        m_lhsKeyDict.insert(row.title, row.key);
        if (row.toMany)
            m_toManyKeys.insert(row.title);
        const QString shown = ZTAttributeTables::localizedLabel(row.title);
        m_localizedLhs.insert(shown, row.title);
        m_reversedLocalizedLhs.insert(row.title, shown);
        m_lhsTitles << shown;
    }
    for (const QString &op : allOperators()) {
        m_localizedOperator.insert(translated(op), op);
        m_reversedLocalizedOperator.insert(op, translated(op));
    }
    std::sort(m_lhsTitles.begin(), m_lhsTitles.end());
    if (!m_lhsTitles.isEmpty())
        selectLhs(m_lhsTitles.first());
}

QStringList ZTSmartListEntryController::operatorTitles() const
{
    QStringList titles;
    for (const QString &op : Op::forType(type()))
        titles << m_reversedLocalizedOperator.value(op, op);
    return titles;
}

void ZTSmartListEntryController::selectLhs(const QString &shownTitle)
{
    if (!m_localizedLhs.contains(shownTitle))
        return;
    m_selectedLhs = shownTitle;
    const QStringList operators = operatorTitles();
    m_selectedOperator = operators.isEmpty() ? QString() : operators.first();
    clearRhsFields();
    updateRhs();
}

void ZTSmartListEntryController::selectOperator(const QString &shownOperator)
{
    if (!operatorTitles().contains(shownOperator))
        return;
    m_selectedOperator = shownOperator;
    updateRhs();
}

void ZTSmartListEntryController::clearRhsFields()
{
    m_fields = Fields();
}

void ZTSmartListEntryController::updateRhs()
{
    const QString kind = type();
    const QString op = m_localizedOperator.value(m_selectedOperator);
    const bool range = op == Op::isInTheRange;
    const RhsView previous = m_rhsView;
    if (kind == QLatin1String("boolean") || kind.isEmpty())
        m_rhsView = RhsView::None;
    else if (kind == QLatin1String("rating"))
        m_rhsView = range ? RhsView::RangeRating : RhsView::SingleRating;
    else if (op == Op::isInTheLast || op == Op::isNotInTheLast)
        m_rhsView = RhsView::DateInTheLast;
    else
        m_rhsView = range ? RhsView::RangeTextField : RhsView::SingleTextField;

    // The value moves between the single and the range form of a view without
    // overwriting a field that already holds something.
    Fields &f = m_fields;
    if (previous == RhsView::SingleTextField && m_rhsView == RhsView::RangeTextField) {
        if (f.fromValue.isEmpty())
            f.fromValue = f.value;
        if (!f.fromDate.isValid())
            f.fromDate = f.date;
    } else if (previous == RhsView::RangeTextField && m_rhsView == RhsView::SingleTextField) {
        if (f.value.isEmpty())
            f.value = f.fromValue;
        if (!f.date.isValid())
            f.date = f.fromDate;
    } else if (previous == RhsView::SingleRating && m_rhsView == RhsView::RangeRating) {
        if (f.fromStars == 0)
            f.fromStars = f.stars;
    } else if (previous == RhsView::RangeRating && m_rhsView == RhsView::SingleRating) {
        if (f.stars == 0)
            f.stars = f.fromStars;
    }
}

void ZTSmartListEntryController::handleQualifierDictionary(const QVariantMap &qualifier)
{
    // A title or operator that is not offered selects nothing: the row keeps its choice.
    const QString lhs = m_reversedLocalizedLhs.value(qualifier.value(Key::lhs).toString());
    if (!lhs.isEmpty() && lhs != m_selectedLhs)
        selectLhs(lhs);
    const QString op = m_reversedLocalizedOperator.value(qualifier.value(Key::op).toString());
    if (operatorTitles().contains(op))
        m_selectedOperator = op;
    updateRhs();
    clearRhsFields();

    const QVariantMap rhs = qualifier.value(Key::rhs).toMap();
    const QString kind = type();
    auto text = [&](const QString &key) {
        const QString stored = rhs.value(key).toString();
        if (kind == QLatin1String("integer"))
            return stored.isEmpty() ? QString() : QString::number(ZTSmartList::integerValue(stored));
        if (kind == QLatin1String("float"))
            return stored.isEmpty() ? QString() : QString::number(ZTSmartList::doubleValue(stored), 'f', 2);
        return stored;
    };
    auto date = [&](const QString &key) {
        return ZTSmartList::dateFromRhsString(rhs.value(key).toString()).date();
    };
    auto stars = [&](const QString &key) {
        return int(std::clamp<qint64>(ZTSmartList::integerValue(rhs.value(key).toString()), 0, 5));
    };
    Fields &f = m_fields;
    const bool isDate = kind == QLatin1String("date");
    switch (m_rhsView) {
    case RhsView::SingleTextField:
        if (isDate)
            f.date = date(Key::value);
        else
            f.value = text(Key::value);
        break;
    case RhsView::RangeTextField:
        if (isDate) {
            f.fromDate = date(Key::fromValue);
            f.toDate = date(Key::toValue);
        } else {
            f.fromValue = text(Key::fromValue);
            f.toValue = text(Key::toValue);
        }
        break;
    case RhsView::DateInTheLast:
        f.numberValue = rhs.value(Key::numberValue).toString();
        f.timePeriodIndex = qMax(0, int(timePeriods().indexOf(rhs.value(Key::timePeriodValue).toString())));
        break;
    case RhsView::SingleRating:
        f.stars = stars(Key::value);
        break;
    case RhsView::RangeRating:
        f.fromStars = stars(Key::fromValue);
        f.toStars = stars(Key::toValue);
        break;
    case RhsView::None:
        break;
    }
}

QVariantMap ZTSmartListEntryController::rhsDictionary() const
{
    const Fields &f = m_fields;
    const bool isDate = type() == QLatin1String("date");
    auto dateText = [](const QDate &date) {
        return date.isValid() ? ZTSmartList::rhsStringFromDate(QDateTime(date, QTime(0, 0))) : QString();
    };
    switch (m_rhsView) {
    case RhsView::SingleTextField:
        return {{Key::value, isDate ? dateText(f.date) : f.value}};
    case RhsView::RangeTextField:
        return {{Key::fromValue, isDate ? dateText(f.fromDate) : f.fromValue},
                {Key::toValue, isDate ? dateText(f.toDate) : f.toValue}};
    case RhsView::DateInTheLast:
        return {{Key::numberValue, f.numberValue},
                {Key::timePeriodValue, timePeriods().value(f.timePeriodIndex, timePeriods().first())}};
    case RhsView::SingleRating:
        return {{Key::value, QString::number(f.stars)}};
    case RhsView::RangeRating:
        return {{Key::fromValue, QString::number(f.fromStars)}, {Key::toValue, QString::number(f.toStars)}};
    case RhsView::None:
        break;
    }
    return {};
}

QVariantMap ZTSmartListEntryController::qualifierDictionary() const
{
    const QString lhs = m_localizedLhs.value(m_selectedLhs);
    QVariantMap qualifier{{Key::lhs, lhs},
                          {Key::op, m_localizedOperator.value(m_selectedOperator)},
                          {Key::type, m_lhsDict.value(lhs)},
                          {Key::lhsKey, m_lhsKeyDict.value(lhs)},
                          {Key::toMany, m_toManyKeys.contains(lhs) ? 1 : 0}};
    const QVariantMap rhs = rhsDictionary();
    if (!rhs.isEmpty())
        qualifier.insert(Key::rhs, rhs);
    return qualifier;
}
