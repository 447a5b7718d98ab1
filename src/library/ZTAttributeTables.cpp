#include "library/ZTAttributeTables.h"

#include <QCollator>
#include <QCoreApplication>
#include <QSet>

#include <algorithm>

namespace {

// A kind's row replaces the common row with the same key where that row
// stands, so a kind can relabel or retype an entry without moving it; new
// rows follow the common ones in the kind's order.
template <typename Row, typename KeyOf>
QList<Row> overlay(const QList<Row> &common, const QList<Row> &own, KeyOf keyOf)
{
    QList<Row> result = common;
    QHash<QString, qsizetype> index;
    for (qsizetype i = 0; i < result.size(); ++i)
        index.insert(keyOf(result[i]), i);
    for (const Row &row : own) {
        const QString key = keyOf(row);
        const auto found = index.constFind(key);
        if (found != index.constEnd()) {
            result[*found] = row;
        } else {
            index.insert(key, result.size());
            result.append(row);
        }
    }
    return result;
}

QStringList extended(const QStringList &common, const QStringList &own)
{
    QStringList result = common;
    for (const QString &key : own) {
        if (!result.contains(key))
            result.append(key);
    }
    return result;
}

template <typename Row, typename KeyOf>
const Row *findRow(const QList<Row> &rows, const QString &key, KeyOf keyOf)
{
    for (const Row &row : rows) {
        if (keyOf(row) == key)
            return &row;
    }
    return nullptr;
}

template <typename Row, typename KeyOf> QHash<QString, Row> byKey(const QList<Row> &rows, KeyOf keyOf)
{
    QHash<QString, Row> result;
    for (const Row &row : rows)
        result.insert(keyOf(row), row);
    return result;
}

const auto s_keyOfColumn = [](const auto &row) { return row.column; };
const auto s_keyOfKey = [](const auto &row) { return row.key; };
const auto s_keyOfLabel = [](const auto &row) { return row.label; };
const auto s_keyOfTitle = [](const auto &row) { return row.title; };
const auto s_keyOfTag = [](const ZTTemplateTag &row) { return row.tag; };

void sortLocalizedCaseInsensitive(QStringList &texts)
{
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(texts.begin(), texts.end(),
                     [&](const QString &a, const QString &b) { return collator.compare(a, b) < 0; });
}

// These labels are shared with the option sheets, so their translations live
// in that string table; every other label is in the default one.
const QSet<QString> &optionsLabels()
{
    static const QSet<QString> s_labels = {
        QStringLiteral("GCDN"),   QStringLiteral("CBDBN"),   QStringLiteral("Title"),
        QStringLiteral("Volume"), QStringLiteral("Authors"), QStringLiteral("Listened"),
    };
    return s_labels;
}

const char *const s_mediaTypeDisplayNames[] = {"Books", "Music", "Movies", "Comics"};

} // namespace

QStringList ZTCacheableAttributes::value(const QString &valueClass) const
{
    if (valueClass == QLatin1String("string"))
        return string;
    if (valueClass == QLatin1String("array"))
        return array;
    if (valueClass == QLatin1String("number"))
        return number;
    if (valueClass == QLatin1String("boolean"))
        return boolean;
    if (valueClass == QLatin1String("all"))
        return all;
    return {};
}

const ZTAttributeTablePart &ZTAttributeTableParts::forKind(ZTMediaKind kind)
{
    switch (kind) {
    case ZTMediaKind::Book:
        return book();
    case ZTMediaKind::Album:
        return album();
    case ZTMediaKind::Movie:
        return movie();
    case ZTMediaKind::Comic:
        break;
    }
    return comic();
}

