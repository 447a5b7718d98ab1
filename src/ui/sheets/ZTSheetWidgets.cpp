#include "ui/sheets/ZTSheetWidgets.h"

#include "model/ZTDateUtil.h"
#include "model/ZTItem.h"
#include "model/ZTItemResources.h"
#include "model/ZTMoneyFormatter.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QCompleter>
#include <QDragEnterEvent>
#include <QFile>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QImageReader>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QStringListModel>
#include <QVBoxLayout>
#include <QtMath>

namespace {
constexpr int s_starSize = 16;
constexpr int s_starGap = 2;

QPainterPath starPath(const QRectF &box)
{
    QPainterPath path;
    const QPointF centre = box.center();
    const double outer = box.width() / 2.0, inner = outer * 0.45;
    for (int i = 0; i < 10; ++i) {
        const double angle = -M_PI / 2 + i * M_PI / 5;
        const double r = i % 2 ? inner : outer;
        const QPointF p(centre.x() + r * std::cos(angle), centre.y() + r * std::sin(angle));
        i == 0 ? path.moveTo(p) : path.lineTo(p);
    }
    path.closeSubpath();
    return path;
}

// Completes the entry after the last comma and keeps the entries before it.
class ListCompleter : public QCompleter {
public:
    using QCompleter::QCompleter;
    QStringList splitPath(const QString &path) const override
    {
        return {path.section(QLatin1Char(','), -1).trimmed()};
    }
    QString pathFromIndex(const QModelIndex &index) const override
    {
        const auto *edit = qobject_cast<QLineEdit *>(widget());
        QString text = edit ? edit->text() : QString();
        const qsizetype comma = text.lastIndexOf(QLatin1Char(','));
        text = comma < 0 ? QString() : text.left(comma + 1) + QLatin1Char(' ');
        return text + QCompleter::pathFromIndex(index);
    }
};

QString typeOfBytes(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    const QByteArray format = QImageReader::imageFormat(&buffer).toUpper();
    if (format == "JPG" || format == "JPEG")
        return QStringLiteral("JPEG");
    if (format == "PNG" || format == "GIF" || format == "TIFF")
        return QString::fromLatin1(format);
    return {};
}
} // namespace

// ---- rating ----

ZTRatingControl::ZTRatingControl(QWidget *parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(tr("Rating"));
}

void ZTRatingControl::setRating(int rating)
{
    m_rating = qBound(0, rating, 5);
    update();
}

QSize ZTRatingControl::sizeHint() const
{
    return {5 * s_starSize + 4 * s_starGap + 4, s_starSize + 4};
}

void ZTRatingControl::edit(int rating)
{
    const int bounded = qBound(0, rating, 5);
    if (bounded == m_rating)
        return;
    setRating(bounded);
    Q_EMIT ratingEdited(m_rating);
}

void ZTRatingControl::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor on = palette().color(QPalette::Text);
    const QColor off = palette().color(QPalette::Mid);
    const double top = (height() - s_starSize) / 2.0;
    for (int i = 0; i < 5; ++i) {
        const QRectF box(2 + i * (s_starSize + s_starGap), top, s_starSize, s_starSize);
        const QPainterPath path = starPath(box);
        if (i < m_rating)
            painter.fillPath(path, on);
        else
            painter.strokePath(path, QPen(off, 1));
    }
    if (hasFocus()) {
        QPen pen(palette().color(QPalette::Highlight), 1, Qt::DotLine);
        painter.setPen(pen);
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

void ZTRatingControl::mousePressEvent(QMouseEvent *event)
{
    const int star = qBound(0, int(event->position().x() - 2) / (s_starSize + s_starGap), 4) + 1;
    edit(star == m_rating ? 0 : star);
}

void ZTRatingControl::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (key == Qt::Key_Left || key == Qt::Key_Minus)
        edit(m_rating - 1);
    else if (key == Qt::Key_Right || key == Qt::Key_Plus)
        edit(m_rating + 1);
    else if (key >= Qt::Key_0 && key <= Qt::Key_5)
        edit(key - Qt::Key_0);
    else
        QWidget::keyPressEvent(event);
}

// ---- partial date ----

