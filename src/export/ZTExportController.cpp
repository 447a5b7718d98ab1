#include "export/ZTExportController.h"

#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"
#include "model/ZTDateUtil.h"
#include "model/ZTItem.h"
#include "model/ZTMoneyFormatter.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QTimeZone>

#include <algorithm>

namespace {
QString tr(const char *text)
{
    return QCoreApplication::translate("Localizable", text);
}

bool isBlank(const QVariant &value)
{
    return !value.isValid() || value.isNull();
}
} // namespace

ZTExportController::ZTExportController(ZTDocument *document) : ZTExportFormatController(document) {}

QString ZTExportController::title() const
{
    return tr("Text file");
}

void ZTExportController::reset()
{
    m_lineBreak = LineBreak::LF;
}

QString ZTExportController::lineBreak() const
{
    switch (m_lineBreak) {
    case LineBreak::CR:
        return QStringLiteral("\r");
    case LineBreak::CRLF:
        return QStringLiteral("\r\n");
    case LineBreak::LF:
        break;
    }
    return QStringLiteral("\n");
}

QStringList ZTExportController::attributes() const
{
    if (!document())
        return {};
    QStringList keys;
    for (const ZTExportColumn &column : document()->attributeTables().exportColumnDictionary())
        if (column.key != QLatin1String("cover"))
            keys << column.key;
    return keys;
}

QStringList ZTExportController::selectedKeys() const
{
    QStringList keys;
    for (const QString &key : attributes())
        if (m_attributesToExport.contains(key))
            keys << key;
    return keys;
}

bool ZTExportController::exportKeysDiffer(const QStringList &remembered, const QStringList &chosen)
{
    QStringList a = remembered, b = chosen;
    a.sort();
    b.sort();
    return a != b;
}

QString ZTExportController::quotedValue(const QString &value, QChar delimiter)
{
    bool quote = false;
    for (const QChar c : value) {
        const char16_t u = c.unicode();
        if (c == delimiter || u == u'"' || u == u'\n' || u == u'\r' || u == 0x85 || u == 0x2028 ||
            u == 0x2029) {
            quote = true;
            break;
        }
    }
    if (!quote)
        return value;
    QString quoted = value;
    quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

QString ZTExportController::cellText(const ZTItem &item, const Column &column, const QVariant &value) const
{
    if (column.toMany) {
        const QStringList values = value.toStringList();
        if (m_multiple == MultipleAttributes::SingleColumn)
            return values.join(m_multipleDelimiter);
        return column.index < values.size() ? values.at(column.index) : QString();
    }
    if (isBlank(value))
        return {};
    if (column.type == QLatin1String("rating"))
        return QString::number(value.toLongLong());
    if (column.type == QLatin1String("boolean"))
        return value.toBool() ? tr("Yes") : tr("No");
    if (column.type == QLatin1String("float")) {
        const QString code = item.valueForKey(column.key + QLatin1String("Locale")).toString();
        return ZTMoneyFormatter::formatterForLocale(code.isEmpty() ? QStringLiteral("USD") : code)
            .string(value.toDouble());
    }
    if (column.type == QLatin1String("date")) {
        const QString bitKey = column.key + QLatin1String("BitFlag");
        const ZTDateBit bit = item.hasKey(bitKey) ? ZTDateBit::fromVariant(item.valueForKey(bitKey))
                                                  : ZTDateBit(ZTDateBit::FullDate);
        return m_dateFormatters.at(size_t(bit.value()))
            .stringFromDate(value.toDateTime().toTimeZone(m_zone).date());
    }
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    return value.toString();
}

QString ZTExportController::exportString()
{
    if (!document())
        return {};
    const ZTAttributeTables &tables = document()->attributeTables();
    // The locale's date formats and the time zone are learnt once per run, not
    // once per cell: asking the C library for local time re-reads the zone
    // file's status every time.
    m_zone = QTimeZone::systemTimeZone();
    for (const ZTDateBit bit : {ZTDateBit::FullDate, ZTDateBit::YearMonth, ZTDateBit::Year})
        m_dateFormatters[size_t(bit.value())] = ZTDateUtil::standardDateFormatterForDateBit(bit);
    const QStringList keys = selectedKeys();
    QList<Column> selected;
    for (const QString &key : keys) {
        Column column;
        column.key = key;
        if (const ZTTypedAttribute *attribute = tables.exportableAttribute(key)) {
            column.type = attribute->type;
            column.toMany = attribute->toMany;
        } else {
            column.type = QStringLiteral("string");
        }
        selected << column;
    }

    // Each item's values are read once; the widest to-many value decides how
    // many columns a key gets.
    const QStringList &oids = this->oids();
    QList<ZTItem *> items;
    QList<QVariantList> values;
    items.reserve(oids.size());
    values.reserve(oids.size());
    QList<int> maxima(selected.size(), 1);
    for (const QString &oid : oids) {
        ZTItem *item = document()->itemForOid(oid);
        items << item;
        QVariantList row;
        if (item) {
            row.reserve(selected.size());
            for (qsizetype c = 0; c < selected.size(); ++c) {
                const QVariant value = item->valueForKey(selected.at(c).key);
                if (selected.at(c).toMany)
                    maxima[c] = std::max(maxima[c], int(value.toStringList().size()));
                row << value;
            }
        }
        values << row;
    }

    const QChar delimiter = this->delimiter();
    const QString lineEnd = lineBreak();
    QList<Column> columns;
    QList<int> valueIndex; // which entry of an item's values feeds each column
    QStringList titles;
    for (qsizetype c = 0; c < selected.size(); ++c) {
        const Column &column = selected.at(c);
        const ZTExportColumn *exportColumn = tables.exportColumn(column.key);
        const QString title = exportColumn ? exportColumn->title : column.key;
        const int repeat =
            column.toMany && m_multiple == MultipleAttributes::SeparateColumns ? maxima.at(c) : 1;
        for (int i = 0; i < repeat; ++i) {
            Column copy = column;
            copy.index = i;
            columns << copy;
            valueIndex << int(c);
            titles << quotedValue(repeat >= 2 ? QStringLiteral("%1%2").arg(title).arg(i + 1) : title,
                                  delimiter);
        }
    }

    QString text = titles.join(delimiter) + lineEnd;
    for (qsizetype r = 0; r < items.size(); ++r) {
        QString line;
        if (const ZTItem *item = items.at(r)) {
            for (qsizetype c = 0; c < columns.size(); ++c) {
                if (c)
                    line += delimiter;
                line +=
                    quotedValue(cellText(*item, columns.at(c), values.at(r).at(valueIndex.at(c))), delimiter);
            }
        }
        text += line;
        text += lineEnd;
    }
    return text;
}
