#include "library/ZTWindowDisplay.h"

#include "store/ZTPropertyList.h"

#include <QDir>
#include <QVariantList>

namespace {
const QString s_columns = QStringLiteral("columns");
const QString s_identifier = QStringLiteral("identifier");
const QString s_width = QStringLiteral("width");
const QString s_rowHeight = QStringLiteral("rowHeight");
const QString s_fontSize = QStringLiteral("fontSize");
const QString s_detail = QStringLiteral("isDetailPanelOpen");
const QString s_frame = QStringLiteral("frameString");
const QString s_split = QStringLiteral("splitViewWidth");
const QString s_currentLayout = QStringLiteral("currentLayout");
} // namespace

QList<ZTWindowDisplay::Column> ZTWindowDisplay::columnsFromArray(const QVariantList &array)
{
    QList<Column> columns;
    for (const QVariant &row : array) {
        const QVariantMap map = row.toMap();
        const QString identifier = map.value(s_identifier).toString();
        bool ok = false;
        const double width = map.value(s_width).toDouble(&ok);
        if (!identifier.isEmpty())
            columns.append({identifier, ok && width > 0 ? width : 100.0});
    }
    return columns;
}

QVariantList ZTWindowDisplay::arrayFromColumns(const QList<Column> &columns)
{
    QVariantList rows;
    for (const Column &column : columns)
        rows.append(QVariantMap{{s_identifier, column.identifier}, {s_width, column.width}});
    return rows;
}

ZTWindowDisplay ZTWindowDisplay::load(const QString &packagePath, const QList<Column> &standardColumns)
{
    ZTWindowDisplay display;
    display.dictionary = ZTPropertyList::readFile(QDir(packagePath).filePath(fileName())).toMap();
    display.columns = columnsFromArray(display.dictionary.value(s_columns).toList());
    if (display.columns.isEmpty())
        display.columns = standardColumns;
    bool ok = false;
    const double rowHeight = display.dictionary.value(s_rowHeight).toDouble(&ok);
    if (ok && rowHeight >= 8 && rowHeight <= 512)
        display.rowHeight = rowHeight;
    const double fontSize = display.dictionary.value(s_fontSize).toDouble(&ok);
    if (ok && fontSize >= 4 && fontSize <= 96)
        display.fontSize = fontSize;
    display.isDetailPanelOpen = display.dictionary.value(s_detail).toBool();
    display.frameString = display.dictionary.value(s_frame).toString();
    const double split = display.dictionary.value(s_split).toDouble(&ok);
    if (ok && split > 0 && split < 100000)
        display.splitViewWidth = split;
    display.currentLayout = qMax(0, display.dictionary.value(s_currentLayout).toInt());
    return display;
}

bool ZTWindowDisplay::save(const QString &packagePath) const
{
    QVariantMap map = dictionary;
    map.insert(s_columns, arrayFromColumns(columns));
    map.insert(s_rowHeight, rowHeight);
    if (fontSize > 0)
        map.insert(s_fontSize, fontSize);
    map.insert(s_detail, isDetailPanelOpen);
    if (!frameString.isEmpty())
        map.insert(s_frame, frameString);
    if (splitViewWidth > 0)
        map.insert(s_split, splitViewWidth);
    map.insert(s_currentLayout, currentLayout);
    return ZTPropertyList::writeFile(QDir(packagePath).filePath(fileName()), map,
                                     ZTPropertyList::Format::Binary);
}
