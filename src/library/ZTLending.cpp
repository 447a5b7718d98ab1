#include "library/ZTLending.h"

#include "library/ZTAttributeTables.h"
#include "library/ZTContacts.h"
#include "model/ZTDateUtil.h"
#include "model/ZTItem.h"

#include <QStringList>

QList<ZTLending::Line> ZTLending::lendingLines(const ZTItem &item)
{
    auto line = [](const char *key, const char *label, const QString &value) {
        Line l;
        l.key = QLatin1String(key);
        l.label = ZTAttributeTables::localizedLabel(QLatin1String(label));
        l.value = value;
        l.present = !value.isEmpty();
        return l;
    };
    auto date = [](const QDateTime &d) {
        return d.isValid() ? ZTDateUtil::displayString(d, ZTDateBit::FullDate) : QString();
    };
    return {line("lentToName", "Lent To Name", item.lentToName()),
            line("lentToEmail", "Lent To Email", item.lentToEmail()),
            line("dateLent", "Date Lent", date(item.dateLent())),
            line("dateDue", "Date Due", date(item.dateDue()))};
}

QString ZTLending::lendingText(const ZTItem &item)
{
    QStringList lines;
    for (const Line &l : lendingLines(item))
        lines << l.text();
    return lines.join(QLatin1Char('\n'));
}

void ZTLending::lendItem(ZTItem &item, const QString &name, const QString &email, const QDateTime &dateLent,
                         const QDateTime &dateDue)
{
    item.setLentOutFlag(true);
    item.setLentToName(name.trimmed());
    QString address = email.trimmed();
    if (address.isEmpty())
        address = ZTContacts::shared().emailForName(name.trimmed());
    item.setLentToEmail(address);
    item.setDateLent(dateLent.isValid() ? dateLent : QDateTime::currentDateTime());
    item.setDateDue(dateDue);
}

void ZTLending::returnItem(ZTItem &item)
{
    item.setLentOutFlag(false);
}
