#pragma once

#include <QColor>
#include <QWidget>

// A plain coloured view: a fill of one colour (with its alpha), optionally with
// rounded corners. The pages' dark translucent panels, rules and stripes.
class PanelView : public QWidget {
    Q_OBJECT
public:
    explicit PanelView(QWidget *parent = nullptr);
    PanelView(const QRect &frame, const QColor &fill, qreal cornerRadius, QWidget *parent);

    QColor fillColor() const { return _fill; }
    void setFillColor(const QColor &color);

    qreal cornerRadius() const { return _cornerRadius; }
    void setCornerRadius(qreal radius);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QColor _fill = Qt::transparent;
    qreal _cornerRadius = 0;
};
