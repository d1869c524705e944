#pragma once

#include <QColor>
#include <QFont>
#include <QStyledItemDelegate>

// Paints the rows of an information table (see InfoTableModel): the 170 x 25
// header tab, the striped key/value row and, when asked for, the YES/NO lamp.
// Nothing is kept per row, so a row scrolled into view shows only its own state.
class InfoCellDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    // A freshly made table cell is 320 points wide whatever the table's width, and
    // the row's label frames are laid out from that width.
    static constexpr int CellWidth = 320;
    static constexpr qreal StripeAlpha = 0.3;
    static constexpr int TabWidth = 170;
    static constexpr qreal TabAlpha = 0.5;
    static constexpr int TabRadius = 5;
    static const QRectF LampFrame;
    static const QColor LampGreen;
    static const QColor LampRed;
    static const QColor TitleOrange;

    struct ValueFrame {
        int leftOfCentre;    // the value label starts this far left of the cell's centre
        int widthPastHalf;   // and is half the cell wide plus this
    };
    // The System page's value label: (W/2 - 110, W/2 + 70); it runs 100 points under the caption.
    static constexpr ValueFrame SystemValueFrame{110, 70};
    // The Network page's, narrower, leaving room for the lamp: (W/2 - 90, W/2 + 50).
    static constexpr ValueFrame NetworkValueFrame{90, 50};

    InfoCellDelegate(ValueFrame valueFrame, bool showsLamp, QObject *parent = nullptr);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    void paintHeader(QPainter *painter, const QRect &row, const QString &title) const;
    void paintDataRow(QPainter *painter, const QRect &row, const QModelIndex &index) const;
    void paintValue(QPainter *painter, const QRectF &frame, const QString &value) const;

    ValueFrame _valueFrame;
    bool _showsLamp;
    QFont _rowFont;
    QFont _titleFont;
};
