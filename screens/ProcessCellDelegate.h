#pragma once

#include <QFont>
#include <QRect>
#include <QStyledItemDelegate>

// Paints one 40-point process row: a black stripe at 0.3 alpha on odd rows, the pid
// on the left, name over start time in the middle, the priority centred on the right.
// No widget per row: the table only ever asks this delegate to paint.
class ProcessCellDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    static constexpr int RowHeight = 40;
    static constexpr qreal StripeAlpha = 0.3;

    // Where a row's labels stand, in the row's coordinates.
    struct Geometry {
        int stripeWidth; // 0: as wide as the row
        QRect pid;
        QRect name;
        QRect startTime;
        QRect priority;
    };
    static const Geometry PhoneCell;
    // The tablet's rows are 344 points wide whatever the table's width.
    static const Geometry TabletCell;

    explicit ProcessCellDelegate(const Geometry &geometry, QObject *parent = nullptr);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    Geometry _geometry;
    QFont _font;
};
