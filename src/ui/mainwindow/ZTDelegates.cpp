#include "ui/mainwindow/ZTDelegates.h"

#include "ui/mainwindow/ZTItemTableModel.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QtMath>

namespace {
QPainterPath starPath(const QRectF &box)
{
    QPainterPath path;
    const QPointF center = box.center();
    const double outer = box.width() / 2.0;
    const double inner = outer * 0.45;
    for (int i = 0; i < 10; ++i) {
        const double radius = i % 2 == 0 ? outer : inner;
        const double angle = -M_PI / 2.0 + i * M_PI / 5.0;
        const QPointF point(center.x() + radius * std::cos(angle), center.y() + radius * std::sin(angle));
        if (i == 0)
            path.moveTo(point);
        else
            path.lineTo(point);
    }
    path.closeSubpath();
    return path;
}
} // namespace

void ZTRatingDelegate::paintStars(QPainter *painter, const QRect &rect, int rating, const QPalette &palette,
                                  bool selected)
{
    const int size = qMin(14, rect.height() - 4);
    if (size <= 4)
        return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QColor text = selected ? palette.highlightedText().color() : palette.text().color();
    QColor empty = text;
    empty.setAlphaF(0.25);
    for (int i = 0; i < 5; ++i) {
        const QRectF box(rect.left() + 4 + i * (size + 2), rect.center().y() - size / 2.0, size, size);
        painter->fillPath(starPath(box), i < rating ? text : empty);
    }
    painter->restore();
}

void ZTRatingDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                             const QModelIndex &index) const
{
    QStyleOptionViewItem base = option;
    initStyleOption(&base, index);
    QApplication::style()->drawControl(QStyle::CE_ItemViewItem, &base, painter, option.widget);
    paintStars(painter, option.rect, qBound(0, index.data(ZTItemTableModel::RatingRole).toInt(), 5),
               option.palette, option.state & QStyle::State_Selected);
}

void ZTCountBadgeDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                 const QModelIndex &index) const
{
    const QString count = QString::number(index.data(m_countRole).toInt());
    const QFontMetrics metrics(option.font);
    const int badgeWidth = metrics.horizontalAdvance(count) + 14;

    // The row's background first, over its full width, then the text beside the badge.
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QString text = row.text;
    row.text.clear();
    const QWidget *widget = option.widget;
    QStyle *style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &row, painter, widget);
    QStyleOptionViewItem label = option;
    initStyleOption(&label, index);
    label.rect.setRight(option.rect.right() - badgeWidth - 8);
    label.backgroundBrush = Qt::NoBrush;
    label.state &= ~QStyle::State_HasFocus;
    label.showDecorationSelected = false;
    const QRect textRect = style->subElementRect(QStyle::SE_ItemViewItemText, &label, widget);
    const bool selected = option.state & QStyle::State_Selected;
    const QColor textColour =
        selected ? option.palette.highlightedText().color() : option.palette.text().color();
    painter->save();
    painter->setPen(textColour);
    painter->setFont(option.font);
    painter->drawText(textRect, Qt::AlignVCenter | Qt::AlignLeft,
                      metrics.elidedText(text, Qt::ElideRight, textRect.width()));
    painter->setRenderHint(QPainter::Antialiasing);
    const QRect badge(option.rect.right() - badgeWidth - 6, option.rect.center().y() - metrics.height() / 2,
                      badgeWidth, metrics.height());
    QColor fill = textColour;
    fill.setAlphaF(selected ? 0.25 : 0.10);
    painter->setPen(Qt::NoPen);
    painter->setBrush(fill);
    painter->drawRoundedRect(badge, badge.height() / 2.0, badge.height() / 2.0);
    QColor countColour = textColour;
    countColour.setAlphaF(selected ? 1.0 : 0.7);
    painter->setPen(countColour);
    painter->drawText(badge, Qt::AlignCenter, count);
    painter->restore();
}

QSize ZTCountBadgeDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.setHeight(qMax(size.height(), option.fontMetrics.height() + 10));
    return size;
}

void ZTCountBarDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                               const QModelIndex &index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    const int max = index.data(MaxRole).toInt();
    if (max <= 0)
        return;
    const int count = index.data(CountRole).toInt();
    const int width = option.rect.width() - 12;
    QRect bar(option.rect.left() + 6, option.rect.bottom() - 4, qMax(2, width * count / max), 3);
    QColor color = option.palette.highlight().color();
    if (option.state & QStyle::State_Selected)
        color = option.palette.highlightedText().color();
    painter->fillRect(bar, color);
}
