#include "ui/sheets/ZTItemSheet.h"

#include "base/ZTSettings.h"
#include "library/ZTContacts.h"
#include "library/ZTDocument.h"
#include "library/ZTItemController.h"
#include "library/ZTItemStatistics.h"
#include "library/ZTLibraryCaches.h"
#include "library/ZTViewPipeline.h"
#include "model/ZTComic.h"
#include "model/ZTDateUtil.h"
#include "model/ZTItem.h"
#include "model/ZTItemDerived.h"
#include "model/ZTItemResources.h"
#include "ui/sheets/ZTNameTable.h"
#include "ui/sheets/ZTSheetWidgets.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QTabWidget>
#include <QVBoxLayout>

using ZTSheetFields::Field;
using ZTSheetFields::Type;

namespace {
const QString s_name = QStringLiteral("name");
const QString s_role = QStringLiteral("role");

bool isBookAuthors(const QString &key)
{
    return key == QLatin1String("authorRoleDicts");
}
} // namespace

ZTItemSheet::ZTItemSheet(ZTViewPipeline &pipeline, QWidget *parent)
    : QDialog(parent), m_pipeline(pipeline),
      m_controller(ZTItemController::forKind(pipeline.document().mediaKind(), pipeline))
{
    const ZTMediaKind kind = pipeline.document().mediaKind();
    setWindowModality(Qt::WindowModal);

    m_header = new QLabel(this);
    QFont bold = m_header->font();
    bold.setBold(true);
    m_header->setFont(bold);

    m_cover = new ZTCoverWell(this);
    m_rating = new ZTRatingControl(this);
    auto *left = new QVBoxLayout;
    left->addWidget(m_cover);
    left->addWidget(m_rating, 0, Qt::AlignHCenter);
    left->addStretch();
    connect(m_cover, &ZTCoverWell::imageChosen, this,
            [this](const QImage &image, const QByteArray &bytes, const QString &type) {
                m_controller->setCover(image, bytes, type, true);
            });
    connect(m_cover, &ZTCoverWell::imageRemoved, this, [this] { m_controller->removeCover(); });
    connect(m_rating, &ZTRatingControl::ratingEdited, this, [this](int rating) {
        if (!m_loading)
            m_controller->setRatingControl(rating);
    });

    m_pages = new QTabWidget(this);
    for (const ZTSheetFields::Page &page : ZTSheetFields::pagesForKind(kind)) {
        auto *content = new QWidget;
        auto *form = new QFormLayout(content);
        form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
        for (const Field &field : page.fields) {
            QWidget *editor = makeField(field);
            if (field.type == Type::Flag)
                form->addRow(QString(), editor);
            else
                form->addRow(field.label + QLatin1Char(':'), editor);
            m_fieldSpecs << field;
        }
        if (page.fields.first().key == QLatin1String("ownedFlag"))
            form->addRow(makeLendingBox());
        auto *scroll = new QScrollArea;
        scroll->setWidget(content);
        scroll->setWidgetResizable(true);
        scroll->setFrameShape(QFrame::NoFrame);
        m_pages->addTab(scroll, page.title);
    }

    m_previous = new QPushButton(tr("Previous"), this);
    m_next = new QPushButton(tr("Next"), this);
    m_previous->setAutoDefault(false);
    m_next->setAutoDefault(false);
    connect(m_previous, &QPushButton::clicked, this, &ZTItemSheet::showPreviousItem);
    connect(m_next, &QPushButton::clicked, this, &ZTItemSheet::showNextItem);
    auto *buttons = new QDialogButtonBox(this);
    m_save = buttons->addButton(tr("Save"), QDialogButtonBox::AcceptRole);
    QPushButton *cancel = buttons->addButton(QDialogButtonBox::Cancel);
    m_save->setDefault(true);
    cancel->setAutoDefault(false);
    connect(m_save, &QPushButton::clicked, this, &ZTItemSheet::saveAndClose);
    connect(cancel, &QPushButton::clicked, this, &ZTItemSheet::reject);

    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_previous);
    bottom->addWidget(m_next);
    bottom->addStretch();
    bottom->addWidget(buttons);

    auto *middle = new QHBoxLayout;
    middle->addLayout(left);
    middle->addWidget(m_pages, 1);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_header);
    layout->addLayout(middle, 1);
    layout->addLayout(bottom);
    resize(740, 640);
}

