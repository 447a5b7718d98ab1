#include "ui/sheets/ZTImportSheet.h"

#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {
QString text(const char *english)
{
    return QCoreApplication::translate("Localizable", english);
}

QTableWidgetItem *readOnlyItem(const QString &value)
{
    auto *item = new QTableWidgetItem(value);
    item->setFlags(Qt::ItemIsEnabled);
    return item;
}
} // namespace

ZTImportSheet::ZTImportSheet(ZTDocument &document, QWidget *parent) : QDialog(parent), m_controller(&document)
{
    setWindowModality(Qt::WindowModal);
    setWindowTitle(text("Import File"));

    auto *heading = new QLabel(text("Import File"), this);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);

    m_load = new QPushButton(text("Load File"), this);
    m_load->setAutoDefault(false);
    connect(m_load, &QPushButton::clicked, this, &ZTImportSheet::loadFile);
    m_path = new QLabel(this);
    m_path->setObjectName(QStringLiteral("path"));
    m_path->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_path->setMinimumWidth(200);
    auto *fileRow = new QHBoxLayout;
    fileRow->addWidget(m_load);
    fileRow->addWidget(m_path, 1);

    // Why a file shows no columns; the table alone would leave the user guessing.
    m_problem = new QLabel(this);
    m_problem->setObjectName(QStringLiteral("problem"));
    m_problem->setWordWrap(true);
    QPalette warning = m_problem->palette();
    warning.setColor(QPalette::WindowText, QColor(0xb0, 0x20, 0x20));
    m_problem->setPalette(warning);
    m_problem->hide();

    m_table = new QTableWidget(0, 5, this);
    m_table->setHorizontalHeaderLabels(
        {text("Import"), text("Source Column"), text("Into Column"), text("Option"), text("Value")});
    m_table->verticalHeader()->hide();
    m_table->setSelectionMode(QAbstractItemView::NoSelection);
    m_table->setFocusPolicy(Qt::NoFocus);
    QHeaderView *header = m_table->horizontalHeader();
    header->setSectionResizeMode(ImportColumn, QHeaderView::ResizeToContents);
    header->setSectionResizeMode(SourceColumn, QHeaderView::Stretch);
    header->setSectionResizeMode(IntoColumn, QHeaderView::Interactive);
    header->setSectionResizeMode(OptionColumn, QHeaderView::ResizeToContents);
    header->setSectionResizeMode(ValueColumn, QHeaderView::Interactive);
    m_table->setColumnWidth(IntoColumn, 190);
    m_table->setColumnWidth(ValueColumn, 150);
    m_table->verticalHeader()->setDefaultSectionSize(m_table->verticalHeader()->defaultSectionSize() + 6);

    m_instruction = new QLabel(instructionText(), this);
    m_instruction->setWordWrap(true);

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *cancel = buttons->addButton(text("Cancel"), QDialogButtonBox::RejectRole);
    m_save = buttons->addButton(text("Save/OK"), QDialogButtonBox::AcceptRole);
    cancel->setAutoDefault(false);
    m_save->setDefault(true);
    connect(cancel, &QPushButton::clicked, this, &ZTImportSheet::reject);
    connect(m_save, &QPushButton::clicked, this, &ZTImportSheet::save);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addLayout(fileRow);
    layout->addWidget(m_problem);
    layout->addWidget(m_table, 1);
    layout->addWidget(m_instruction);
    layout->addWidget(buttons);
    resize(780, 480);
}

QString ZTImportSheet::instructionText()
{
    return text("If you are importing into a column that can contain multiple entries, you should specify "
                "whether the column you are importing from contains an internal delimiter or not.  If so, "
                "enter the delimiter in the 'value' column, otherwise you can leave it blank.");
}

void ZTImportSheet::loadFile()
{
    const QString path = m_chooser ? m_chooser()
                                   : QFileDialog::getOpenFileName(
                                         this, text("Load File"), QString(),
                                         text("Text files") + QStringLiteral(" (*.txt *.text *.csv *.tab)"));
    if (!path.isEmpty())
        loadPath(path);
}

bool ZTImportSheet::loadPath(const QString &path)
{
    const bool ok = m_controller.loadFile(path) && m_controller.fileProblem().isEmpty();
    rebuildTable();
    return ok;
}

void ZTImportSheet::clear()
{
    m_controller.clear();
    rebuildTable();
}

