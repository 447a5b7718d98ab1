#include "ui/sheets/ZTImportConfigurationSheet.h"

#include <QButtonGroup>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
QString text(const char *english)
{
    return QCoreApplication::translate("Localizable", english);
}
} // namespace

ZTImportConfigurationSheet::ZTImportConfigurationSheet(ZTMediaKind kind, QWidget *parent)
    : QDialog(parent), m_controller(kind)
{
    setWindowModality(Qt::WindowModal);
    setWindowTitle(ZTImportConfigurationController::windowTitle());

    auto *layout = new QVBoxLayout(this);
    m_group = new QButtonGroup(this);
    const QList<ZTImportSource> sources = m_controller.sources();
    for (int tag = 0; tag < sources.size(); ++tag) {
        auto *radio = new QRadioButton(
            QCoreApplication::translate("Localizable", qPrintable(sources[tag].title)), this);
        radio->setObjectName(sources[tag].selectorString);
        radio->setEnabled(sources[tag].available);
        m_group->addButton(radio, tag);
        layout->addWidget(radio);
    }
    layout->addStretch();

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *cancel = buttons->addButton(text("Cancel"), QDialogButtonBox::RejectRole);
    m_select = buttons->addButton(text("Select"), QDialogButtonBox::AcceptRole);
    cancel->setAutoDefault(false);
    m_select->setDefault(true);
    connect(cancel, &QPushButton::clicked, this, &ZTImportConfigurationSheet::reject);
    connect(m_select, &QPushButton::clicked, this, &ZTImportConfigurationSheet::select);
    layout->addWidget(buttons);
    setMinimumWidth(320);
    reset();
}

void ZTImportConfigurationSheet::reset()
{
    m_controller.reset();
    if (QAbstractButton *first = m_group->button(0))
        first->setChecked(true);
}

QRadioButton *ZTImportConfigurationSheet::button(int tag) const
{
    return qobject_cast<QRadioButton *>(m_group->button(tag));
}

int ZTImportConfigurationSheet::buttonCount() const
{
    return int(m_group->buttons().size());
}

void ZTImportConfigurationSheet::select()
{
    // A disabled source cannot be checked, so this only fails without a choice.
    if (!m_controller.select(m_group->checkedId()))
        return;
    const QString selector = m_controller.selectorString();
    accept();
    Q_EMIT sourceSelected(selector);
}
