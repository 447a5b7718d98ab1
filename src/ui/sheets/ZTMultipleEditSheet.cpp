#include "ui/sheets/ZTMultipleEditSheet.h"

#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"
#include "library/ZTItemStatistics.h"
#include "library/ZTLibraryCaches.h"
#include "library/ZTMultipleEdit.h"
#include "library/ZTViewPipeline.h"
#include "model/ZTComic.h"
#include "model/ZTDateUtil.h"
#include "model/ZTItem.h"
#include "model/ZTItemResources.h"
#include "ui/sheets/ZTNameTable.h"
#include "ui/sheets/ZTSheetFields.h"
#include "ui/sheets/ZTSheetWidgets.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {
bool isBitFlagKey(const QString &key)
{
    return key.endsWith(QLatin1String("BitFlag"));
}

bool isIntegerKey(const QString &key)
{
    return key == QLatin1String("copies") || key == QLatin1String("issueCount");
}

bool isLocaleKey(const QString &key)
{
    return key == QLatin1String("locale") || key == QLatin1String("priceLocale") ||
           key == QLatin1String("pricePaidLocale");
}

QString mixedText()
{
    return QCoreApplication::translate("ZTMultipleEditSheet", "Multiple values");
}
} // namespace

ZTMultipleEditSheet::ZTMultipleEditSheet(ZTViewPipeline &pipeline, QWidget *parent)
    : QDialog(parent), m_pipeline(pipeline),
      m_controller(ZTMultipleItemEditController::forKind(pipeline.document().mediaKind(), pipeline))
{
    setWindowModality(Qt::WindowModal);
    build();
}

ZTMultipleEditSheet::~ZTMultipleEditSheet() = default;

void ZTMultipleEditSheet::build()
{
    const ZTMediaKind kind = m_pipeline.document().mediaKind();
    m_header = new QLabel(this);
    QFont bold = m_header->font();
    bold.setBold(true);
    m_header->setFont(bold);
    auto *hint = new QLabel(
        tr("Tick an attribute to change it on every selected item; typing into a field ticks it."), this);
    hint->setWordWrap(true);

    auto *content = new QWidget;
    auto *grid = new QGridLayout(content);
    grid->setColumnStretch(1, 1);
    int row = 0;
    for (const ZTEditableAttribute &attribute :
         m_pipeline.document().attributeTables().multipleEditableAttributes()) {
        // A date's bit travels with the date's own field.
        if (isBitFlagKey(attribute.key))
            continue;
        const QString key = attribute.key;
        m_types.insert(key, attribute.type);
        auto *box = new QCheckBox(ZTSheetFields::labelForKey(key, kind), content);
        box->setObjectName(key + QStringLiteral("Applies"));
        connect(box, &QCheckBox::toggled, this, [this, key](bool on) {
            if (m_loading)
                return;
            m_controller->setApplies(key, on);
            // A date's bit is applied with the date or not at all.
            const QString bitKey = ZTDateUtil::bitFlagKeyForDateKey(key);
            if (!bitKey.isEmpty())
                m_controller->setApplies(bitKey, on);
        });
        QWidget *editor = makeEditor(key, attribute.type);
        editor->setParent(content);
        editor->setObjectName(key);
        editor->setAccessibleName(box->text());
        auto *mixed = new QLabel(mixedText(), content);
        QFont italic = mixed->font();
        italic.setItalic(true);
        mixed->setFont(italic);
        mixed->setForegroundRole(QPalette::PlaceholderText);
        const Qt::Alignment top = attribute.type == QLatin1String("array") ? Qt::AlignTop : Qt::Alignment();
        grid->addWidget(box, row, 0, top);
        grid->addWidget(editor, row, 1);
        grid->addWidget(mixed, row, 2, top);
        m_checkBoxes.insert(key, box);
        m_fields.insert(key, editor);
        m_mixedLabels.insert(key, mixed);
        ++row;
    }
    auto *scroll = new QScrollArea(this);
    scroll->setWidget(content);
    scroll->setWidgetResizable(true);

    auto *buttons = new QDialogButtonBox(this);
    m_save = buttons->addButton(tr("Save"), QDialogButtonBox::AcceptRole);
    QPushButton *cancel = buttons->addButton(QDialogButtonBox::Cancel);
    m_save->setDefault(true);
    cancel->setAutoDefault(false);
    connect(m_save, &QPushButton::clicked, this, &ZTMultipleEditSheet::save);
    connect(cancel, &QPushButton::clicked, this, &ZTMultipleEditSheet::reject);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_header);
    layout->addWidget(hint);
    layout->addWidget(scroll, 1);
    layout->addWidget(buttons);
    resize(640, 620);
}

