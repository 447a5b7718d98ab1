#include "export/ZTExportController.h"

#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"
#include "library/ZTItemTable.h"
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

QVariant ZTExportController::Column::read(const ZTItem &item, const ZTItem::KeyReader &reader)
{
    // A key the reader could not resolve (no accessor, no stored attribute)
    // still gets the item's own answer.
    return reader.get || reader.slot >= 0 ? reader.read(item) : item.valueForKey(reader.key);
}

QString ZTExportController::cellText(const ZTItem &item, const Column &column, const QVariant &value) const
{
    if (isBlank(value))
        return {};
    switch (column.kind) {
    case Column::Kind::Rating:
        return QString::number(value.toLongLong());
    case Column::Kind::Boolean:
        return value.toBool() ? m_yes : m_no;
    case Column::Kind::Float: {
        const QString code = Column::read(item, column.localeReader).toString();
        return ZTMoneyFormatter::formatterForLocale(code.isEmpty() ? QStringLiteral("USD") : code)
            .string(value.toDouble());
    }
    case Column::Kind::Date: {
        const ZTDateBit bit = column.hasBitFlag ? ZTDateBit::fromVariant(Column::read(item, column.bitReader))
                                                : ZTDateBit(ZTDateBit::FullDate);
        return m_dateFormatters.at(size_t(bit.value()))
            .stringFromDate(value.toDateTime().toTimeZone(m_zone).date());
    }
    case Column::Kind::ToMany:
    case Column::Kind::Other:
        break;
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
    // The locale's date formats, the time zone and the yes/no words are
    // learnt once per run, not once per cell.
    m_zone = QTimeZone::systemTimeZone();
    for (const ZTDateBit bit : {ZTDateBit::FullDate, ZTDateBit::YearMonth, ZTDateBit::Year})
        m_dateFormatters[size_t(bit.value())] = ZTDateUtil::standardDateFormatterForDateBit(bit);
    m_yes = tr("Yes");
    m_no = tr("No");
    const ZTItemTable table(*document());
    const QStringList keys = selectedKeys();
    QList<Column> selected;
    qsizetype toManyCount = 0;
    for (const QString &key : keys) {
        Column column;
        column.reader = table.reader(key);
        QString type = QStringLiteral("string");
        if (const ZTTypedAttribute *attribute = tables.exportableAttribute(key)) {
            type = attribute->type;
            if (attribute->toMany) {
                column.kind = Column::Kind::ToMany;
                column.toManyIndex = int(toManyCount++);
            }
        }
        if (column.kind != Column::Kind::ToMany) {
            if (type == QLatin1String("rating")) {
                column.kind = Column::Kind::Rating;
            } else if (type == QLatin1String("boolean")) {
                column.kind = Column::Kind::Boolean;
            } else if (type == QLatin1String("float")) {
                column.kind = Column::Kind::Float;
                column.localeReader = table.reader(key + QLatin1String("Locale"));
            } else if (type == QLatin1String("date")) {
                column.kind = Column::Kind::Date;
                column.bitReader = table.reader(key + QLatin1String("BitFlag"));
            }
        }
        selected << column;
    }

    const QStringList &oids = this->oids();
    QList<const ZTItem *> items;
    items.reserve(oids.size());
    const ZTResolvedItems rows = table.items(oids);
    for (qsizetype row = 0; row < rows.size(); ++row)
        items << rows[row];
    // Whether an item answers to a date's "BitFlag" key depends on its kind
    // only, so the first item tells for all.
    for (const ZTItem *item : std::as_const(items)) {
        if (!item)
            continue;
        for (Column &column : selected)
            if (column.kind == Column::Kind::Date)
                column.hasBitFlag = item->hasKey(column.bitReader.key);
        break;
    }

    // The to-many values are read first, once per item: the widest of them
    // decides how many columns a key gets.
    const bool separate = m_multiple == MultipleAttributes::SeparateColumns;
    QList<int> maxima(toManyCount, 1);
    QList<QStringList> toManyValues(items.size() * toManyCount);
    for (qsizetype r = 0; r < items.size(); ++r) {
        const ZTItem *item = items.at(r);
        if (!item)
            continue;
        for (const Column &column : std::as_const(selected)) {
            if (column.kind != Column::Kind::ToMany)
                continue;
            QStringList &values = toManyValues[r * toManyCount + column.toManyIndex];
            values = Column::read(*item, column.reader).toStringList();
            maxima[column.toManyIndex] = std::max(maxima[column.toManyIndex], int(values.size()));
        }
    }

    const QChar delimiter = this->delimiter();
    const QString lineEnd = lineBreak();
    QStringList titles;
    for (const Column &column : std::as_const(selected)) {
        const ZTExportColumn *exportColumn = tables.exportColumn(column.reader.key);
        const QString title = exportColumn ? exportColumn->title : column.reader.key;
        const int repeat =
            column.kind == Column::Kind::ToMany && separate ? maxima.at(column.toManyIndex) : 1;
        for (int i = 0; i < repeat; ++i)
            titles << quotedValue(repeat >= 2 ? QStringLiteral("%1%2").arg(title).arg(i + 1) : title,
                                  delimiter);
    }

    QString text = titles.join(delimiter) + lineEnd;
    QString line;
    for (qsizetype r = 0; r < items.size(); ++r) {
        line.clear();
        if (const ZTItem *item = items.at(r)) {
            bool first = true;
            auto addCell = [&](const QString &cell) {
                if (!first)
                    line += delimiter;
                first = false;
                line += quotedValue(cell, delimiter);
            };
            for (const Column &column : std::as_const(selected)) {
                if (column.kind != Column::Kind::ToMany) {
                    addCell(cellText(*item, column, Column::read(*item, column.reader)));
                    continue;
                }
                const QStringList &values = toManyValues.at(r * toManyCount + column.toManyIndex);
                if (!separate) {
                    addCell(values.join(m_multipleDelimiter));
                    continue;
                }
                for (int i = 0; i < maxima.at(column.toManyIndex); ++i)
                    addCell(i < values.size() ? values.at(i) : QString());
            }
        }
        text += line;
        text += lineEnd;
    }
    return text;
}
