#pragma once

#include <QDialog>
#include <QHash>

#include <memory>

class QCheckBox;
class QLabel;
class QPushButton;
class ZTClearAttributesController;
class ZTViewPipeline;

// The sheet that blanks chosen attributes of the selected items; locked items
// are left alone. The header counts the selection ("3 books"). The window
// opens it window-modal:
//     auto *sheet = new ZTClearAttributesSheet(pipeline, window);
//     sheet->openWithOids(selectedOids);
class ZTClearAttributesSheet : public QDialog {
    Q_OBJECT
public:
    ZTClearAttributesSheet(ZTViewPipeline &pipeline, QWidget *parent = nullptr);
    ~ZTClearAttributesSheet() override;

    bool prepare(const QStringList &oids);
    bool openWithOids(const QStringList &oids);

    QCheckBox *checkBoxForKey(const QString &key) const { return m_boxes.value(key); }
    QString headerText() const;
    QPushButton *clearButton() const { return m_clear; }

public Q_SLOTS:
    void selectAll(bool chosen);
    void save();
    void reject() override;

Q_SIGNALS:
    void itemsCleared(const QStringList &oids);

private:
    void updateClearButton();

    ZTViewPipeline &m_pipeline;
    std::unique_ptr<ZTClearAttributesController> m_controller;
    QStringList m_oids;
    QHash<QString, QCheckBox *> m_boxes;
    QLabel *m_header = nullptr;
    QPushButton *m_clear = nullptr;
};