ZTItemSheet::~ZTItemSheet() = default;

QStringList ZTItemSheet::completionValues(const QString &key) const
{
    QStringList values;
    for (const QVariant &value :
         m_controller->cacheDictionary().value(ZTSheetFields::cacheKeyForKey(key)).toList()) {
        const QString text = value.toString();
        if (!text.trimmed().isEmpty() && text != ZTCacheKey::emptyTag)
            values << text;
    }
    return values;
}

void ZTItemSheet::setValue(const QString &key, const QVariant &value)
{
    if (!m_loading)
        m_controller->setValue(key, value);
}

QWidget *ZTItemSheet::makeField(const Field &field)
{
    const QString key = field.key;
    QWidget *editor = nullptr;
    switch (field.type) {
    case Type::Text:
    case Type::Keywords:
    case Type::Integer: {
        auto *edit = new QLineEdit(this);
        if (field.type == Type::Integer) {
            edit->setValidator(new QIntValidator(0, std::numeric_limits<int>::max(), edit));
            edit->setMaximumWidth(120);
        }
        connect(edit, &QLineEdit::textEdited, this,
                [this, edit, key, type = field.type](const QString &text) {
                    if (type == Type::Keywords)
                        setValue(key, ZTSheetWidgets::splitList(text));
                    else if (type == Type::Integer)
                        setValue(key, text.trimmed().isEmpty() ? QVariant() : QVariant(text.toLongLong()));
                    else
                        setValue(key, text);
                    Q_UNUSED(edit)
                });
        editor = edit;
        break;
    }
    case Type::LongText: {
        auto *edit = new QPlainTextEdit(this);
        edit->setTabChangesFocus(true);
        edit->setMinimumHeight(120);
        connect(edit, &QPlainTextEdit::textChanged, this,
                [this, edit, key] { setValue(key, edit->toPlainText()); });
        editor = edit;
        break;
    }
    case Type::Date: {
        auto *date = new ZTPartialDateField(ZTPartialDateField::Precision::Partial, this);
        const QString bitKey = ZTDateUtil::bitFlagKeyForDateKey(key);
        connect(date, &ZTPartialDateField::dateEdited, this, [this, date, key, bitKey] {
            const QDateTime value = date->date();
            setValue(key, value.isValid() ? QVariant(value) : QVariant());
            setValue(bitKey, date->dateBit().value());
        });
        editor = date;
        break;
    }
    case Type::Flag: {
        auto *box = new QCheckBox(field.label, this);
        connect(box, &QCheckBox::toggled, this, [this, key](bool on) { setValue(key, on); });
        editor = box;
        break;
    }
    case Type::Names:
    case Type::RoleDicts: {
        auto *table = new ZTNameTable(field.headers, this);
        table->setCompletionValues(completionValues(key));
        const bool roles = field.type == Type::RoleDicts;
        connect(table, &ZTNameTable::edited, this, [this, table, key, roles] {
            if (!roles) {
                QStringList names;
                for (const QStringList &row : table->cellRows())
                    names << row.value(0);
                setValue(key, names);
                return;
            }
            QVariantList dicts;
            for (const QStringList &row : table->cellRows())
                dicts << QVariantMap{{s_name, row.value(0)}, {s_role, row.value(1)}};
            setValue(key, dicts);
        });
        editor = table;
        break;
    }
    case Type::Locale:
    case Type::Grade: {
        auto *combo = new QComboBox(this);
        if (field.type == Type::Locale) {
            combo->addItems(ZTItemResources::locales());
            connect(combo, &QComboBox::activated, this,
                    [this, combo, key] { setValue(key, combo->currentText()); });
        } else {
            combo->setEditable(true);
            combo->addItems(ZTComic::grades());
            connect(combo, &QComboBox::currentTextChanged, this,
                    [this, key](const QString &text) { setValue(key, text); });
        }
        combo->setMaximumWidth(160);
        editor = combo;
        break;
    }
    case Type::Price: {
        auto *price = new ZTPriceField(this);
        price->setMaximumWidth(220);
        // The amount is saved in the currency shown beside it.
        connect(price, &ZTPriceField::priceEdited, this, [this, price, key, currencyKey = field.currencyKey] {
            setValue(key, price->price());
            setValue(currencyKey, price->currency());
        });
        connect(price, &ZTPriceField::currencyChosen, this,
                [this, price, key, currencyKey = field.currencyKey](const QString &code) {
                    setValue(currencyKey, code);
                    setValue(key, price->price());
                });
        editor = price;
        break;
    }
    }
    if (auto *edit = qobject_cast<QLineEdit *>(editor)) {
        const QStringList values = completionValues(key);
        if (!values.isEmpty())
            edit->setCompleter(ZTSheetWidgets::completerForValues(values, edit,
                                                                  field.type == Type::Keywords
                                                                      ? ZTSheetWidgets::Completion::LastOfList
                                                                      : ZTSheetWidgets::Completion::Whole));
    }
    editor->setObjectName(key);
    editor->setAccessibleName(field.label);
    m_fields.insert(key, editor);
    return editor;
}