const ZTAttributeTables &ZTAttributeTables::forKind(ZTMediaKind kind)
{
    const auto build = [](ZTMediaKind k) {
        return ZTAttributeTables(k, ZTAttributeTableParts::common(), ZTAttributeTableParts::forKind(k));
    };
    switch (kind) {
    case ZTMediaKind::Book: {
        static const ZTAttributeTables s_book = build(ZTMediaKind::Book);
        return s_book;
    }
    case ZTMediaKind::Album: {
        static const ZTAttributeTables s_album = build(ZTMediaKind::Album);
        return s_album;
    }
    case ZTMediaKind::Movie: {
        static const ZTAttributeTables s_movie = build(ZTMediaKind::Movie);
        return s_movie;
    }
    case ZTMediaKind::Comic:
        break;
    }
    static const ZTAttributeTables s_comic = build(ZTMediaKind::Comic);
    return s_comic;
}

QString ZTAttributeTables::labelTable(const QString &englishText)
{
    return optionsLabels().contains(englishText) ? QStringLiteral("Options") : QStringLiteral("Localizable");
}

QString ZTAttributeTables::localizedLabel(const QString &englishText)
{
    return QCoreApplication::translate(labelTable(englishText).toLatin1().constData(),
                                       englishText.toUtf8().constData());
}

QStringList ZTAttributeTables::mediaTypeDisplayNames()
{
    QStringList names;
    for (const char *name : s_mediaTypeDisplayNames)
        names.append(QString::fromLatin1(name));
    return names;
}

QString ZTAttributeTables::mediaTypeDisplayName() const
{
    return QString::fromLatin1(s_mediaTypeDisplayNames[int(m_kind)]);
}

ZTAttributeTables::ZTAttributeTables(ZTMediaKind kind, const ZTAttributeTablePart &common,
                                     const ZTAttributeTablePart &own)
    : m_kind(kind)
{
    // Labels are translated here, once, so every reader sees the same text.
    const QList<ZTColumnLabel> labels = overlay(common.columnLabels, own.columnLabels, s_keyOfKey);
    QHash<QString, QString> englishLabel;
    for (const ZTColumnLabel &row : labels) {
        englishLabel.insert(row.key, row.label);
        const QString label = localizedLabel(row.label);
        m_columnKeyDictionary.insert(label, row.key);
        m_displayColumnKeys.append(label);
    }
    sortLocalizedCaseInsensitive(m_displayColumnKeys);
    for (const QString &label : std::as_const(m_displayColumnKeys))
        m_columnKeys.append(m_columnKeyDictionary.value(label));

    QHash<QString, QString> exportTitle; // English, for the template display names
    m_exportColumns = overlay(common.exportColumns, own.exportColumns, s_keyOfKey);
    for (ZTExportColumn &column : m_exportColumns) {
        if (column.title.isEmpty())
            column.title = englishLabel.value(column.key, column.key);
        exportTitle.insert(column.key, column.title);
        column.title = localizedLabel(column.title);
        // The description can be exported but is too long to be a column.
        if (column.key != QLatin1String("productDescription"))
            m_columns.append(column);
    }

    m_tableView = byKey(overlay(common.cells, own.cells, s_keyOfColumn), s_keyOfColumn);
    for (const ZTSortKey &row : overlay(common.sortKeys, own.sortKeys, s_keyOfColumn)) {
        m_columnToSortKey.insert(row.column, row.sortKey);
        m_sortKeyToColumn.insert(row.sortKey, row.column);
    }
    m_typeAhead = byKey(overlay(common.typeAhead, own.typeAhead, s_keyOfColumn), s_keyOfColumn);

    // The browser lists its filters in label order, the kind's among the common ones.
    for (const ZTFilter &row : overlay(common.filters, own.filters, s_keyOfLabel)) {
        ZTFilter filter = row;
        filter.label = localizedLabel(row.label);
        m_filters.append(filter);
    }
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(m_filters.begin(), m_filters.end(), [&](const ZTFilter &a, const ZTFilter &b) {
        return collator.compare(a.label, b.label) < 0;
    });

    m_cacheable.string = extended(common.cacheable.string, own.cacheable.string);
    m_cacheable.array = extended(common.cacheable.array, own.cacheable.array);
    m_cacheable.number = extended(common.cacheable.number, own.cacheable.number);
    m_cacheable.boolean = extended(common.cacheable.boolean, own.cacheable.boolean);
    m_cacheable.all = extended(extended(extended(m_cacheable.string, m_cacheable.array), m_cacheable.number),
                               m_cacheable.boolean);

    m_importable = overlay(common.importable, own.importable, s_keyOfTitle);
    for (ZTTypedAttribute &row : m_importable)
        row.title = localizedLabel(row.title);
    m_exportable = overlay(common.exportable, own.exportable, s_keyOfKey);

    m_templateTags = overlay(common.templateTags, own.templateTags, s_keyOfTag);
    for (ZTTemplateTag &tag : m_templateTags) {
        if (tag.keypath.isEmpty())
            tag.keypath = tag.key;
        tag.displayName = localizedLabel(exportTitle.value(tag.key, tag.key));
    }

    m_smartList = overlay(common.smartList, own.smartList, s_keyOfTitle);
    m_duplicateKeys = extended(common.duplicateKeys, own.duplicateKeys);
    m_itemCodeTypes = extended(common.itemCodeTypes, own.itemCodeTypes);
    m_multipleEditable = overlay(common.multipleEditable, own.multipleEditable, s_keyOfKey);
    m_clearable = extended(common.clearable, own.clearable);
}

