#pragma once

#include <QAbstractListModel>

class ZTDocument;

// The list column: row 0 is the whole library, then the lists in their order.
// Names are edited in place (not row 0); the count is a role of its own so the
// delegate can draw it as a badge.
class ZTListTableModel : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role { CountRole = Qt::UserRole + 1, SmartRole };

    explicit ZTListTableModel(ZTDocument &document, QObject *parent = nullptr);
    void reload();

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    Qt::DropActions supportedDropActions() const override { return Qt::CopyAction | Qt::MoveAction; }

Q_SIGNALS:
    void listRenamed(int row);

private:
    ZTDocument &m_document;
};