void ZTMultipleEditSheet::tick(const QString &key)
{
    if (QCheckBox *box = m_checkBoxes.value(key)) {
        const bool was = m_loading;
        m_loading = true;
        box->setChecked(true);
        m_loading = was;
    }
}

QWidget *ZTMultipleEditSheet::makeEditor(const QString &key, const QString &type)
{
    auto set = [this, key](const QVariant &value) {
        if (m_loading)
            return;
        m_controller->setValue(key, value);
        tick(key);
    };
    const QStringList completion = [&] {
        QStringList values;
        for (const QVariant &v :
             m_pipeline.cacheDictionary().value(ZTSheetFields::cacheKeyForKey(key)).toList())
            if (v.toString() != ZTCacheKey::emptyTag && !v.toString().trimmed().isEmpty())
                values << v.toString();
        return values;
    }();

    if (type == QLatin1String("array")) {
        auto *table =
            new ZTNameTable({ZTAttributeTables::localizedLabel(QStringLiteral("Name")), tr("Items")});
        table->setReadOnlyColumn(1);
        table->setCompletionValues(completion);
        connect(table, &ZTNameTable::edited, this, [this, key] {
            if (m_loading)
                return;
            m_controller->setApplies(key, true);
            tick(key);
        });
        m_nameTables.insert(key, table);
        return table;
    }
    if (type == QLatin1String("date")) {
        const QString bitKey = ZTDateUtil::bitFlagKeyForDateKey(key);
        auto *date = new ZTPartialDateField(bitKey.isEmpty() ? ZTPartialDateField::Precision::FullOnly
                                                             : ZTPartialDateField::Precision::Partial);
        connect(date, &ZTPartialDateField::dateEdited, this, [this, date, key, bitKey, set] {
            if (m_loading)
                return;
            const QDateTime value = date->date();
            set(value.isValid() ? QVariant(value) : QVariant());
            if (!bitKey.isEmpty())
                m_controller->setValue(bitKey, date->dateBit().value());
        });
        return date;
    }
    if (type == QLatin1String("boolean")) {
        auto *box = new QCheckBox;
        connect(box, &QCheckBox::clicked, this, [box, set](bool on) {
            // A click on a mixed box decides for all items.
            box->setTristate(false);
            box->setChecked(on);
            set(on);
        });
        return box;
    }
    if (type == QLatin1String("rating")) {
        auto *rating = new ZTRatingControl;
        connect(rating, &ZTRatingControl::ratingEdited, this, [set](int value) { set(value); });
        return rating;
    }
    if (isLocaleKey(key) || key == QLatin1String("grade")) {
        auto *combo = new QComboBox;
        if (key == QLatin1String("grade")) {
            combo->setEditable(true);
            combo->addItems(ZTComic::grades());
        } else {
            combo->addItems(key == QLatin1String("locale") ? ZTItemResources::locales()
                                                           : ZTItemResources::priceLocales());
        }
        combo->setPlaceholderText(mixedText());
        combo->setMaximumWidth(180);
        connect(combo, &QComboBox::activated, this, [combo, set] { set(combo->currentText()); });
        if (combo->lineEdit())
            connect(combo->lineEdit(), &QLineEdit::textEdited, this,
                    [set](const QString &text) { set(text); });
        return combo;
    }
    auto *edit = new QLineEdit;
    if (isIntegerKey(key)) {
        edit->setValidator(new QIntValidator(0, std::numeric_limits<int>::max(), edit));
        edit->setMaximumWidth(120);
    }
    const bool words = type == QLatin1String("flatArray");
    if (!completion.isEmpty())
        edit->setCompleter(ZTSheetWidgets::completerForValues(completion, edit,
                                                              words ? ZTSheetWidgets::Completion::LastOfList
                                                                    : ZTSheetWidgets::Completion::Whole));
    connect(edit, &QLineEdit::textEdited, this, [key, words, set](const QString &text) {
        if (words)
            set(ZTSheetWidgets::splitList(text));
        else if (isIntegerKey(key))
            set(text.trimmed().isEmpty() ? QVariant() : QVariant(text.toLongLong()));
        else
            set(text);
    });
    return edit;
}

bool ZTMultipleEditSheet::prepare(const QStringList &oids)
{
    m_items = m_pipeline.document().itemsForOids(oids);
    if (m_items.isEmpty())
        return false;
    m_controller->clear();
    m_controller->handleCacheDictionary(m_pipeline.cacheDictionary());
    m_controller->handleItems(m_items);
    load();
    return true;
}

bool ZTMultipleEditSheet::openWithOids(const QStringList &oids)
{
    if (!prepare(oids))
        return false;
    open();
    return true;
}

