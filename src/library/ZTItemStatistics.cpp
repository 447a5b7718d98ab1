#include "library/ZTItemStatistics.h"

#include "base/ZTSettings.h"
#include "library/ZTDocument.h"
#include "library/ZTItemTable.h"
#include "library/ZTTextOrder.h"
#include "model/ZTItem.h"
#include "model/ZTMoneyFormatter.h"

#include <QCoreApplication>
#include <QHash>
#include <QLocale>

#include <algorithm>

namespace {
QString tr(const char *text)
{
    return QCoreApplication::translate("Localizable", text);
}
} // namespace

ZTItemStatistics::Nouns ZTItemStatistics::nounsForKind(ZTMediaKind kind)
{
    switch (kind) {
    case ZTMediaKind::Book:
        return {tr("book"), tr("books"), QStringLiteral("pages"), tr("page"), tr("pages")};
    case ZTMediaKind::Album:
        return {tr("album"), tr("albums"), QStringLiteral("tracks.@count"), tr("track"), tr("tracks")};
    case ZTMediaKind::Movie:
        return {tr("movie"), tr("movies"), QStringLiteral("duration"), tr("minute"), tr("minutes")};
    case ZTMediaKind::Comic:
        return {tr("comic"), tr("comics"), QStringLiteral("pages"), tr("page"), tr("pages")};
    }
    return {};
}

QString ZTItemStatistics::displayTextForInt(qint64 value, const QString &singular, const QString &plural)
{
    // "#,##0;0;#,##0": grouped, and a negative number shows without its sign.
    static const QLocale grouping(QLocale::English, QLocale::UnitedStates);
    const QString number = value == 0 ? QStringLiteral("0") : grouping.toString(value < 0 ? -value : value);
    return number + QLatin1Char(' ') + (value == 1 ? singular : plural);
}

QVariantMap ZTItemStatistics::defaultStatisticsDisplayDictionary()
{
    return {{QStringLiteral("itemCount"), 1},
            {QStringLiteral("subItemCount"), 1},
            {QStringLiteral("totalValue"), 1},
            {QStringLiteral("totalPaid"), 1}};
}

QVariantMap ZTItemStatistics::statisticsDisplayDictionaryFromSettings()
{
    const QVariantMap stored = ZTSettings::value(ZTSettingsKey::StatisticsDisplay).toMap();
    return stored.isEmpty() ? defaultStatisticsDisplayDictionary() : stored;
}

QStringList ZTItemStatistics::formattedTotals(const QHash<QString, double> &totals)
{
    struct Entry {
        QString text;
        QString code;
        double amount;
    };
    QList<Entry> entries;
    for (auto it = totals.constBegin(); it != totals.constEnd(); ++it)
        entries.append({QStringLiteral("%1-%2").arg(QString::number(it.value(), 'g', 15), it.key()), it.key(),
                        it.value()});
    std::sort(entries.begin(), entries.end(),
              [](const Entry &a, const Entry &b) { return ZTTextOrder::compare(a.text, b.text) < 0; });
    QStringList result;
    for (auto it = entries.crbegin(); it != entries.crend(); ++it)
        result << ZTMoneyFormatter::formatterForLocale(it->code).string(it->amount);
    return result;
}

QString ZTItemStatistics::itemStatisticsStringForOids(const ZTDocument &document, const QStringList &oids,
                                                      const QVariantMap &display)
{
    const Nouns nouns = nounsForKind(document.mediaKind());
    const bool countsTracks = nouns.intCountKeyPath == QLatin1String("tracks.@count");
    const QString countKey = countsTracks ? QStringLiteral("tracks") : nouns.intCountKeyPath;
    const QString price = QStringLiteral("price");
    const QString pricePaid = QStringLiteral("pricePaid");
    qint64 itemCount = 0;
    qint64 subItemCount = 0;
    // Totals gather per currency row; rows become codes once, at the end.
    QHash<const ZTManagedObject *, double> valueByRow, paidByRow;
    const ZTItemTable table(document);
    const ZTItem::KeyReader countReader = table.reader(countKey);
    const ZTItem::KeyReader priceReader = table.reader(price);
    const ZTItem::KeyReader pricePaidReader = table.reader(pricePaid);
    const ZTResolvedItems items = table.items(oids);
    for (qsizetype row = 0; row < items.size(); ++row) {
        items.prefetchAhead(row);
        const ZTItem *item = items[row];
        if (!item)
            continue;
        ++itemCount;
        const QVariant count = countReader.read(*item);
        subItemCount += countsTracks ? ZTItem::variantToStrings(count).size() : count.toLongLong();
        const QVariant p = priceReader.read(*item);
        if (p.isValid() && !p.isNull())
            valueByRow[item->priceLocaleRow()] += p.toDouble();
        const QVariant pp = pricePaidReader.read(*item);
        if (pp.isValid() && !pp.isNull())
            paidByRow[item->pricePaidLocaleRow()] += pp.toDouble();
    }
    auto byCode = [](const QHash<const ZTManagedObject *, double> &byRow) {
        QHash<QString, double> totals;
        for (auto it = byRow.constBegin(); it != byRow.constEnd(); ++it)
            totals[ZTItem::localeCodeOfRow(it.key())] += it.value();
        return totals;
    };
    const QHash<QString, double> value = byCode(valueByRow);
    const QHash<QString, double> paid = byCode(paidByRow);
    QString text;
    auto append = [&text](const QString &part) {
        if (!text.isEmpty())
            text += QStringLiteral(", ");
        text += part;
    };
    if (display.value(QStringLiteral("itemCount")).toBool())
        append(displayTextForInt(itemCount, nouns.itemNameSingular, nouns.itemNamePlural));
    if (display.value(QStringLiteral("subItemCount")).toBool())
        append(displayTextForInt(subItemCount, nouns.intCountSingularString, nouns.intCountPluralString));
    const QStringList values = formattedTotals(value);
    if (display.value(QStringLiteral("totalValue")).toBool() && !values.isEmpty())
        append(QStringLiteral("%1: %2").arg(tr("total value"), values.join(QStringLiteral(" + "))));
    const QStringList paidValues = formattedTotals(paid);
    if (display.value(QStringLiteral("totalPaid")).toBool() && !paidValues.isEmpty())
        append(QStringLiteral("%1: %2").arg(tr("amount paid"), paidValues.join(QStringLiteral(" + "))));
    return text;
}
