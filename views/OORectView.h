#pragma once

#include <QColor>
#include <QWidget>

class QPainter;

// A colour key swatch: a rectangle (type 0) or an ellipse (type 1) filled
// with one colour and outlined in white with a soft shadow. Other types draw
// nothing.
class OORectView : public QWidget {
    Q_OBJECT

public:
    explicit OORectView(const QRect &frame = QRect(), QWidget *parent = nullptr);

    QColor rectColor() const { return _rectColor; }
    // Repaints. An invalid colour means no fill.
    void setRectColor(const QColor &color);

    // Type and border take effect at the next repaint; they do not ask for one.
    qint32 type() const { return _type; }
    void setType(qint32 type) { _type = type; }
    float border() const { return _border; }
    void setBorder(float border) { _border = border; }

    // Paints what a view of this class with these settings paints, into frame.
    // Lets a list delegate show swatches without a widget per row.
    static void paintSwatch(QPainter &painter, const QRectF &frame, qint32 type, const QColor &color, float border);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QColor _rectColor;
    qint32 _type = 0;
    float _border = 1.0f;
};