ZTPartialDateField::ZTPartialDateField(Precision precision, QWidget *parent)
    : QWidget(parent), m_edit(new QLineEdit(this)), m_button(new QToolButton(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_edit, 1);
    layout->addWidget(m_button);
    m_button->setToolTip(tr("Click to choose which parts of the date are known"));
    m_button->setVisible(precision == Precision::Partial);
    m_button->setFocusPolicy(Qt::TabFocus);
    setFocusProxy(m_edit);
    connect(m_edit, &QLineEdit::textEdited, this, [this] {
        m_known = parsed();
        Q_EMIT dateEdited();
    });
    connect(m_button, &QToolButton::clicked, this, [this] {
        setDateBit(m_bit.next());
        Q_EMIT dateEdited();
    });
    setDateBit(ZTDateBit::FullDate);
}

void ZTPartialDateField::setDate(const QDateTime &date, ZTDateBit bit)
{
    m_bit = bit;
    m_known = date;
    m_button->setText(ZTDateUtil::standardDateFormatStringForDateBit(bit));
    m_edit->setPlaceholderText(m_button->text());
    m_edit->setText(ZTDateUtil::displayString(date, bit));
}

void ZTPartialDateField::setDateBit(ZTDateBit bit)
{
    // The whole date is kept while parts are hidden, so walking the bits
    // round brings the day back.
    const QDateTime current = date();
    if (current.isValid())
        m_known = current;
    m_bit = bit;
    m_button->setText(ZTDateUtil::standardDateFormatStringForDateBit(bit));
    m_edit->setPlaceholderText(m_button->text());
    if (current.isValid())
        m_edit->setText(ZTDateUtil::displayString(m_known, bit));
}

QDateTime ZTPartialDateField::parsed() const
{
    if (isBlank())
        return {};
    return ZTDateUtil::standardDateFormatterForDateBit(m_bit).dateFromString(m_edit->text());
}

QDateTime ZTPartialDateField::date() const
{
    const QDateTime shown = parsed();
    if (!shown.isValid() || !m_known.isValid())
        return shown;
    // What the text shows agrees with the kept date: the hidden parts stay.
    const QDate a = shown.date(), b = m_known.date();
    const bool same = a.year() == b.year() && (!m_bit.knowsMonth() || a.month() == b.month()) &&
                      (!m_bit.knowsDay() || a.day() == b.day());
    return same ? m_known : shown;
}

bool ZTPartialDateField::isBlank() const
{
    return m_edit->text().trimmed().isEmpty();
}

// ---- price ----

ZTPriceField::ZTPriceField(QWidget *parent)
    : QWidget(parent), m_edit(new QLineEdit(this)), m_button(new QToolButton(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_edit, 1);
    layout->addWidget(m_button);
    m_button->setPopupMode(QToolButton::InstantPopup);
    m_button->setFocusPolicy(Qt::TabFocus);
    m_button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    auto *menu = new QMenu(m_button);
    for (const QString &code : ZTItemResources::priceLocales())
        menu->addAction(code, this, [this, code] {
            chooseCurrency(code);
            Q_EMIT currencyChosen(code);
        });
    m_button->setMenu(menu);
    setFocusProxy(m_edit);
    connect(m_edit, &QLineEdit::textEdited, this, &ZTPriceField::priceEdited);
    chooseCurrency(QStringLiteral("USD"));
}

void ZTPriceField::chooseCurrency(const QString &code)
{
    // A typed amount keeps its value when the currency changes.
    const QVariant amount = price();
    m_currency = code.isEmpty() ? QStringLiteral("USD") : code;
    m_button->setText(m_currency);
    m_edit->setPlaceholderText(ZTMoneyFormatter::formatterForLocale(m_currency).string(0));
    if (amount.isValid())
        m_edit->setText(ZTMoneyFormatter::formatterForLocale(m_currency).string(amount.toDouble()));
}

void ZTPriceField::setPrice(const QVariant &price, const QString &currency)
{
    m_edit->clear();
    chooseCurrency(currency);
    if (price.isValid() && !price.isNull())
        m_edit->setText(ZTMoneyFormatter::formatterForLocale(m_currency).string(price.toDouble()));
}

QVariant ZTPriceField::price() const
{
    const QString text = m_edit->text().trimmed();
    double value = 0;
    if (text.isEmpty() || !ZTMoneyFormatter::formatterForLocale(m_currency).numberFromString(text, &value))
        return {};
    return value;
}

// ---- cover ----