const ZTExportColumn *ZTAttributeTables::exportColumn(const QString &key) const
{
    return findRow(m_exportColumns, key, s_keyOfKey);
}

const ZTExportColumn *ZTAttributeTables::column(const QString &key) const
{
    return findRow(m_columns, key, s_keyOfKey);
}

ZTCellReader ZTAttributeTables::tableViewEntry(const QString &column) const
{
    const auto found = m_tableView.constFind(column);
    if (found != m_tableView.constEnd())
        return *found;
    ZTCellReader reader;
    reader.column = column;
    reader.key = column;
    return reader;
}

QString ZTAttributeTables::sortKeyForColumn(const QString &column) const
{
    return m_columnToSortKey.value(column, column);
}

QString ZTAttributeTables::columnForSortKey(const QString &sortKey) const
{
    return m_sortKeyToColumn.value(sortKey, sortKey);
}

const ZTCellReader *ZTAttributeTables::typeAheadEntry(const QString &column) const
{
    const auto found = m_typeAhead.constFind(column);
    return found != m_typeAhead.constEnd() ? &*found : nullptr;
}

QStringList ZTAttributeTables::filterKeys() const
{
    QStringList labels;
    for (const ZTFilter &filter : m_filters)
        labels.append(filter.label);
    return labels;
}

const ZTFilter *ZTAttributeTables::filter(const QString &label) const
{
    return findRow(m_filters, label, s_keyOfLabel);
}

const ZTTypedAttribute *ZTAttributeTables::importableAttribute(const QString &title) const
{
    return findRow(m_importable, title, s_keyOfTitle);
}

QStringList ZTAttributeTables::importableTitles() const
{
    QStringList titles;
    for (const ZTTypedAttribute &row : m_importable)
        titles.append(row.title);
    sortLocalizedCaseInsensitive(titles);
    return titles;
}

const ZTTypedAttribute *ZTAttributeTables::exportableAttribute(const QString &key) const
{
    return findRow(m_exportable, key, s_keyOfKey);
}

const ZTTemplateTag *ZTAttributeTables::templateTag(const QString &tag) const
{
    return findRow(m_templateTags, tag, s_keyOfTag);
}

const ZTSmartListAttribute *ZTAttributeTables::smartListAttribute(const QString &title) const
{
    return findRow(m_smartList, title, s_keyOfTitle);
}

QStringList ZTAttributeTables::columnListing() const
{
    QStringList lines;
    for (qsizetype i = 0; i < m_displayColumnKeys.size(); ++i)
        lines.append(m_displayColumnKeys[i] + QLatin1Char('\t') + m_columnKeys[i]);
    return lines;
}
