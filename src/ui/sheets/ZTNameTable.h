#pragma once

#include <QStringList>
#include <QWidget>

class QTableWidget;
class QToolButton;

// An editable list of names (or name and role) for the sheets. A blank row
// at the end takes additions; "−" or Delete removes the chosen rows. Each row
// remembers the name it was loaded with, so a caller can tell a rename from
// an addition and knows which loaded names were removed.
class ZTNameTable : public QWidget {
    Q_OBJECT
public:
    struct Row {
        QStringList cells;
        QString original; // empty for a row the user added
    };

    ZTNameTable(const QStringList &headers, QWidget *parent = nullptr);

    // Columns the user cannot edit (a count beside each name, say).
    void setReadOnlyColumn(int column);
    void setCompletionValues(const QStringList &values);
    // Loaded rows: each one's first cell is its original name.
    void setRows(const QList<QStringList> &rows);
    // The rows with a non-blank first cell, in order.
    QList<Row> rows() const;
    QList<QStringList> cellRows() const;
    QStringList removedOriginals() const { return m_removed; }
    QTableWidget *table() const { return m_table; }
    void removeRow(int row);

Q_SIGNALS:
    void edited();

private:
    void ensureBlankRow();
    void addBlankRow();
    QTableWidget *m_table;
    QToolButton *m_add;
    QToolButton *m_remove;
    QList<int> m_readOnly;
    QStringList m_removed;
    QStringList m_completion;
    bool m_loading = false;
};