ZTCoverWell::ZTCoverWell(QWidget *parent)
    : QWidget(parent), m_picture(new QLabel(this)), m_choose(new QPushButton(tr("Choose…"), this)),
      m_remove(new QPushButton(tr("Remove"), this))
{
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
    m_picture->setAlignment(Qt::AlignCenter);
    m_picture->setFixedSize(160, 200);
    m_picture->setFrameShape(QFrame::StyledPanel);
    m_picture->setText(tr("Drop or paste\na cover here"));
    m_picture->setForegroundRole(QPalette::PlaceholderText);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_choose);
    buttons->addWidget(m_remove);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_picture);
    layout->addLayout(buttons);
    connect(m_choose, &QPushButton::clicked, this, [this] {
        const QString path = QFileDialog::getOpenFileName(
            this, tr("Choose a Cover"), {}, tr("Pictures (*.png *.jpg *.jpeg *.gif *.tif *.tiff)"));
        if (!path.isEmpty())
            takeFile(path);
    });
    connect(m_remove, &QPushButton::clicked, this, [this] {
        showImage({});
        Q_EMIT imageRemoved();
    });
    m_remove->setEnabled(false);
}

void ZTCoverWell::showImage(const QImage &image)
{
    m_image = image;
    m_remove->setEnabled(!image.isNull());
    if (image.isNull()) {
        m_picture->setPixmap({});
        m_picture->setText(tr("Drop or paste\na cover here"));
        return;
    }
    m_picture->setPixmap(QPixmap::fromImage(
        image.scaled(m_picture->size() - QSize(4, 4), Qt::KeepAspectRatio, Qt::SmoothTransformation)));
}

bool ZTCoverWell::takeBytes(const QByteArray &bytes)
{
    if (!ZTItem::isValidImage(bytes))
        return false;
    const QImage image = QImage::fromData(bytes);
    showImage(image);
    Q_EMIT imageChosen(image, bytes, typeOfBytes(bytes));
    return true;
}

bool ZTCoverWell::takeFile(const QString &path)
{
    QFile file(path);
    // Pictures are small; a huge file is no cover and is not read whole.
    if (file.size() > 64 * 1024 * 1024 || !file.open(QIODevice::ReadOnly))
        return false;
    return takeBytes(file.readAll());
}

bool ZTCoverWell::takeMimeData(const QMimeData *data)
{
    if (!data)
        return false;
    for (const QUrl &url : data->urls())
        if (url.isLocalFile() && takeFile(url.toLocalFile()))
            return true;
    if (data->hasImage()) {
        const QImage image = qvariant_cast<QImage>(data->imageData());
        if (image.isNull() || image.width() < 2 || image.height() < 2)
            return false;
        // Pasted pictures come without bytes: they are stored as PNG.
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        return takeBytes(bytes);
    }
    return false;
}

void ZTCoverWell::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasImage() || event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void ZTCoverWell::dropEvent(QDropEvent *event)
{
    if (takeMimeData(event->mimeData()))
        event->acceptProposedAction();
}

void ZTCoverWell::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Paste)) {
        takeMimeData(QApplication::clipboard()->mimeData());
        return;
    }
    if ((event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) && !m_image.isNull()) {
        showImage({});
        Q_EMIT imageRemoved();
        return;
    }
    QWidget::keyPressEvent(event);
}

// ---- helpers ----

QCompleter *ZTSheetWidgets::completerForValues(const QStringList &values, QObject *parent,
                                               Completion completion)
{
    QCompleter *completer =
        completion == Completion::LastOfList ? new ListCompleter(parent) : new QCompleter(parent);
    completer->setModel(new QStringListModel(values, completer));
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setCompletionMode(QCompleter::PopupCompletion);
    return completer;
}

QStringList ZTSheetWidgets::splitList(const QString &text)
{
    QStringList list;
    for (const QString &part : text.split(QLatin1Char(','))) {
        const QString trimmed = part.trimmed();
        if (!trimmed.isEmpty())
            list << trimmed;
    }
    return list;
}

QString ZTSheetWidgets::joinList(const QStringList &list)
{
    return list.join(QStringLiteral(", "));
}

void ZTSheetWidgets::warn(const Warning &hook, QWidget *parent, const QString &title, const QString &message)
{
    if (hook) {
        hook(title, message);
        return;
    }
    QMessageBox box(QMessageBox::Warning, title, message, QMessageBox::Ok, parent);
    box.setWindowModality(Qt::WindowModal);
    box.exec();
}
