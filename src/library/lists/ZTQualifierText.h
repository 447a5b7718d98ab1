#pragma once

#include <QString>
#include <QVariantMap>

class ZTAttributeTables;

// A rule written as one line of text, "Author|contains|Ann": the English
// title of the kind's rule table, the operator and the right side. A range is
// "from..to", a period "5 days", a date "MM-dd-yyyy" or "yyyy-MM-dd"; a yes/no
// rule has no right side ("Signed|is set").
namespace ZTQualifierText {
// A qualifier dictionary from its parts; no right side is stored when `rhs` is empty.
QVariantMap makeQualifier(const QString &lhs, const QString &lhsKey, const QString &type, const QString &op,
                          const QVariantMap &rhs = {}, bool toMany = false);
// The qualifier dictionary, or an empty map with *error saying what is wrong.
QVariantMap qualifierFromText(const ZTAttributeTables &tables, const QString &text, QString *error);
} // namespace ZTQualifierText
