#include "ui/sheets/ZTSmartListSheet.h"

#include "library/ZTDocument.h"
#include "library/lists/ZTSmartListController.h"
#include "lists/ZTSmartList.h"
#include "ui/sheets/ZTSmartListRow.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

namespace {
QString text(const char *english)
{
    return QCoreApplication::translate("Localizable", english);
}
} // namespace

ZTSmartListSheet::ZTSmartListSheet(ZTDocument &document, QWidget *parent)
    : QDialog(parent), m_controller(std::make_unique<ZTSmartListController>(document))
{
    setWindowModality(Qt::WindowModal);
    m_header = new QLabel(this);
    QFont bold = m_header->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.2);
    m_header->setFont(bold);
    m_message = new QLabel(this);
    m_message->setWordWrap(true);

    m_name = new QLineEdit(this);
    m_name->setObjectName(QStringLiteral("name"));
    auto *nameForm = new QFormLayout;
    nameForm->addRow(text("Name") + QLatin1Char(':'), m_name);

    m_allAny = new QComboBox(this);
    m_allAny->addItems({text("all"), text("any")});
    connect(m_allAny, &QComboBox::activated, this,
            [this](int index) { m_controller->clickAndOrButton(index); });
    auto *sentence = new QHBoxLayout;
    sentence->addWidget(new QLabel(text("If"), this));
    sentence->addWidget(m_allAny);
    sentence->addWidget(new QLabel(text("of the conditions are met"), this));
    sentence->addStretch();

    auto *rowsHolder = new QWidget;
    m_rowLayout = new QVBoxLayout(rowsHolder);
    m_rowLayout->setContentsMargins(0, 0, 0, 0);
    m_rowLayout->addStretch();
    auto *scroll = new QScrollArea(this);
    scroll->setWidget(rowsHolder);
    scroll->setWidgetResizable(true);
    scroll->setMinimumHeight(180);

    auto *buttons = new QDialogButtonBox(this);
    m_cancel = buttons->addButton(text("Cancel"), QDialogButtonBox::RejectRole);
    QPushButton *cancel = m_cancel;
    // The message names "the Save button", so that is what it says.
    m_save = buttons->addButton(text("Save"), QDialogButtonBox::AcceptRole);
    m_save->setDefault(true);
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &ZTSmartListSheet::reject);
    connect(m_save, &QPushButton::clicked, this, &ZTSmartListSheet::save);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_header);
    layout->addWidget(m_message);
    layout->addLayout(nameForm);
    layout->addLayout(sentence);
    layout->addWidget(scroll, 1);
    layout->addWidget(buttons);
    resize(700, 360);
}

ZTSmartListSheet::~ZTSmartListSheet() = default;

void ZTSmartListSheet::prepareToAdd()
{
    m_controller->setUpInitialEntry();
    loadFromController();
}

void ZTSmartListSheet::prepareOnList(ZTSmartList *list)
{
    m_controller->handleSmartList(list);
    loadFromController();
}

void ZTSmartListSheet::openToAdd()
{
    prepareToAdd();
    open();
}

void ZTSmartListSheet::openOnList(ZTSmartList *list)
{
    prepareOnList(list);
    open();
}

void ZTSmartListSheet::loadFromController()
{
    m_header->setText(m_controller->headerText());
    m_message->setText(m_controller->messageText());
    setWindowTitle(m_controller->headerText());
    m_name->setText(m_controller->name());
    m_allAny->setCurrentIndex(m_controller->andOrFlag() == 0 ? 0 : 1);
    rebuildRows();
    m_name->setFocus();
    m_name->selectAll();
}

void ZTSmartListSheet::rebuildRows(int focusRow)
{
    // Rows follow the controller's entries; rebuilding keeps the two in step
    // and the tab order top to bottom.
    dropRows();
    for (int i = 0; i < m_controller->entryCount(); ++i) {
        auto *row = new ZTSmartListRow(m_controller->entry(i));
        m_rowLayout->insertWidget(i, row);
        connect(row, &ZTSmartListRow::addClicked, this,
                [this, row] { addRowAfter(int(m_rows.indexOf(row))); });
        connect(row, &ZTSmartListRow::removeClicked, this,
                [this, row] { removeRow(int(m_rows.indexOf(row))); });
        m_rows << row;
    }
    // Tab runs down the rows, each left to right, and then to the buttons;
    // controls of the views not shown are skipped by Qt.
    QWidget *previous = m_allAny;
    for (ZTSmartListRow *row : std::as_const(m_rows)) {
        for (QWidget *w : row->focusChain()) {
            setTabOrder(previous, w);
            previous = w;
        }
    }
    setTabOrder(previous, m_cancel);
    setTabOrder(m_cancel, m_save);
    if (ZTSmartListRow *row = m_rows.value(focusRow))
        row->lhsPopUp()->setFocus();
}

void ZTSmartListSheet::addRowAfter(int index)
{
    m_controller->addEntry(index);
    rebuildRows(index + 1);
}

void ZTSmartListSheet::removeRow(int index)
{
    if (!m_controller->removeEntry(index))
        return;
    rebuildRows(qMin(index, m_controller->entryCount() - 1));
}

void ZTSmartListSheet::save()
{
    if (QWidget *focus = focusWidget())
        focus->clearFocus();
    m_controller->setName(m_name->text());
    m_controller->clickAndOrButton(m_allAny->currentIndex());
    ZTSmartList *list = m_controller->save();
    dropRows();
    Q_EMIT smartListSaved(list);
    accept();
}

void ZTSmartListSheet::reject()
{
    dropRows();
    m_controller->cancel();
    QDialog::reject();
}

void ZTSmartListSheet::dropRows()
{
    // Later, not now: a row's own "−" button may be what asked for this.
    for (ZTSmartListRow *row : std::as_const(m_rows)) {
        row->disconnect(this);
        row->hide();
        m_rowLayout->removeWidget(row);
        row->deleteLater();
    }
    m_rows.clear();
}