bool ZTMultipleEditSheet::isMixed(const QString &key) const
{
    if (m_items.size() < 2)
        return false;
    const QVariant first = m_items.first()->valueForKey(key);
    for (const ZTItem *item : m_items) {
        const QVariant value = item->valueForKey(key);
        if (m_types.value(key) == QLatin1String("array") ||
            m_types.value(key) == QLatin1String("flatArray")) {
            if (ZTItem::variantToStrings(value) != ZTItem::variantToStrings(first))
                return true;
        } else if (value != first) {
            return true;
        }
    }
    return false;
}

void ZTMultipleEditSheet::load()
{
    m_loading = true;
    const auto nouns = ZTItemStatistics::nounsForKind(m_pipeline.document().mediaKind());
    const QString count =
        ZTItemStatistics::displayTextForInt(m_items.size(), nouns.itemNameSingular, nouns.itemNamePlural);
    setWindowTitle(tr("Edit %1").arg(count));
    m_header->setText(tr("Edit %1").arg(count));
    const QVariantMap &dictionary = m_controller->itemDictionary();
    for (auto it = m_fields.constBegin(); it != m_fields.constEnd(); ++it) {
        const QString &key = it.key();
        const QString type = m_types.value(key);
        const QVariant value = dictionary.value(key);
        const bool mixed = isMixed(key);
        m_checkBoxes.value(key)->setChecked(false);
        m_mixedLabels.value(key)->setVisible(mixed);
        if (auto *table = qobject_cast<ZTNameTable *>(it.value())) {
            QList<QStringList> rows;
            for (const auto &row : m_controller->nameRows(key)) {
                int holders = 0;
                for (const ZTItem *item : std::as_const(m_items))
                    holders += ZTItem::variantToStrings(item->valueForKey(key)).contains(row.originalName);
                const QString among =
                    holders == m_items.size() ? tr("all") : tr("%1 of %2").arg(holders).arg(m_items.size());
                rows << QStringList{row.originalName, among};
            }
            table->setRows(rows);
        } else if (auto *date = qobject_cast<ZTPartialDateField *>(it.value())) {
            const QString bitKey = ZTDateUtil::bitFlagKeyForDateKey(key);
            date->setDate(value.toDateTime(), ZTDateBit::fromVariant(dictionary.value(bitKey)));
            date->setPlaceholderText(mixed ? mixedText() : QString());
        } else if (auto *box = qobject_cast<QCheckBox *>(it.value())) {
            box->setTristate(mixed);
            box->setCheckState(mixed ? Qt::PartiallyChecked : value.toBool() ? Qt::Checked : Qt::Unchecked);
        } else if (auto *rating = qobject_cast<ZTRatingControl *>(it.value())) {
            rating->setRating(value.toInt());
        } else if (auto *combo = qobject_cast<QComboBox *>(it.value())) {
            combo->setCurrentIndex(combo->findText(value.toString()));
            if (combo->isEditable())
                combo->setEditText(value.toString());
        } else if (auto *edit = qobject_cast<QLineEdit *>(it.value())) {
            edit->setText(type == QLatin1String("flatArray")
                              ? ZTSheetWidgets::joinList(ZTItem::variantToStrings(value))
                          : value.isNull() ? QString()
                                           : value.toString());
            edit->setPlaceholderText(mixed && type != QLatin1String("flatArray") ? mixedText() : QString());
        }
    }
    m_loading = false;
}

void ZTMultipleEditSheet::applyNameTables()
{
    for (auto it = m_nameTables.constBegin(); it != m_nameTables.constEnd(); ++it) {
        const QString &key = it.key();
        if (!m_controller->applies(key))
            continue;
        for (const QString &name : it.value()->removedOriginals())
            m_controller->removeAttributeWithKey(key, name);
        for (const ZTNameTable::Row &row : it.value()->rows()) {
            const QString name = row.cells.value(0);
            if (row.original.isEmpty())
                m_controller->addAttributeWithKey(key, name);
            else if (name != row.original)
                m_controller->renameName(key, row.original, name);
        }
    }
}

void ZTMultipleEditSheet::save()
{
    if (QWidget *focus = focusWidget())
        focus->clearFocus();
    applyNameTables();
    QStringList oids;
    for (const ZTItem *item : std::as_const(m_items))
        oids << item->oid();
    const bool applied = m_controller->save();
    m_items.clear();
    if (applied)
        Q_EMIT itemsSaved(oids);
    accept();
}

void ZTMultipleEditSheet::reject()
{
    m_controller->clear();
    m_items.clear();
    QDialog::reject();
}
