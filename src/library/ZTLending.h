#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

class ZTItem;

// Recording and showing loans. An item is lent out while it has a lending
// context; these operations keep the context, the borrower's sort name and
// the overdue flag in step.
namespace ZTLending {

// One line of the detail panel: the localised label, the value as shown and
// whether there is a value (which picks the label's colour).
struct Line {
    QString key;
    QString label;
    QString value;
    bool present = false;

    QString text() const { return QStringLiteral("%1: ").arg(label) + value; }
};

// "Lent To Name", "Lent To Email", "Date Lent", "Date Due", in that order.
QList<Line> lendingLines(const ZTItem &item);
QString lendingText(const ZTItem &item);

// Lends the item: a context with the borrower, the address, today as the
// lending date unless given, and the due date if any. An address left empty
// is taken from the contacts when the name is one of them.
void lendItem(ZTItem &item, const QString &name, const QString &email, const QDateTime &dateLent,
              const QDateTime &dateDue);
// Ends the loan: the context and its details go at once.
void returnItem(ZTItem &item);

} // namespace ZTLending
