#pragma once

#include "library/ZTAttributeTables.h"
#include "library/ZTItemTable.h"

#include <QAbstractTableModel>
#include <QCache>
#include <QPixmap>
#include <QStringList>

#include <functional>
#include <memory>

class ZTDocument;

// The rows of an item table: a snapshot of the oids the view pipeline
// displays, read through per-column key readers. Nothing here touches the
// store per row; only a visible cover is decoded, once, into a bounded cache.
class ZTItemTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Role { OidRole = Qt::UserRole + 1, RatingRole, ColumnTypeRole };

    ZTItemTableModel(ZTDocument &document, std::function<QStringList()> oidSource, QObject *parent = nullptr);

    // The standard columns of a kind, as a new library shows them.
    static QStringList standardColumns(ZTMediaKind kind);
    void setColumns(const QStringList &identifiers);
    // A cell's text: lists joined by the delimiter (", " when none), dates in the user's short form.
    static QString displayText(const QVariant &value, const QString &delimiter = {});
    const QStringList &columns() const { return m_columns; }
    QString columnIdentifier(int index) const { return m_columns.value(index); }
    // "text", "image", "rating", "boolean" …: how the column's cells are drawn.
    QString columnType(int index) const
    {
        return index >= 0 && index < m_columnReaders.size() ? m_columnReaders[index].cell.type : QString();
    }

    // Takes the pipeline's oids afresh.
    void reload();
    // Forgets decoded covers (a cover changed or the row height did).
    void setCoverSize(int pixels);
    QString oidAtRow(int row) const { return m_oids.value(row); }
    int rowOfOid(const QString &oid) const { return m_oids.indexOf(oid); }
    const QStringList &oids() const { return m_oids; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    Qt::DropActions supportedDragActions() const override { return Qt::CopyAction | Qt::MoveAction; }

private:
    struct Column {
        QString identifier;
        QString title;
        ZTCellReader cell;
        ZTItem::KeyReader reader;
    };
    QVariant displayValue(const Column &column, const ZTItem &item) const;
    QPixmap cover(const QString &oid, ZTItem &item) const;

    ZTDocument &m_document;
    std::function<QStringList()> m_oidSource;
    ZTItemTable m_items;
    QStringList m_columns;
    QList<Column> m_columnReaders;
    QStringList m_oids;
    int m_coverSize = 40;
    mutable QCache<QString, QPixmap> m_covers{400};
};
