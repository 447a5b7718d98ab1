#include "ui/mainwindow/ZTItemTableModel.h"

#include "library/ZTDocument.h"
#include "model/ZTItem.h"
#include "ui/mainwindow/ZTDragData.h"

#include <QDate>
#include <QDateTime>
#include <QImage>
#include <QMimeData>

#include <algorithm>

ZTItemTableModel::ZTItemTableModel(ZTDocument &document, std::function<QStringList()> oidSource,
                                   QObject *parent)
    : QAbstractTableModel(parent), m_document(document), m_oidSource(std::move(oidSource)), m_items(document)
{
    setColumns(standardColumns(document.mediaKind()));
}

QStringList ZTItemTableModel::standardColumns(ZTMediaKind kind)
{
    switch (kind) {
    case ZTMediaKind::Book:
        return {"cover", "title", "authors", "isbn", "pages", "datePublished", "locSubjects", "genre"};
    case ZTMediaKind::Album:
        return {"cover", "title", "artists", "label", "datePublished", "genre", "rating"};
    case ZTMediaKind::Movie:
        return {"cover", "title", "directors", "datePublished", "duration", "genre", "rating"};
    case ZTMediaKind::Comic:
        return {"cover", "title", "artists", "publisher", "issueNumber", "datePublished", "genre", "rating"};
    }
    return {"cover", "title"};
}

void ZTItemTableModel::setColumns(const QStringList &identifiers)
{
    beginResetModel();
    const ZTAttributeTables &tables = m_document.attributeTables();
    m_columns.clear();
    m_columnReaders.clear();
    for (const QString &identifier : identifiers) {
        const ZTExportColumn *known = tables.column(identifier);
        if (!known && identifier != QLatin1String("title"))
            continue;
        Column column;
        column.identifier = identifier;
        column.title = known && !known->title.isEmpty()
                           ? known->title
                           : ZTAttributeTables::localizedLabel(QStringLiteral("Title"));
        column.cell = tables.tableViewEntry(identifier);
        if (identifier == QLatin1String("cover"))
            column.cell.type = QStringLiteral("image");
        else
            column.reader = m_items.reader(column.cell.key.isEmpty() ? identifier : column.cell.key);
        m_columns.append(identifier);
        m_columnReaders.append(column);
    }
    endResetModel();
}

void ZTItemTableModel::reload()
{
    beginResetModel();
    m_items = ZTItemTable(m_document);
    for (Column &column : m_columnReaders)
        if (column.cell.type != QLatin1String("image"))
            column.reader = m_items.reader(column.cell.key.isEmpty() ? column.identifier : column.cell.key);
    m_oids = m_oidSource();
    endResetModel();
}

void ZTItemTableModel::setCoverSize(int pixels)
{
    m_coverSize = qMax(16, pixels);
    m_covers.clear();
    if (!m_oids.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

int ZTItemTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_oids.size());
}

int ZTItemTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_columnReaders.size());
}

QString ZTItemTableModel::displayText(const QVariant &value, const QString &delimiter)
{
    if (!value.isValid() || value.isNull())
        return {};
    if (value.typeId() == QMetaType::QStringList || value.typeId() == QMetaType::QVariantList)
        return value.toStringList().join(delimiter.isEmpty() ? QStringLiteral(", ") : delimiter);
    if (value.typeId() == QMetaType::QDateTime)
        return QLocale().toString(value.toDateTime().date(), QLocale::ShortFormat);
    if (value.typeId() == QMetaType::QDate)
        return QLocale().toString(value.toDate(), QLocale::ShortFormat);
    // Some keys hand dates over in their stored text form.
    const QString text = value.toString();
    if (text.size() >= 19 && text.at(10) == QLatin1Char('T'))
        if (const QDateTime date = QDateTime::fromString(text, Qt::ISODateWithMs); date.isValid())
            return QLocale().toString(date.date(), QLocale::ShortFormat);
    return text;
}

QVariant ZTItemTableModel::displayValue(const Column &column, const ZTItem &item) const
{
    const QVariant value = column.reader.get || column.reader.slot >= 0 ? column.reader.read(item)
                                                                        : item.valueForKey(column.cell.key);
    const QString text = displayText(value, column.cell.delimiter);
    return text.isEmpty() ? QVariant() : QVariant(text);
}

QPixmap ZTItemTableModel::cover(const QString &oid, ZTItem &item) const
{
    if (QPixmap *cached = m_covers.object(oid))
        return *cached;
    QPixmap pixmap;
    const QByteArray bytes = item.largestImageAvailable();
    QImage image;
    if (!bytes.isEmpty() && image.loadFromData(bytes))
        pixmap = QPixmap::fromImage(
            image.scaled(m_coverSize, m_coverSize, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    m_covers.insert(oid, new QPixmap(pixmap));
    return pixmap;
}

QVariant ZTItemTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_oids.size() || index.column() >= m_columnReaders.size())
        return {};
    const QString &oid = m_oids[index.row()];
    if (role == OidRole)
        return oid;
    const Column &column = m_columnReaders[index.column()];
    if (role == ColumnTypeRole)
        return column.cell.type;
    ZTItem *item = m_items.item(oid);
    if (!item)
        return {};
    const QString &type = column.cell.type;
    if (type == QLatin1String("image")) {
        if (role == Qt::DecorationRole)
            return cover(oid, *item);
        return {};
    }
    if (type == QLatin1String("rating")) {
        if (role == RatingRole || role == Qt::ToolTipRole)
            return column.reader.read(*item).toInt();
        return {};
    }
    if (type == QLatin1String("boolean")) {
        if (role == Qt::CheckStateRole)
            return column.reader.read(*item).toBool() ? Qt::Checked : Qt::Unchecked;
        return {};
    }
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return displayValue(column, *item);
    if (role == Qt::TextAlignmentRole &&
        (type == QLatin1String("integer") || type == QLatin1String("number")))
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant ZTItemTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_columnReaders.size())
        return {};
    if (role == Qt::DisplayRole)
        return m_columnReaders[section].identifier == QLatin1String("cover") ? QString()
                                                                             : m_columnReaders[section].title;
    if (role == Qt::ToolTipRole)
        return m_columnReaders[section].title;
    return {};
}

Qt::ItemFlags ZTItemTableModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
}

QStringList ZTItemTableModel::mimeTypes() const
{
    return {ZTDragData::mimeType()};
}

QMimeData *ZTItemTableModel::mimeData(const QModelIndexList &indexes) const
{
    // Rows in table order, whatever order the selection was made in.
    QList<int> rows;
    for (const QModelIndex &index : indexes)
        if (index.row() < m_oids.size() && !rows.contains(index.row()))
            rows.append(index.row());
    std::sort(rows.begin(), rows.end());
    QStringList oids;
    for (int row : std::as_const(rows))
        oids.append(m_oids[row]);
    return ZTDragData::itemsDrag(m_document, oids);
}
