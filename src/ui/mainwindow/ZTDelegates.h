#pragma once

#include <QStyledItemDelegate>

// Draws a rating as five stars, filled up to the value.
class ZTRatingDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    static void paintStars(QPainter *painter, const QRect &rect, int rating, const QPalette &palette,
                           bool selected);
};

// A list row with its item count as a rounded badge at the right.
class ZTCountBadgeDelegate : public QStyledItemDelegate {
public:
    ZTCountBadgeDelegate(int countRole, QObject *parent = nullptr)
        : QStyledItemDelegate(parent), m_countRole(countRole)
    {
    }
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    int m_countRole;
};

// A browser value with a bar below its text, as long as its share of the
// largest count.
class ZTCountBarDelegate : public QStyledItemDelegate {
public:
    enum Role { CountRole = Qt::UserRole + 10, MaxRole };
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
};
