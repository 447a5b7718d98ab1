#include "model/ZTItemDerived.h"

// Interim forms until the full rules land; each is replaced by its complete rule.
QString ZTItemDerived::titleWithoutLeadingArticle(const QString &title, const QString &) { return title; }
QString ZTItemDerived::lastNameFirst(const QString &name) { return name; }
QString ZTItemDerived::volumeNumberSortable(const QString &volumeNumber, const QString &) { return volumeNumber; }
QString ZTItemDerived::locClassificationSortable(const QString &classification) { return classification; }
QString ZTItemDerived::deweyClassNumberPrefix(const QString &classNumber) { return classNumber.left(3); }
QString ZTItemDerived::deweyClassNumberDisplayString(const QString &classNumber) { return classNumber.left(3); }
QString ZTItemDerived::issueNumberCountString(const QVariant &, const QVariant &) { return {}; }
bool ZTItemDerived::isOverdue(const QDate &due, const QDate &today) { return due.isValid() && due < today; }
QString ZTItemDerived::localizedRole(const QString &role) { return role; }
QString ZTItemDerived::formatMoney(double value, const QString &) { return QString::number(value, 'f', 2); }
QVariantList ZTItemDerived::shopLinks(int, const QVariantMap &, const QString &, const QString &) { return {}; }