QWidget *ZTItemSheet::makeLendingBox()
{
    const ZTMediaKind kind = m_pipeline.document().mediaKind();
    auto *box = new QGroupBox(this);
    auto *form = new QFormLayout(box);
    m_lentOut = new QCheckBox(ZTSheetFields::labelForKey(QStringLiteral("lentOutFlag"), kind), box);
    m_lentToName = new QLineEdit(box);
    m_lentToEmail = new QLineEdit(box);
    m_dateLent = new ZTPartialDateField(ZTPartialDateField::Precision::FullOnly, box);
    m_dateDue = new ZTPartialDateField(ZTPartialDateField::Precision::FullOnly, box);
    m_lentOut->setObjectName(QStringLiteral("lentOutFlag"));
    m_lentToName->setObjectName(QStringLiteral("lentToName"));
    m_lentToEmail->setObjectName(QStringLiteral("lentToEmail"));
    form->addRow(m_lentOut);
    form->addRow(ZTSheetFields::labelForKey(QStringLiteral("lentToName"), kind) + QLatin1Char(':'),
                 m_lentToName);
    form->addRow(ZTSheetFields::labelForKey(QStringLiteral("lentToEmail"), kind) + QLatin1Char(':'),
                 m_lentToEmail);
    form->addRow(ZTSheetFields::labelForKey(QStringLiteral("dateLent"), kind) + QLatin1Char(':'), m_dateLent);
    form->addRow(ZTSheetFields::labelForKey(QStringLiteral("dateDue"), kind) + QLatin1Char(':'), m_dateDue);
    m_fields.insert(QStringLiteral("lentToName"), m_lentToName);
    m_fields.insert(QStringLiteral("lentToEmail"), m_lentToEmail);
    m_fields.insert(QStringLiteral("dateLent"), m_dateLent);
    m_fields.insert(QStringLiteral("dateDue"), m_dateDue);

    // The borrowers of the library and the contacts complete the name.
    QStringList people = completionValues(QStringLiteral("lentToName"));
    for (const QString &person : ZTContacts::shared().peopleFromAddressBook())
        if (!people.contains(person))
            people << person;
    auto *completer = ZTSheetWidgets::completerForValues(people, m_lentToName);
    m_lentToName->setCompleter(completer);
    connect(completer, qOverload<const QString &>(&QCompleter::activated), this, [this](const QString &name) {
        if (m_loading)
            return;
        m_controller->chooseBorrower(name);
        const QString email = m_controller->itemDictionary().value(QStringLiteral("lentToEmail")).toString();
        if (!email.isEmpty())
            m_lentToEmail->setText(email);
    });
    connect(m_lentOut, &QCheckBox::toggled, this, [this](bool on) {
        if (m_loading)
            return;
        m_controller->clickLentOutButton(on);
        m_loading = true;
        if (!on) {
            m_lentToName->clear();
            m_lentToEmail->clear();
            m_dateLent->setDate({}, ZTDateBit::FullDate);
            m_dateDue->setDate({}, ZTDateBit::FullDate);
        } else if (m_dateLent->isBlank()) {
            // A new loan starts today unless the user says otherwise.
            const QDateTime today(QDate::currentDate(), QTime(0, 0));
            m_dateLent->setDate(today, ZTDateBit::FullDate);
            m_controller->setValue(QStringLiteral("dateLent"), today);
        }
        m_loading = false;
        updateLendingEnabled();
    });
    connect(m_lentToName, &QLineEdit::textEdited, this,
            [this](const QString &text) { setValue(QStringLiteral("lentToName"), text); });
    connect(m_lentToEmail, &QLineEdit::textEdited, this,
            [this](const QString &text) { setValue(QStringLiteral("lentToEmail"), text); });
    for (ZTPartialDateField *date : {m_dateLent, m_dateDue}) {
        const QString key = date == m_dateLent ? QStringLiteral("dateLent") : QStringLiteral("dateDue");
        date->setObjectName(key);
        connect(date, &ZTPartialDateField::dateEdited, this, [this, date, key] {
            const QDateTime value = date->date();
            setValue(key, value.isValid() ? QVariant(value) : QVariant());
        });
    }
    return box;
}