void ZTImportSheet::rebuildTable()
{
    m_path->setText(m_controller.path());
    m_path->setToolTip(m_controller.path());
    const QString problem = m_controller.fileProblem();
    // A file loaded with a problem is shown without columns, so nothing of it
    // can be imported; the reason stands above the table.
    const bool showProblem = !problem.isEmpty() && !m_controller.path().isEmpty();
    m_problem->setText(showProblem ? text("This file cannot be imported: %1").arg(problem) : QString());
    m_problem->setVisible(showProblem);
    m_table->clearContents();
    m_table->setRowCount(problem.isEmpty() ? int(m_controller.keyDicts().size()) : 0);
    for (int row = 0; row < m_table->rowCount(); ++row) {
        const ZTImportColumn &column = m_controller.keyDicts().at(row);

        auto *cell = new QWidget;
        auto *box = new QCheckBox(cell);
        auto *centred = new QHBoxLayout(cell);
        centred->setContentsMargins(6, 0, 6, 0);
        centred->addWidget(box, 0, Qt::AlignCenter);
        connect(box, &QCheckBox::toggled, this,
                [this, row](bool on) { m_controller.keyDicts()[row].state = on; });
        m_table->setCellWidget(row, ImportColumn, cell);

        m_table->setItem(row, SourceColumn, readOnlyItem(column.fromColumn));

        auto *into = new QComboBox;
        into->addItems(m_controller.toColumns());
        into->setMaxVisibleItems(20);
        // The first guess may name an attribute this kind does not have.
        into->setPlaceholderText(text("Choose an attribute"));
        connect(into, &QComboBox::activated, this,
                [this, row, into](int index) { chooseInto(row, into->itemText(index)); });
        m_table->setCellWidget(row, IntoColumn, into);
        fillRow(row);
    }
}

// Brings one row's check box, pop-up, option and value cell up to its record.
void ZTImportSheet::fillRow(int row)
{
    const ZTImportColumn &column = m_controller.keyDicts().at(row);
    if (QCheckBox *box = importBox(row)) {
        const QSignalBlocker blocker(box);
        box->setChecked(column.state);
    }
    if (QComboBox *into = intoPopUp(row)) {
        const QSignalBlocker blocker(into);
        into->setCurrentIndex(into->findText(column.toColumn));
    }
    m_table->setItem(row, OptionColumn, readOnlyItem(m_controller.optionText(row)));

    const ZTTypedAttribute *attribute = m_controller.attributeForTitle(column.toColumn);
    if (attribute && attribute->toMany) {
        auto *delimiter = new QLineEdit(column.value.toString());
        connect(delimiter, &QLineEdit::textEdited, this,
                [this, row](const QString &value) { m_controller.keyDicts()[row].value = value; });
        m_table->setCellWidget(row, ValueColumn, delimiter);
    } else if (attribute && attribute->type == QLatin1String("date")) {
        auto *format = new QComboBox;
        for (const ZTImportDateFormat &date : ZTItemImportController::dateDicts())
            format->addItem(date.displayFormat);
        // A date column without a chosen format is read with the first one.
        format->setCurrentIndex(qBound(0, column.value.toInt(), int(format->count()) - 1));
        connect(format, &QComboBox::activated, this,
                [this, row](int index) { m_controller.keyDicts()[row].value = index; });
        m_table->setCellWidget(row, ValueColumn, format);
    } else {
        auto *unused = new QLineEdit;
        unused->setEnabled(false);
        m_table->setCellWidget(row, ValueColumn, unused);
    }
}

void ZTImportSheet::chooseInto(int row, const QString &title)
{
    if (row < 0 || row >= m_controller.keyDicts().size())
        return;
    m_controller.setToColumn(row, title);
    fillRow(row);
}

QCheckBox *ZTImportSheet::importBox(int row) const
{
    QWidget *cell = m_table->cellWidget(row, ImportColumn);
    return cell ? cell->findChild<QCheckBox *>() : nullptr;
}

QComboBox *ZTImportSheet::intoPopUp(int row) const
{
    return qobject_cast<QComboBox *>(m_table->cellWidget(row, IntoColumn));
}

QWidget *ZTImportSheet::valueWidget(int row) const
{
    return m_table->cellWidget(row, ValueColumn);
}

QString ZTImportSheet::optionText(int row) const
{
    const QTableWidgetItem *item = m_table->item(row, OptionColumn);
    return item ? item->text() : QString();
}

void ZTImportSheet::save()
{
    // The table is what the user sees: a file with a problem shows no
    // columns, so nothing is ticked there either.
    bool anyTicked = false;
    if (m_controller.fileProblem().isEmpty())
        for (const ZTImportColumn &column : m_controller.keyDicts())
            anyTicked = anyTicked || column.state;
    if (!anyTicked) {
        ZTSheetWidgets::warn(m_warning, this, ZTItemImportController::noColumnsTitle(),
                             ZTItemImportController::noColumnsMessage());
        return;
    }
    int added = 0;
    if (m_controller.save(&added) != ZTItemImportController::SaveResult::Imported)
        return;
    Q_EMIT itemsImported(added);
    m_controller.clear();
    accept();
}

void ZTImportSheet::reject()
{
    clear();
    QDialog::reject();
}
