#pragma once

#include <QDialog>
#include <QHash>

#include <memory>

class QCheckBox;
class QLabel;
class QPushButton;
class ZTItem;
class ZTMultipleItemEditController;
class ZTNameTable;
class ZTViewPipeline;

// The sheet that edits several items at once. Each attribute of the kind's
// multiple-edit table has a check box; a key applies only when ticked, and
// typing into its field ticks it. Lists of names are tables that keep each
// row's original name, so renames, removals and additions reach every item
// without replacing its other names (roles stay with their people).
// Mixed values are shown as such. The window opens it window-modal:
//     auto *sheet = new ZTMultipleEditSheet(pipeline, window);
//     sheet->openWithOids(selectedOids);
class ZTMultipleEditSheet : public QDialog {
    Q_OBJECT
public:
    ZTMultipleEditSheet(ZTViewPipeline &pipeline, QWidget *parent = nullptr);
    ~ZTMultipleEditSheet() override;

    // Fills the sheet from the items without showing it; false with fewer than one item.
    bool prepare(const QStringList &oids);
    bool openWithOids(const QStringList &oids);

    ZTMultipleItemEditController &controller() const { return *m_controller; }
    QWidget *fieldForKey(const QString &key) const { return m_fields.value(key); }
    QCheckBox *checkBoxForKey(const QString &key) const { return m_checkBoxes.value(key); }
    // Whether the row says the items differ at this key.
    bool isMixed(const QString &key) const;
    QPushButton *saveButton() const { return m_save; }

public Q_SLOTS:
    void save();
    void reject() override;

Q_SIGNALS:
    // The items changed (not emitted when nothing was ticked).
    void itemsSaved(const QStringList &oids);

private:
    void build();
    QWidget *makeEditor(const QString &key, const QString &type);
    void load();
    void tick(const QString &key);
    void applyNameTables();

    ZTViewPipeline &m_pipeline;
    std::unique_ptr<ZTMultipleItemEditController> m_controller;
    QList<ZTItem *> m_items;
    QHash<QString, QWidget *> m_fields;
    QHash<QString, QString> m_types;
    QHash<QString, QCheckBox *> m_checkBoxes;
    QHash<QString, QLabel *> m_mixedLabels;
    QHash<QString, ZTNameTable *> m_nameTables;
    QLabel *m_header = nullptr;
    QPushButton *m_save = nullptr;
    bool m_loading = false;
};
