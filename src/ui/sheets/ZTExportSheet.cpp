#include "ui/sheets/ZTExportSheet.h"

#include "base/ZTLog.h"
#include "export/ZTExportConfigurationController.h"
#include "export/ZTExportController.h"
#include "export/ZTListPickerController.h"
#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"
#include "ui/sheets/ZTListPickerView.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {
// The log's number for lines about exports.
constexpr int s_exportLogContext = 60;

QString text(const char *english)
{
    return QCoreApplication::translate("Localizable", english);
}

// The words of the text file's option page.
QString fileText(const char *english)
{
    return QCoreApplication::translate("ExportFile", english);
}

constexpr int s_columnsPerRow = 3;
} // namespace

ZTExportSheet::ZTExportSheet(ZTDocument &document, QWidget *parent)
    : QDialog(parent), m_document(document),
      m_configuration(std::make_unique<ZTExportConfigurationController>(&document)),
      m_picker(std::make_unique<ZTListPickerController>(&document))
{
    setWindowModality(Qt::WindowModal);
    setWindowTitle(ZTExportConfigurationController::windowTitle());
    m_configuration->setListPickerController(m_picker.get());
    m_configuration->reset();

    m_formats = new QButtonGroup(this);
    m_pages = new QStackedWidget(this);
    auto *radios = new QVBoxLayout;
    const QList<ZTExportFormatEntry> &entries = m_configuration->entries();
    for (int tag = 0; tag < entries.size(); ++tag) {
        auto *radio = new QRadioButton(text(qPrintable(entries[tag].title)), this);
        radio->setObjectName(entries[tag].className);
        ZTExportFormatController *controller = m_configuration->controllerAt(tag);
        radio->setEnabled(controller != nullptr);
        m_formats->addButton(radio, tag);
        radios->addWidget(radio);
        if (!controller)
            m_pages->addWidget(messagePage(text("This format is not available yet.")));
        else if (controller == textController())
            m_pages->addWidget(textOptionsPage());
        else
            m_pages->addWidget(messagePage(text("This format has no options.")));
    }
    radios->addStretch();
    connect(m_formats, &QButtonGroup::idToggled, this, [this](int tag, bool on) {
        if (on)
            selectFormat(tag);
    });

    auto *formatBox = new QGroupBox(text("Format"), this);
    auto *formatLayout = new QHBoxLayout(formatBox);
    formatLayout->addLayout(radios);
    formatLayout->addWidget(m_pages, 1);

    auto *pickerBox = new QGroupBox(text("Export"), this);
    auto *pickerLayout = new QVBoxLayout(pickerBox);
    m_pickerView = new ZTListPickerView(*m_picker, pickerBox);
    pickerLayout->addWidget(m_pickerView);
    connect(m_pickerView, &ZTListPickerView::itemCountChanged, this, [this] { updateExportButton(); });

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *cancel = buttons->addButton(text("Cancel"), QDialogButtonBox::RejectRole);
    m_export = buttons->addButton(text("Export"), QDialogButtonBox::AcceptRole);
    cancel->setAutoDefault(false);
    m_export->setDefault(true);
    connect(cancel, &QPushButton::clicked, this, &ZTExportSheet::reject);
    connect(m_export, &QPushButton::clicked, this, &ZTExportSheet::exportItems);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(formatBox, 1);
    layout->addWidget(pickerBox);
    layout->addWidget(buttons);
    resize(860, 700);

    setRememberedKeys({});
    // The first format that can run is shown; formats not built yet cannot be.
    for (int tag = 0; tag < entries.size(); ++tag) {
        if (m_configuration->isAvailable(tag)) {
            formatButton(tag)->setChecked(true);
            break;
        }
    }
    updateExportButton();
}

// The view observes the picker, so it goes before the picker does.
ZTExportSheet::~ZTExportSheet()
{
    delete m_pickerView;
}

QWidget *ZTExportSheet::messagePage(const QString &message)
{
    auto *label = new QLabel(message);
    label->setAlignment(Qt::AlignCenter);
    label->setEnabled(false);
    return label;
}

