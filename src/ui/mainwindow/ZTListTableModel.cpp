#include "ui/mainwindow/ZTListTableModel.h"
#include "library/lists/ZTListDescriptor.h"

#include "library/ZTDocument.h"
#include "lists/ZTList.h"
#include "ui/mainwindow/ZTDragData.h"

#include <QCoreApplication>
#include <QIcon>

ZTListTableModel::ZTListTableModel(ZTDocument &document, QObject *parent)
    : QAbstractListModel(parent), m_document(document)
{
}

void ZTListTableModel::reload()
{
    beginResetModel();
    endResetModel();
}

int ZTListTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_document.itemLists().size()) + 1;
}

QVariant ZTListTableModel::data(const QModelIndex &index, int role) const
{
    ZTList *list = index.isValid() ? m_document.listAtRow(index.row()) : nullptr;
    if (!list)
        return {};
    const bool library = index.row() == 0;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return library ? QCoreApplication::translate("Localizable", "Library") : list->name();
    case Qt::ToolTipRole:
        return ZTListDescriptor::descriptorForDocument(*list, m_document);
    case CountRole:
        return list->count();
    case SmartRole:
        return list->isSmartList();
    case Qt::DecorationRole:
        if (library)
            return QIcon::fromTheme(QStringLiteral("folder-library"),
                                    QIcon::fromTheme(QStringLiteral("folder")));
        return list->isSmartList() ? QIcon::fromTheme(QStringLiteral("folder-saved-search"),
                                                      QIcon::fromTheme(QStringLiteral("edit-find")))
                                   : QIcon::fromTheme(QStringLiteral("view-list-details"));
    default:
        return {};
    }
}

bool ZTListTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !index.isValid())
        return false;
    if (!m_document.updateListAtIndex(index.row(), value.toString().trimmed()))
        return false;
    Q_EMIT dataChanged(index, index);
    Q_EMIT listRenamed(index.row());
    return true;
}

Qt::ItemFlags ZTListTableModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    Qt::ItemFlags flags =
        Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDropEnabled | Qt::ItemNeverHasChildren;
    if (index.row() > 0)
        flags |= Qt::ItemIsEditable | Qt::ItemIsDragEnabled;
    return flags;
}

QStringList ZTListTableModel::mimeTypes() const
{
    return {ZTDragData::mimeType(), QStringLiteral("text/uri-list"), QStringLiteral("text/plain")};
}

QMimeData *ZTListTableModel::mimeData(const QModelIndexList &indexes) const
{
    for (const QModelIndex &index : indexes)
        if (ZTDragInfo::canDragListRow(index.row()))
            return ZTDragData::listDrag(m_document, index.row());
    return nullptr;
}