void ZTItemSheet::updateLendingEnabled()
{
    const bool on = m_lentOut->isChecked();
    for (QWidget *w : std::initializer_list<QWidget *>{m_lentToName, m_lentToEmail, m_dateLent, m_dateDue})
        w->setEnabled(on);
}

void ZTItemSheet::prepareToAdd()
{
    m_controller->prepareToAdd();
    load();
}

bool ZTItemSheet::prepareToEdit(const QString &oid)
{
    ZTItem *item = m_pipeline.document().itemForOid(oid);
    if (!item)
        return false;
    m_controller->clear();
    m_controller->handleCacheDictionary(m_pipeline.cacheDictionary());
    m_controller->handleIsAdding(false);
    m_controller->handleItem(item);
    load();
    return true;
}

void ZTItemSheet::openToAdd()
{
    prepareToAdd();
    open();
}

bool ZTItemSheet::openToEdit(const QString &oid)
{
    if (!prepareToEdit(oid))
        return false;
    open();
    return true;
}

void ZTItemSheet::load()
{
    m_loading = true;
    const auto nouns = ZTItemStatistics::nounsForKind(m_pipeline.document().mediaKind());
    const QString noun = nouns.itemNameSingular;
    const QString title = m_controller->isAdding() ? tr("Add %1").arg(noun) : tr("Edit %1").arg(noun);
    setWindowTitle(title);
    const QString itemTitle = m_controller->itemDictionary().value(QStringLiteral("title")).toString();
    m_header->setText(m_controller->isAdding() || itemTitle.isEmpty() ? title : itemTitle);
    for (const Field &field : std::as_const(m_fieldSpecs))
        loadField(field);
    m_rating->setRating(m_controller->ratingControl());
    const ZTItem *item = m_controller->item();
    m_cover->showImage(item && item->hasCoverImage() ? item->image() : QImage());
    loadLending();
    m_loading = false;
    updateButtons();
    m_pages->setCurrentIndex(0);
    if (QWidget *first = m_fields.value(QStringLiteral("title")))
        first->setFocus();
}

