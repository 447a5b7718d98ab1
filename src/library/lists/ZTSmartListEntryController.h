#pragma once

#include "library/ZTAttributeTables.h"

#include <QDate>
#include <QHash>
#include <QSet>
#include <QStringList>
#include <QVariantMap>

// One rule row of the smart-list editor, without its widgets: the two
// pop-ups, the right-hand view in place and the contents of its fields. It
// turns the user's choices into a qualifier dictionary and back.
class ZTSmartListEntryController {
public:
    // The right-hand views; "boolean" has none.
    enum class RhsView { None, SingleTextField, RangeTextField, DateInTheLast, SingleRating, RangeRating };

    explicit ZTSmartListEntryController(const QList<ZTSmartListAttribute> &smartListDictionaryArray);

    // The shown (translated) titles, sorted; and the shown operators of the selected type.
    const QStringList &lhsTitles() const { return m_lhsTitles; }
    QStringList operatorTitles() const;
    QString selectedLhs() const { return m_selectedLhs; }
    QString selectedOperator() const { return m_selectedOperator; }
    QString type() const { return m_lhsDict.value(m_localizedLhs.value(m_selectedLhs)); }
    RhsView rhsView() const { return m_rhsView; }

    // Choosing an attribute resets the operator and empties the value.
    void selectLhs(const QString &shownTitle);
    // Choosing an operator keeps the value as far as the new view can hold it.
    void selectOperator(const QString &shownOperator);
    void updateRhs();
    void clearRhsFields();

    // The fields of the views. Texts are what the user typed; date fields hold dates.
    struct Fields {
        QString value, fromValue, toValue;
        QDate date, fromDate, toDate;
        QString numberValue;
        int timePeriodIndex = 0; // "days", "weeks", "months", "years"
        int stars = 0, fromStars = 0, toStars = 0;
    };
    Fields &fields() { return m_fields; }
    const Fields &fields() const { return m_fields; }
    static const QStringList &timePeriods();

    void handleQualifierDictionary(const QVariantMap &qualifier);
    QVariantMap qualifierDictionary() const;

    // Whether the row's remove button is on (the owner switches it).
    bool removeEnabled = false;

private:
    QVariantMap rhsDictionary() const;

    QHash<QString, QString> m_lhsDict;    // English title to type
    QHash<QString, QString> m_lhsKeyDict; // English title to attribute key
    QSet<QString> m_toManyKeys;
    QHash<QString, QString> m_localizedLhs, m_reversedLocalizedLhs; // shown to English, English to shown
    QHash<QString, QString> m_localizedOperator, m_reversedLocalizedOperator;
    QStringList m_lhsTitles;
    QString m_selectedLhs;
    QString m_selectedOperator;
    RhsView m_rhsView = RhsView::None;
    Fields m_fields;
};
