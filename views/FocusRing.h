#pragma once

#include <QColor>
#include <QWidget>

class QPainter;

// The keyboard focus mark: an orange ring with a white core, the colours of the page
// titles, shown only while the focus came from the keyboard so that a mouse user never
// sees it. Widgets that paint it themselves use paint(); a widget whose children cover
// it gets an overlay of this class that rings its whole area.
class FocusRing : public QWidget {
    Q_OBJECT
public:
    static const QColor OuterColor;
    static const QColor InnerColor;
    static constexpr qreal OuterWidth = 2.0;
    static constexpr qreal InnerWidth = 1.0;

    // Strokes the ring centred on rect's edge, rounded by radius; the painter is left as found.
    static void paint(QPainter &painter, const QRectF &rect, qreal radius);
    // Whether focus that arrived for this reason shows the ring: Tab, Backtab and shortcuts
    // do, the mouse does not, and anything else (the window coming back) keeps what was.
    static bool cameByKeyboard(Qt::FocusReason reason, bool before);

    // Over target, as large as it, for as long as target has focus from the keyboard.
    explicit FocusRing(QWidget *target);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QWidget *_target;
    bool _keyboard = false;
};
