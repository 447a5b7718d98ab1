#include "ui/sheets/ZTClearAttributesSheet.h"

#include "library/ZTAttributeTables.h"
#include "library/ZTDocument.h"
#include "library/ZTMultipleEdit.h"
#include "library/ZTViewPipeline.h"
#include "ui/sheets/ZTSheetFields.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {
constexpr int s_columns = 3;
}

ZTClearAttributesSheet::ZTClearAttributesSheet(ZTViewPipeline &pipeline, QWidget *parent)
    : QDialog(parent), m_pipeline(pipeline),
      m_controller(std::make_unique<ZTClearAttributesController>(pipeline))
{
    setWindowModality(Qt::WindowModal);
    setWindowTitle(tr("Clear Attributes"));
    const ZTMediaKind kind = pipeline.document().mediaKind();

    m_header = new QLabel(this);
    QFont bold = m_header->font();
    bold.setBold(true);
    m_header->setFont(bold);
    auto *message =
        new QLabel(tr("The chosen attributes are emptied on every selected item that is not locked."), this);
    message->setWordWrap(true);

    // Sorted by the shown label, filled column by column, so the eye runs down.
    QList<QPair<QString, QString>> labelled;
    for (const QString &key : pipeline.document().attributeTables().clearableAttributes())
        labelled.append({ZTSheetFields::labelForKey(key, kind), key});
    std::sort(labelled.begin(), labelled.end(),
              [](const auto &a, const auto &b) { return QString::localeAwareCompare(a.first, b.first) < 0; });
    auto *grid = new QGridLayout;
    const int rows = int((labelled.size() + s_columns - 1) / s_columns);
    for (int i = 0; i < labelled.size(); ++i) {
        const QString key = labelled[i].second;
        auto *box = new QCheckBox(labelled[i].first, this);
        box->setObjectName(key);
        connect(box, &QCheckBox::toggled, this, [this, key](bool on) {
            m_controller->clickColumnMatrix(key, on);
            updateClearButton();
        });
        grid->addWidget(box, i % rows, i / rows);
        m_boxes.insert(key, box);
    }

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *all = buttons->addButton(tr("Select All"), QDialogButtonBox::ResetRole);
    QPushButton *none = buttons->addButton(tr("Select None"), QDialogButtonBox::ResetRole);
    QPushButton *cancel = buttons->addButton(QDialogButtonBox::Cancel);
    m_clear = buttons->addButton(tr("Clear"), QDialogButtonBox::AcceptRole);
    for (QPushButton *button : {all, none, cancel})
        button->setAutoDefault(false);
    m_clear->setDefault(true);
    connect(all, &QPushButton::clicked, this, [this] { selectAll(true); });
    connect(none, &QPushButton::clicked, this, [this] { selectAll(false); });
    connect(cancel, &QPushButton::clicked, this, &ZTClearAttributesSheet::reject);
    connect(m_clear, &QPushButton::clicked, this, &ZTClearAttributesSheet::save);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_header);
    layout->addWidget(message);
    layout->addLayout(grid);
    layout->addStretch();
    layout->addWidget(buttons);
    setMinimumWidth(560);
    updateClearButton();
}

ZTClearAttributesSheet::~ZTClearAttributesSheet() = default;

bool ZTClearAttributesSheet::prepare(const QStringList &oids)
{
    const auto items = m_pipeline.document().itemsForOids(oids);
    if (items.isEmpty())
        return false;
    m_oids = oids;
    m_controller->handleItems(items);
    for (QCheckBox *box : std::as_const(m_boxes)) {
        const QSignalBlocker blocker(box);
        box->setChecked(false);
    }
    m_header->setText(headerText());
    updateClearButton();
    return true;
}

bool ZTClearAttributesSheet::openWithOids(const QStringList &oids)
{
    if (!prepare(oids))
        return false;
    open();
    return true;
}

QString ZTClearAttributesSheet::headerText() const
{
    return m_controller->headerText();
}

void ZTClearAttributesSheet::selectAll(bool chosen)
{
    for (QCheckBox *box : std::as_const(m_boxes)) {
        const QSignalBlocker blocker(box);
        box->setChecked(chosen);
    }
    m_controller->selectAllCheckboxes(chosen);
    updateClearButton();
}

void ZTClearAttributesSheet::updateClearButton()
{
    // Clearing nothing would do nothing: the button waits for a choice.
    m_clear->setEnabled(!m_controller->chosenKeys().isEmpty());
}

void ZTClearAttributesSheet::save()
{
    if (!m_controller->save())
        return;
    Q_EMIT itemsCleared(m_oids);
    m_oids.clear();
    accept();
}

void ZTClearAttributesSheet::reject()
{
    m_controller->clear();
    m_oids.clear();
    QDialog::reject();
}
