#include "ui/app/ZTNewLibraryDialog.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QIcon>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
const char *s_iconNames[] = {"x-office-address-book", "audio-x-generic", "video-x-generic",
                             "image-x-generic"};
const char *s_choiceTitles[] = {"Books", "Music", "Movies", "Comics"};
} // namespace

ZTNewLibraryDialog::ZTNewLibraryDialog(QWidget *parent) : QDialog(parent)
{
    setWindowTitle(QCoreApplication::translate("Localizable", "New Library"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(18, 16, 18, 14);
    layout->setSpacing(10);
    auto *header = new QLabel(QCoreApplication::translate("Localizable", "Select Library Type"));
    QFont bold = header->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.15);
    header->setFont(bold);
    layout->addWidget(header);

    m_choices = new QListWidget;
    m_choices->setIconSize(QSize(32, 32));
    m_choices->setSpacing(2);
    for (int tag = 0; tag < 4; ++tag) {
        auto *item =
            new QListWidgetItem(QIcon::fromTheme(QString::fromLatin1(s_iconNames[tag])),
                                QCoreApplication::translate("Localizable", s_choiceTitles[tag]), m_choices);
        item->setData(Qt::UserRole, tag);
    }
    m_choices->setCurrentRow(0);
    m_choices->setMinimumHeight(4 * 44);
    connect(m_choices, &QListWidget::itemDoubleClicked, this, [this] {
        m_outcome = Create;
        accept();
    });
    layout->addWidget(m_choices);

    auto *buttons = new QDialogButtonBox;
    QPushButton *ok =
        buttons->addButton(QCoreApplication::translate("Localizable", "OK"), QDialogButtonBox::AcceptRole);
    QPushButton *cancel = buttons->addButton(QCoreApplication::translate("Localizable", "Cancel"),
                                             QDialogButtonBox::RejectRole);
    QPushButton *open = buttons->addButton(tr("Open…"), QDialogButtonBox::ActionRole);
    QPushButton *sample = buttons->addButton(tr("Sample Library"), QDialogButtonBox::ActionRole);
    for (QPushButton *button : {ok, cancel})
        button->setMinimumWidth(90);
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, [this] {
        m_outcome = Create;
        accept();
    });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(open, &QPushButton::clicked, this, [this] {
        m_outcome = Open;
        accept();
    });
    connect(sample, &QPushButton::clicked, this, [this] {
        m_outcome = Sample;
        accept();
    });
    layout->addWidget(buttons);
    m_choices->setFocus();
}

ZTMediaKind ZTNewLibraryDialog::selectedKind() const
{
    const int tag = m_choices->currentItem() ? m_choices->currentItem()->data(Qt::UserRole).toInt() : 0;
    return static_cast<ZTMediaKind>(qBound(0, tag, 3));
}

void ZTNewLibraryDialog::selectKind(ZTMediaKind kind)
{
    m_choices->setCurrentRow(int(kind));
}

QString ZTNewLibraryDialog::extensionForTag(int tag)
{
    if (tag < 0 || tag > 3)
        return {};
    return ZTMediaKinds::packageExtension(static_cast<ZTMediaKind>(tag));
}

QString ZTNewLibraryDialog::pathWithExtension(const QString &path, ZTMediaKind kind)
{
    const QString extension = ZTMediaKinds::packageExtension(kind);
    if (path.isEmpty() || QFileInfo(path).suffix() == extension)
        return path;
    return path + QLatin1Char('.') + extension;
}
