#pragma once

#include "model/ZTMediaKind.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

class ZTDocument;

// The statistics line under the item table: how many items, how many pages
// (tracks, minutes), and what they are worth, each currency on its own.
namespace ZTItemStatistics {

struct Nouns {
    QString itemNameSingular;
    QString itemNamePlural;
    QString intCountKeyPath; // "pages", "tracks.@count" or "duration"
    QString intCountSingularString;
    QString intCountPluralString;
};
Nouns nounsForKind(ZTMediaKind kind);

// The number grouped as "#,##0", a blank, and the singular only for exactly 1.
QString displayTextForInt(qint64 value, const QString &singular, const QString &plural);

// Which parts show: `itemCount`, `subItemCount`, `totalValue`, `totalPaid`.
QVariantMap defaultStatisticsDisplayDictionary();
// The settings' choice, or every part when nothing is stored.
QVariantMap statisticsDisplayDictionaryFromSettings();

// The amounts of one total, one per currency, as shown ("$12.00", "€3,50").
QStringList formattedTotals(const QHash<QString, double> &totals);

QString itemStatisticsStringForOids(const ZTDocument &document, const QStringList &oids,
                                    const QVariantMap &statisticsDisplayDictionary);

} // namespace ZTItemStatistics