QWidget *ZTExportSheet::textOptionsPage()
{
    auto *page = new QWidget;
    m_format = new QComboBox(page);
    m_format->addItems({fileText("Tab Delimited"), fileText("Comma Delimited")});

    auto *grid = new QGridLayout;
    const QStringList keys = textController()->attributes();
    const int rows = int((keys.size() + s_columnsPerRow - 1) / s_columnsPerRow);
    for (int i = 0; i < keys.size(); ++i) {
        // Labelled as the file's first line will name the column.
        const ZTExportColumn *column = m_document.attributeTables().exportColumn(keys[i]);
        auto *box = new QCheckBox(column ? ZTAttributeTables::localizedLabel(column->title) : keys[i]);
        box->setObjectName(keys[i]);
        // Filled column by column, in the order the file will have them.
        grid->addWidget(box, i % rows, i / rows);
        m_columnBoxes.insert(keys[i], box);
    }
    auto *boxes = new QWidget;
    boxes->setLayout(grid);
    auto *scroll = new QScrollArea(page);
    scroll->setWidget(boxes);
    scroll->setWidgetResizable(true);
    scroll->setMinimumHeight(200);
    auto *all = new QPushButton(text("Select All"), page);
    auto *none = new QPushButton(text("Select None"), page);
    for (QPushButton *button : {all, none})
        button->setAutoDefault(false);
    connect(all, &QPushButton::clicked, this, [this] { selectAllColumns(true); });
    connect(none, &QPushButton::clicked, this, [this] { selectAllColumns(false); });
    auto *columnButtons = new QHBoxLayout;
    columnButtons->addStretch();
    columnButtons->addWidget(all);
    columnButtons->addWidget(none);
    auto *columns = new QVBoxLayout;
    columns->addWidget(scroll, 1);
    columns->addLayout(columnButtons);

    m_multiple = new QComboBox(page);
    m_multiple->addItems({fileText("Separate Columns"), fileText("Single Column with Delimiter")});
    m_lineBreak = new QComboBox(page);
    m_lineBreak->addItems(
        {fileText("LF (Linux, macOS)"), fileText("CR (classic Mac OS)"), fileText("CRLF (Windows)")});
    m_delimiter = new QLineEdit(page);
    m_delimiter->setFixedWidth(80);
    auto *explanation =
        new QLabel(fileText("Put between the values of an attribute that holds several, such as authors, "
                            "when they share a single column."),
                   page);
    explanation->setWordWrap(true);
    auto *delimiterColumn = new QHBoxLayout;
    delimiterColumn->addWidget(m_delimiter, 0, Qt::AlignTop);
    delimiterColumn->addWidget(explanation, 1);

    auto *form = new QFormLayout(page);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(fileText("Format") + QLatin1Char(':'), m_format);
    form->addRow(fileText("Columns") + QLatin1Char(':'), columns);
    form->addRow(fileText("Multiple Attributes") + QLatin1Char(':'), m_multiple);
    form->addRow(fileText("Line Breaks") + QLatin1Char(':'), m_lineBreak);
    form->addRow(fileText("Delimiter") + QLatin1Char(':'), delimiterColumn);
    return page;
}

ZTExportController *ZTExportSheet::textController() const
{
    return dynamic_cast<ZTExportController *>(
        m_configuration->controllerForClassNamed(QStringLiteral("ZTExportController")));
}

int ZTExportSheet::formatCount() const
{
    return int(m_formats->buttons().size());
}

QRadioButton *ZTExportSheet::formatButton(int tag) const
{
    return qobject_cast<QRadioButton *>(m_formats->button(tag));
}

void ZTExportSheet::selectFormat(int tag)
{
    if (tag < 0 || tag >= formatCount())
        return;
    if (!formatButton(tag)->isChecked())
        formatButton(tag)->setChecked(true); // comes back here through the group
    m_configuration->show(tag);
    m_pages->setCurrentIndex(tag);
}

void ZTExportSheet::setRememberedKeys(const QStringList &keys)
{
    m_rememberedKeys = keys;
    for (auto it = m_columnBoxes.cbegin(); it != m_columnBoxes.cend(); ++it)
        it.value()->setChecked(keys.isEmpty() || keys.contains(it.key()));
}

void ZTExportSheet::selectAllColumns(bool chosen)
{
    for (QCheckBox *box : std::as_const(m_columnBoxes))
        box->setChecked(chosen);
}

QStringList ZTExportSheet::chosenKeys() const
{
    QStringList keys;
    if (ZTExportController *controller = textController())
        for (const QString &key : controller->attributes())
            if (const QCheckBox *box = m_columnBoxes.value(key); box && box->isChecked())
                keys << key;
    return keys;
}

void ZTExportSheet::applyTextOptions()
{
    ZTExportController *controller = textController();
    if (!controller)
        return;
    controller->setAttributesToExport(chosenKeys());
    controller->setExportFormat(ZTExportController::Format(m_format->currentIndex()));
    controller->setExportMultipleAttributesOption(
        ZTExportController::MultipleAttributes(m_multiple->currentIndex()));
    controller->setLineBreakOption(ZTExportController::LineBreak(m_lineBreak->currentIndex()));
    controller->setMultipleDelimiter(m_delimiter->text());
}

void ZTExportSheet::updateExportButton()
{
    m_export->setEnabled(m_configuration->canExport());
}

QString ZTExportSheet::askForPath(const QString &fileType)
{
    if (m_chooser)
        return m_chooser(fileType);
    const QString suggested =
        QFileInfo(m_document.documentPath()).completeBaseName() + QLatin1Char('.') + fileType;
    QFileDialog dialog(this, text("Export"), suggested);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(fileType);
    dialog.setNameFilter(QStringLiteral("*.") + fileType);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().first();
}

void ZTExportSheet::exportItems()
{
    const int tag = m_formats->checkedId();
    ZTExportFormatController *controller = m_configuration->controllerAt(tag);
    if (!controller || !m_configuration->canExport())
        return;
    const bool textFile = controller == textController();
    if (textFile)
        applyTextOptions();
    const QString path = askForPath(controller->fileType());
    // The columns are remembered once the user has seen where the file goes,
    // whether or not it is written.
    if (textFile && ZTExportController::exportKeysDiffer(m_rememberedKeys, chosenKeys())) {
        m_rememberedKeys = chosenKeys();
        Q_EMIT exportKeysChanged(m_rememberedKeys);
    }
    if (path.isEmpty())
        return;
    // A file that cannot be written ends the export without a word to the
    // user; the log keeps the reason.
    QString error;
    if (!m_configuration->exportChoice(tag) || !m_configuration->performExport(path, &error)) {
        ZTLog::warning(s_exportLogContext, QStringLiteral("export to %1 not written: %2").arg(path, error));
        accept();
        return;
    }
    Q_EMIT exported(path);
    accept();
}
