#include "library/ZTTextOrder.h"

#include <QDateTime>
#include <QLocale>

const QCollator &ZTTextOrder::collator()
{
    thread_local const QCollator instance = [] {
        // The C locale collates by code point, case and all; lists still want
        // the ordinary order there, so it borrows English rules.
        QLocale locale;
        if (locale.language() == QLocale::C)
            locale = QLocale(QLocale::English, QLocale::UnitedStates);
        QCollator c(locale);
        c.setCaseSensitivity(Qt::CaseInsensitive);
        c.setNumericMode(false);
        return c;
    }();
    return instance;
}

int ZTTextOrder::compare(const QString &a, const QString &b)
{
    const int r = collator().compare(a, b);
    return r < 0 ? -1 : (r > 0 ? 1 : 0);
}

QCollatorSortKey ZTTextOrder::sortKey(const QString &text)
{
    return collator().sortKey(text);
}

bool ZTTextOrder::isText(const QVariant &value)
{
    return value.typeId() == QMetaType::QString || value.typeId() == QMetaType::QStringList;
}

int ZTTextOrder::compareValues(const QVariant &a, const QVariant &b)
{
    if (isText(a) && isText(b)) {
        const QString left =
            a.typeId() == QMetaType::QStringList ? a.toStringList().join(QLatin1Char(' ')) : a.toString();
        const QString right =
            b.typeId() == QMetaType::QStringList ? b.toStringList().join(QLatin1Char(' ')) : b.toString();
        return compare(left, right);
    }
    const QPartialOrdering order = QVariant::compare(a, b);
    if (order == QPartialOrdering::Less)
        return -1;
    if (order == QPartialOrdering::Greater)
        return 1;
    if (order == QPartialOrdering::Equivalent)
        return 0;
    // Values of unlike kinds: fall back to their text so the order stays total.
    return compare(a.toString(), b.toString());
}
