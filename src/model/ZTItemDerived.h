#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVariant>

// The rules behind an item's derived values, gathered in one place so the item
// classes only say when to recompute them.
namespace ZTItemDerived {
QString titleWithoutLeadingArticle(const QString &title, const QString &localeCode);
QString lastNameFirst(const QString &name);
QString volumeNumberSortable(const QString &volumeNumber, const QString &previousKey);
QString locClassificationSortable(const QString &classification);
QString deweyClassNumberPrefix(const QString &classNumber);
QString deweyClassNumberDisplayString(const QString &classNumber);
QString issueNumberCountString(const QVariant &issueNumber, const QVariant &issueCount);
bool isOverdue(const QDate &due, const QDate &today = QDate::currentDate());
QString localizedRole(const QString &role);
QString formatMoney(double value, const QString &currencyCode);
// Shop links of an item: maps with "site" and "url".
QVariantList shopLinks(int kind, const QVariantMap &codes, const QString &localeCode, const QString &tag);
} // namespace ZTItemDerived
