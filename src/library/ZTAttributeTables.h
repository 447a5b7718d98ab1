#pragma once

#include "model/ZTMediaKind.h"

#include <QHash>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

// What a library kind shows, sorts, filters, types ahead, imports and exports
// is data: each table is the common part overlaid by the kind's part. The rows
// below are both the shape of that data (src/library/ZTAttributeTables<Kind>.cpp)
// and what the built tables answer. Type names are the plain words the readers
// compare against ("text", "boolean", ...), so they stay strings.

// One labelled attribute: the column chooser's list, keyed by attribute key.
struct ZTColumnLabel {
    QString key;
    QString label;
};

// A column that can be exported; the item table offers the same ones.
struct ZTExportColumn {
    QString key;
    QString title; // empty in the data: take the attribute's column label
    QString type = QStringLiteral("text");
    double width = 100.0;
};

// How a table cell or a type-ahead reads an item.
struct ZTCellReader {
    QString column;
    QString type = QStringLiteral("text");
    QString key;
    bool toMany = false;
    QString delimiter;
};

struct ZTSortKey {
    QString column;
    QString sortKey;
};

// A column of the filter browser. `key2` names the cache entry when it differs
// from the item key; no filter needs that today, but readers honour it.
struct ZTFilter {
    QString label;
    QString type = QStringLiteral("text");
    QString key;
    QString key2;
    bool toMany = false;
    bool prohibitNone = false;
};

// Item keys to cache, by the class of their values.
struct ZTCacheableAttributes {
    QStringList string;
    QStringList array;
    QStringList number;
    QStringList boolean;
    QStringList all; // the union of the four, built with the table

    // "string", "array", "number", "boolean" or "all"; anything else is empty.
    QStringList value(const QString &valueClass) const;
};

// A typed attribute. Importable rows are keyed by `title`, exportable ones by `key`.
struct ZTTypedAttribute {
    QString title;
    QString key;
    QString type = QStringLiteral("string");
    bool toMany = false;
};

struct ZTTemplateTag {
    QString tag;
    QString key;     // the attribute whose export title is the display name
    QString keypath; // empty in the data: read `key`
    QString type = QStringLiteral("text");
    bool multiple = false;
    QString displayName;

    QString multipleText() const { return multiple ? QStringLiteral("yes") : QStringLiteral("no"); }
};

// A smart-list attribute. `title` stays English: qualifiers store it, and the
// editor translates it when it shows the row.
struct ZTSmartListAttribute {
    QString title;
    QString key;
    QString type = QStringLiteral("text");
    bool toMany = false;
};

struct ZTEditableAttribute {
    QString key;
    QString type;
};

// One part of the tables, as written in the data files. A kind's part is
// laid over the common one: a row whose key the common part already has
// replaces that row where it stands, any other row is appended; lists of keys
// are extended.
struct ZTAttributeTablePart {
    QList<ZTColumnLabel> columnLabels;
    QList<ZTExportColumn> exportColumns;
    QList<ZTCellReader> cells;
    QList<ZTSortKey> sortKeys;
    QList<ZTCellReader> typeAhead;
    QList<ZTFilter> filters;
    ZTCacheableAttributes cacheable;
    QList<ZTTypedAttribute> importable;
    QList<ZTTypedAttribute> exportable;
    QList<ZTTemplateTag> templateTags;
    QList<ZTSmartListAttribute> smartList;
    QStringList duplicateKeys;
    QStringList itemCodeTypes;
    QList<ZTEditableAttribute> multipleEditable;
    QStringList clearable;
};

namespace ZTAttributeTableParts {
const ZTAttributeTablePart &common();
const ZTAttributeTablePart &book();
const ZTAttributeTablePart &album();
const ZTAttributeTablePart &movie();
const ZTAttributeTablePart &comic();
const ZTAttributeTablePart &forKind(ZTMediaKind kind);
} // namespace ZTAttributeTableParts

class ZTAttributeTables {
public:
    // The tables of a kind, built once on first use with the translations
    // installed at that moment.
    static const ZTAttributeTables &forKind(ZTMediaKind kind);
    // A fresh build from the given parts; forKind() caches one per kind.
    ZTAttributeTables(ZTMediaKind kind, const ZTAttributeTablePart &common, const ZTAttributeTablePart &own);

