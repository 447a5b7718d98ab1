#include "ui/sheets/ZTSmartListRow.h"

#include "library/lists/ZTSmartListEntryController.h"
#include "model/ZTDateUtil.h"
#include "ui/sheets/ZTSheetWidgets.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDoubleValidator>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QStackedWidget>
#include <QToolButton>

namespace {
using RhsView = ZTSmartListEntryController::RhsView;

QWidget *page(std::initializer_list<QWidget *> widgets, std::initializer_list<QString> joiners = {})
{
    auto *page = new QWidget;
    auto *layout = new QHBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    auto joiner = joiners.begin();
    bool first = true;
    for (QWidget *widget : widgets) {
        if (!first && joiner != joiners.end())
            layout->addWidget(new QLabel(*joiner++, page));
        layout->addWidget(widget);
        first = false;
    }
    layout->addStretch();
    return page;
}

QString to()
{
    return QCoreApplication::translate("Localizable", "to");
}

bool isDate(const ZTSmartListEntryController &entry)
{
    return entry.type() == QLatin1String("date");
}

QString dateText(const QDate &date)
{
    return date.isValid() ? ZTDateUtil::standardDateFormatter().stringFromDate(date) : QString();
}

QDate dateOf(const QString &text)
{
    return ZTDateUtil::standardDateFormatter().dateFromString(text).date();
}
} // namespace

ZTSmartListRow::ZTSmartListRow(ZTSmartListEntryController &entry, QWidget *parent)
    : QWidget(parent), m_entry(entry), m_lhs(new QComboBox(this)), m_operator(new QComboBox(this)),
      m_rhs(new QStackedWidget(this)), m_value(new QLineEdit), m_from(new QLineEdit), m_to(new QLineEdit),
      m_number(new QLineEdit), m_period(new QComboBox), m_stars(new ZTRatingControl),
      m_fromStars(new ZTRatingControl), m_toStars(new ZTRatingControl), m_remove(new QToolButton(this)),
      m_add(new QToolButton(this))
{
    m_lhs->addItems(entry.lhsTitles());
    m_lhs->setObjectName(QStringLiteral("lhs"));
    m_operator->setObjectName(QStringLiteral("operator"));
    for (const QString &period : ZTSmartListEntryController::timePeriods())
        m_period->addItem(QCoreApplication::translate("Localizable", period.toUtf8().constData()));
    m_number->setValidator(new QIntValidator(0, 999999, m_number));
    m_number->setMaximumWidth(70);
    for (QLineEdit *edit : {m_from, m_to})
        edit->setMaximumWidth(130);
    m_value->setMinimumWidth(180);

    m_rhs->addWidget(new QWidget);
    m_rhs->addWidget(page({m_value}));
    m_rhs->addWidget(page({m_from, m_to}, {to()}));
    m_rhs->addWidget(page({m_number, m_period}));
    m_rhs->addWidget(page({m_stars}));
    m_rhs->addWidget(page({m_fromStars, m_toStars}, {to()}));

    m_remove->setText(QStringLiteral("−"));
    m_remove->setToolTip(tr("Remove this condition"));
    m_add->setText(QStringLiteral("+"));
    m_add->setToolTip(tr("Add a condition"));

    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_lhs);
    layout->addWidget(m_operator);
    layout->addWidget(m_rhs, 1);
    layout->addWidget(m_remove);
    layout->addWidget(m_add);

    connect(m_lhs, &QComboBox::activated, this, [this] {
        m_entry.selectLhs(m_lhs->currentText());
        sync();
    });
    connect(m_operator, &QComboBox::activated, this, [this] {
        readTexts();
        m_entry.selectOperator(m_operator->currentText());
        sync();
    });
    for (QLineEdit *edit : {m_value, m_from, m_to, m_number})
        connect(edit, &QLineEdit::textEdited, this, [this] { readTexts(); });
    connect(m_period, &QComboBox::activated, this,
            [this](int index) { m_entry.fields().timePeriodIndex = index; });
    connect(m_stars, &ZTRatingControl::ratingEdited, this,
            [this](int stars) { m_entry.fields().stars = stars; });
    connect(m_fromStars, &ZTRatingControl::ratingEdited, this,
            [this](int stars) { m_entry.fields().fromStars = stars; });
    connect(m_toStars, &ZTRatingControl::ratingEdited, this,
            [this](int stars) { m_entry.fields().toStars = stars; });
    connect(m_add, &QToolButton::clicked, this, &ZTSmartListRow::addClicked);
    connect(m_remove, &QToolButton::clicked, this, &ZTSmartListRow::removeClicked);
    sync();
}

QList<QWidget *> ZTSmartListRow::focusChain() const
{
    return {m_lhs,    m_operator, m_value,     m_from,    m_to,     m_number,
            m_period, m_stars,    m_fromStars, m_toStars, m_remove, m_add};
}

int ZTSmartListRow::rhsViewIndex() const
{
    return m_rhs->currentIndex();
}

void ZTSmartListRow::readTexts()
{
    if (m_syncing)
        return;
    auto &f = m_entry.fields();
    if (isDate(m_entry)) {
        f.date = dateOf(m_value->text());
        f.fromDate = dateOf(m_from->text());
        f.toDate = dateOf(m_to->text());
    } else {
        f.value = m_value->text();
        f.fromValue = m_from->text();
        f.toValue = m_to->text();
    }
    f.numberValue = m_number->text();
}

void ZTSmartListRow::fillOperators()
{
    m_operator->clear();
    m_operator->addItems(m_entry.operatorTitles());
    m_operator->setCurrentText(m_entry.selectedOperator());
    // "boolean" rules read as a sentence with no value; the pop-up still shows.
    m_operator->setEnabled(m_operator->count() > 0);
}

void ZTSmartListRow::showFields()
{
    const auto &f = m_entry.fields();
    const QString type = m_entry.type();
    const bool date = isDate(m_entry);
    m_value->setText(date ? dateText(f.date) : f.value);
    m_from->setText(date ? dateText(f.fromDate) : f.fromValue);
    m_to->setText(date ? dateText(f.toDate) : f.toValue);
    m_number->setText(f.numberValue);
    m_period->setCurrentIndex(f.timePeriodIndex);
    m_stars->setRating(f.stars);
    m_fromStars->setRating(f.fromStars);
    m_toStars->setRating(f.toStars);

    // Numbers refuse what is no number while typed; dates show their format.
    const QString placeholder =
        date ? ZTDateUtil::standardDateFormatStringForDateBit(ZTDateBit::FullDate) : QString();
    for (QLineEdit *edit : {m_value, m_from, m_to}) {
        const QValidator *old = edit->validator();
        edit->setValidator(nullptr);
        delete old;
        if (type == QLatin1String("integer"))
            edit->setValidator(new QIntValidator(0, std::numeric_limits<int>::max(), edit));
        else if (type == QLatin1String("float")) {
            auto *validator = new QDoubleValidator(0, 1e12, 2, edit);
            validator->setNotation(QDoubleValidator::StandardNotation);
            edit->setValidator(validator);
        }
        edit->setPlaceholderText(placeholder);
    }
}

void ZTSmartListRow::sync()
{
    m_syncing = true;
    m_lhs->setCurrentText(m_entry.selectedLhs());
    fillOperators();
    m_rhs->setCurrentIndex(int(m_entry.rhsView()));
    showFields();
    m_remove->setEnabled(m_entry.removeEnabled);
    m_syncing = false;
}
