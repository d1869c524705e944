#pragma once

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QStyledItemDelegate>

// Paints the rows of an information table (see InfoTableModel): the 170 x 25
// header tab, the striped key/value row and, where the geometry has one, the YES/NO lamp.
// Nothing is kept per row, so a row scrolled into view shows only its own state.
class InfoCellDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    static constexpr qreal StripeAlpha = 0.3;
    static constexpr int TabWidth = 170;
    static constexpr qreal TabAlpha = 0.5;
    static constexpr int TabRadius = 5;
    static const QColor LampGreen;
    static const QColor LampRed;
    static const QColor TitleOrange;

    // Where a data row's parts stand, in the row's coordinates.
    struct Geometry {
        qreal stripeWidth; // the dark stripe of odd rows: this wide whatever the table's width
        QRectF caption;
        QRectF value; // may run under the caption: a long value wraps right-aligned
        QRectF lamp;  // empty: no YES/NO lamp
    };
    // The phone's cells are laid out from the 320-point width a fresh table cell has,
    // whatever the table's own width.
    static const Geometry PhoneSystemCell;
    static const Geometry PhoneNetworkCell;
    // The tablet's fixed 344-point cells.
    static const Geometry TabletSystemCell;
    static const Geometry TabletNetworkCell;

    explicit InfoCellDelegate(const Geometry &geometry, QObject *parent = nullptr);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    void paintHeader(QPainter *painter, const QRect &row, const QString &title) const;
    void paintDataRow(QPainter *painter, const QRect &row, const QModelIndex &index) const;
    void paintValue(QPainter *painter, const QRectF &frame, const QString &value) const;

    Geometry _geometry;
    QFont _rowFont;
    QFont _titleFont;
};