void ZTItemSheet::loadField(const Field &field)
{
    const QVariantMap &dictionary = m_controller->itemDictionary();
    const QVariant value = dictionary.value(field.key);
    QWidget *editor = m_fields.value(field.key);
    switch (field.type) {
    case Type::Text:
        static_cast<QLineEdit *>(editor)->setText(value.toString());
        break;
    case Type::Integer:
        static_cast<QLineEdit *>(editor)->setText(value.isValid() && !value.isNull() ? value.toString()
                                                                                     : QString());
        break;
    case Type::Keywords:
        static_cast<QLineEdit *>(editor)->setText(ZTSheetWidgets::joinList(ZTItem::variantToStrings(value)));
        break;
    case Type::LongText:
        static_cast<QPlainTextEdit *>(editor)->setPlainText(value.toString());
        break;
    case Type::Date:
        static_cast<ZTPartialDateField *>(editor)->setDate(
            value.toDateTime(),
            ZTDateBit::fromVariant(dictionary.value(ZTDateUtil::bitFlagKeyForDateKey(field.key))));
        break;
    case Type::Flag: {
        // A new item starts owned, as the store's default has it.
        const bool fallback = field.key == QLatin1String("ownedFlag") && !m_controller->item();
        static_cast<QCheckBox *>(editor)->setChecked(value.isValid() ? value.toBool() : fallback);
        break;
    }
    case Type::Names: {
        QList<QStringList> rows;
        for (const QString &name : ZTItem::variantToStrings(value))
            rows << QStringList{name};
        static_cast<ZTNameTable *>(editor)->setRows(rows);
        break;
    }
    case Type::RoleDicts: {
        QList<QStringList> rows;
        for (const QVariant &entry : value.toList()) {
            const QVariantMap map = entry.toMap();
            QString role = map.value(s_role).toString();
            // Book roles are stored as short keys and shown in the user's language.
            if (isBookAuthors(field.key) && !role.isEmpty())
                role = ZTItemDerived::localizedRole(role);
            rows << QStringList{map.value(s_name).toString(), role};
        }
        static_cast<ZTNameTable *>(editor)->setRows(rows);
        break;
    }
    case Type::Locale: {
        auto *combo = static_cast<QComboBox *>(editor);
        const QString code =
            value.toString().isEmpty()
                ? ZTSettings::value(ZTSettingsKey::DefaultLocale, QStringLiteral("US")).toString()
                : value.toString();
        if (combo->findText(code) < 0)
            combo->addItem(code);
        combo->setCurrentText(code);
        break;
    }
    case Type::Grade:
        static_cast<QComboBox *>(editor)->setCurrentText(value.toString());
        break;
    case Type::Price: {
        // A new item takes the library's default currency, as the store gives it.
        QString currency = dictionary.value(field.currencyKey).toString();
        if (currency.isEmpty())
            currency = ZTSettings::value(ZTSettingsKey::DefaultCurrency, QStringLiteral("USD")).toString();
        static_cast<ZTPriceField *>(editor)->setPrice(value, currency);
    } break;
    }
}

void ZTItemSheet::loadLending()
{
    const ZTItem *item = m_controller->item();
    const bool lent = item && item->isLentOut();
    m_lentOut->setChecked(lent);
    m_lentToName->setText(lent ? item->lentToName() : QString());
    m_lentToEmail->setText(lent ? item->lentToEmail() : QString());
    m_dateLent->setDate(lent ? item->dateLent() : QDateTime(), ZTDateBit::FullDate);
    m_dateDue->setDate(lent ? item->dateDue() : QDateTime(), ZTDateBit::FullDate);
    updateLendingEnabled();
}

void ZTItemSheet::updateButtons()
{
    m_controller->updatePreviousNextButtonState();
    const bool editing = !m_controller->isAdding() && m_controller->item();
    m_previous->setEnabled(editing && m_controller->hasPreviousOid());
    m_next->setEnabled(editing && m_controller->hasNextOid());
}

void ZTItemSheet::commitEditing()
{
    // An open cell editor writes its text back when it loses focus.
    if (QWidget *focus = focusWidget())
        focus->clearFocus();
}

void ZTItemSheet::saveAndClose()
{
    commitEditing();
    if (ZTItem *item = m_controller->save())
        Q_EMIT itemSaved(item->oid());
    accept();
}

void ZTItemSheet::reject()
{
    // Escape, Cancel and closing the window all drop the sheet's state.
    m_controller->clear();
    QDialog::reject();
}

void ZTItemSheet::step(Direction direction)
{
    commitEditing();
    ZTItem *before = m_controller->item();
    const bool dirty = m_controller->isDirty();
    const bool moved =
        direction == Direction::Next ? m_controller->showNextItem() : m_controller->showPreviousItem();
    if (!moved)
        return;
    if (dirty && before)
        Q_EMIT itemSaved(before->oid());
    load();
}