    // An attribute label in the user's language, from the string table it
    // belongs to ("Options" for a few, "Localizable" for the rest).
    static QString localizedLabel(const QString &englishText);
    static QString labelTable(const QString &englishText);

    // "Books", "Music", "Movies", "Comics": also folder names on a player.
    static QStringList mediaTypeDisplayNames();
    QString mediaTypeDisplayName() const;

    ZTMediaKind kind() const { return m_kind; }

    // Ordered tables; the lookups below answer one row of them.
    const QList<ZTExportColumn> &exportColumnDictionary() const { return m_exportColumns; }
    const QList<ZTExportColumn> &columnDictionary() const { return m_columns; }
    const QMap<QString, QString> &columnKeyDictionary() const { return m_columnKeyDictionary; }
    const QStringList &displayColumnKeys() const { return m_displayColumnKeys; }
    const QStringList &columnKeys() const { return m_columnKeys; }
    const QHash<QString, ZTCellReader> &tableViewDictionary() const { return m_tableView; }
    const QHash<QString, QString> &columnToSortKeyDictionary() const { return m_columnToSortKey; }
    const QHash<QString, QString> &sortKeyToColumnDictionary() const { return m_sortKeyToColumn; }
    const QHash<QString, ZTCellReader> &typeAheadDictionary() const { return m_typeAhead; }
    const QList<ZTFilter> &filterDictionary() const { return m_filters; }
    const ZTCacheableAttributes &cacheableAttributesDictionary() const { return m_cacheable; }
    const QList<ZTTypedAttribute> &importableAttributesDictionary() const { return m_importable; }
    const QList<ZTTypedAttribute> &exportableAttributesDictionary() const { return m_exportable; }
    const QList<ZTTemplateTag> &exportToHTMLTemplateDictionary() const { return m_templateTags; }
    const QList<ZTSmartListAttribute> &smartListDictionaryArray() const { return m_smartList; }
    const QStringList &duplicateKeys() const { return m_duplicateKeys; }
    const QStringList &itemCodeTypes() const { return m_itemCodeTypes; }
    const QList<ZTEditableAttribute> &multipleEditableAttributes() const { return m_multipleEditable; }
    const QStringList &clearableAttributes() const { return m_clearable; }

    const ZTExportColumn *exportColumn(const QString &key) const;
    const ZTExportColumn *column(const QString &key) const;
    // The reader of a cell; a column without a row is text read from its own key.
    ZTCellReader tableViewEntry(const QString &column) const;
    // The column itself when it has no sort key of its own, and the reverse.
    QString sortKeyForColumn(const QString &column) const;
    QString columnForSortKey(const QString &sortKey) const;
    const ZTCellReader *typeAheadEntry(const QString &column) const;
    QStringList filterKeys() const;
    const ZTFilter *filter(const QString &label) const;
    const ZTTypedAttribute *importableAttribute(const QString &title) const;
    QStringList importableTitles() const; // sorted, as the importer offers them
    const ZTTypedAttribute *exportableAttribute(const QString &key) const;
    const ZTTemplateTag *templateTag(const QString &tag) const;
    const ZTSmartListAttribute *smartListAttribute(const QString &title) const;

    // What `zettary-cli columns` prints: one "Label<TAB>key" line per column
    // of the chooser, in its order.
    QStringList columnListing() const;

private:
    ZTMediaKind m_kind;
    QList<ZTExportColumn> m_exportColumns;
    QList<ZTExportColumn> m_columns;
    QMap<QString, QString> m_columnKeyDictionary;
    QStringList m_displayColumnKeys;
    QStringList m_columnKeys;
    QHash<QString, ZTCellReader> m_tableView;
    QHash<QString, QString> m_columnToSortKey;
    QHash<QString, QString> m_sortKeyToColumn;
    QHash<QString, ZTCellReader> m_typeAhead;
    QList<ZTFilter> m_filters;
    ZTCacheableAttributes m_cacheable;
    QList<ZTTypedAttribute> m_importable;
    QList<ZTTypedAttribute> m_exportable;
    QList<ZTTemplateTag> m_templateTags;
    QList<ZTSmartListAttribute> m_smartList;
    QStringList m_duplicateKeys;
    QStringList m_itemCodeTypes;
    QList<ZTEditableAttribute> m_multipleEditable;
    QStringList m_clearable;
};
