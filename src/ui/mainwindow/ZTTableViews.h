#pragma once

#include "library/lists/ZTListDrop.h"

#include <QListView>
#include <QTableView>

#include <functional>

// The hooks a library window gives its tables: type-ahead, the delete key and
// drops, each answered by the pipeline and the core drop rules.
struct ZTTableHooks {
    std::function<int(const QString &text)> typeAhead;
    std::function<void()> deletePressed;
    std::function<bool(const ZTDragInfo &drag, int row, ZTDropOperation *operation)> validateDrop;
    std::function<bool(const ZTDragInfo &drag, int row, ZTDropOperation operation)> acceptDrop;
};

class ZTItemTableView : public QTableView {
    Q_OBJECT
public:
    explicit ZTItemTableView(QWidget *parent = nullptr);
    void setHooks(ZTTableHooks hooks) { m_hooks = std::move(hooks); }
    void keyboardSearch(const QString &search) override;
    // Drops the data at a point of the viewport, as a drop event would.
    bool performDrop(const QMimeData *data, const QPoint &pos);
    // The text shown in place of rows when there are none.
    void setEmptyText(const QString &text) { m_emptyText = text; }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    ZTTableHooks m_hooks;
    QString m_emptyText;
};

class ZTListTableView : public QListView {
    Q_OBJECT
public:
    explicit ZTListTableView(QWidget *parent = nullptr);
    void setHooks(ZTTableHooks hooks) { m_hooks = std::move(hooks); }
    void keyboardSearch(const QString &search) override;
    // Drops the data at a point of the viewport, as a drop event would.
    bool performDrop(const QMimeData *data, const QPoint &pos);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    ZTTableHooks m_hooks;
};
