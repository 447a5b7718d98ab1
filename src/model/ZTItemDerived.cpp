#include "model/ZTItemDerived.h"

#include "model/ZTCodeFormatter.h"
#include "model/ZTItemSortKeys.h"
#include "model/ZTItemStatus.h"
#include "model/ZTItemText.h"
#include "model/ZTMoneyFormatter.h"
#include "model/ZTShopLinks.h"

#include <QCoreApplication>

QString ZTItemDerived::titleWithoutLeadingArticle(const QString &title, const QString &localeCode)
{
    return ZTItemText::titleWithoutLeadingArticle(title, localeCode);
}

QString ZTItemDerived::lastNameFirst(const QString &name)
{
    return ZTItemText::lastNameFirst(name);
}

QString ZTItemDerived::volumeNumberSortable(const QString &volumeNumber, const QString &previousKey)
{
    return ZTItemSortKeys::volumeNumberSortable(volumeNumber, previousKey);
}

QString ZTItemDerived::locClassificationSortable(const QString &classification)
{
    return ZTItemSortKeys::locClassificationSortable(classification);
}

QString ZTItemDerived::deweyClassNumberPrefix(const QString &classNumber)
{
    return ZTItemSortKeys::deweyClassNumberPrefix(classNumber);
}

QString ZTItemDerived::deweyClassNumberDisplayString(const QString &classNumber)
{
    return ZTItemSortKeys::deweyClassNumberDisplayString(classNumber);
}

QString ZTItemDerived::issueNumberCountString(const QVariant &issueNumber, const QVariant &issueCount)
{
    return ZTItemText::issueNumberCountString(issueNumber, issueCount);
}

bool ZTItemDerived::isOverdue(const QDate &due, const QDate &today)
{
    return ZTItemStatus::isOverdue(due, today);
}

QString ZTItemDerived::localizedRole(const QString &role)
{
    return QCoreApplication::translate("Localizable", role.toUtf8().constData());
}

QString ZTItemDerived::formatMoney(double value, const QString &currencyCode)
{
    return ZTMoneyFormatter::formatterForLocale(currencyCode).string(value);
}

QVariantList ZTItemDerived::shopLinks(int kind, const QVariantMap &codes, const QString &localeCode,
                                      const QString &tag)
{
    return ZTShopLinks::urlDictionariesWithAssociateTag(
        ZTMediaKind(kind), codes, localeCode, tag, [](const QString &isbn) -> QString {
            if (!ZTCodeFormatter::isValidISBNorASIN(isbn))
                return {};
            return ZTCodeFormatter::isbnFromFormattedISBN(isbn);
        });
}
