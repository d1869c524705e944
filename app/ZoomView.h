#pragma once

#include <QGraphicsView>

class QGraphicsProxyWidget;

// The window's content: the device screen, laid out in points at its own size, drawn at a
// zoom factor the way a high-density screen draws it (text and shapes drawn at the zoomed
// size, never a 1x picture stretched) and centred on black. Resizing the window zooms the
// screen to fit it, keeping the screen's shape. Ctrl+Plus, Ctrl+Minus and Ctrl+wheel step
// the zoom, Ctrl+0 returns to 100 %; a window of normal state takes the zoomed size, within
// the screen it is on.
class ZoomView : public QGraphicsView {
    Q_OBJECT
public:
    // Takes ownership of deviceScreen, whose size it keeps.
    explicit ZoomView(QWidget *deviceScreen, QWidget *parent = nullptr);

    QWidget *deviceScreen() const { return _deviceScreen; }
    // The factor the device screen is drawn at.
    qreal zoom() const { return _zoom; }
    // Asks for a zoom within LaunchIdiom's limits. A window of normal state is resized to show the
    // screen at that zoom, as far as its screen's available area holds it with its frame;
    // a maximised or full-screen window keeps its size and shows the screen at that zoom,
    // or at the largest that fits.
    void setZoom(qreal zoom);

    QSize sizeHint() const override;

Q_SIGNALS:
    void zoomChanged(qreal zoom);

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    qreal fittedZoom() const;
    void showAt(qreal zoom);

    QWidget *_deviceScreen;
    QGraphicsProxyWidget *_proxy;
    qreal _zoom = 1.0;
    int _wheelAngle = 0; // Ctrl+wheel: eighths of a degree not yet turned into a step
};
