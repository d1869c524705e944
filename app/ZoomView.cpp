#include "ZoomView.h"

#include "LaunchIdiom.h"
#include "ResourceImages.h"

#include <QGraphicsProxyWidget>
#include <QScreen>
#include <QShortcut>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

bool fillsScreen(const QWidget *window)
{
    return window->windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen);
}

} // namespace

ZoomView::ZoomView(QWidget *deviceScreen, QWidget *parent)
    : QGraphicsView(parent)
    , _deviceScreen(deviceScreen)
{
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setBackgroundBrush(Qt::black);
    setAlignment(Qt::AlignCenter);
    setRenderHint(QPainter::SmoothPixmapTransform);
    setScene(new QGraphicsScene(this));
    _proxy = scene()->addWidget(deviceScreen);
    // The screen itself takes no focus, but its widgets do: the proxy passes keys on to them.
    _proxy->setFlag(QGraphicsItem::ItemIsFocusable);
    setSceneRect(QRectF(QPointF(0, 0), deviceScreen->size()));
    setMinimumSize((QSizeF(deviceScreen->size()) * LaunchIdiom::minimumZoom).toSize());
    resize(deviceScreen->size());

    const auto shortcut = [this](const QKeySequence &keys, auto zoomTo) {
        auto *shortcut = new QShortcut(keys, this);
        connect(shortcut, &QShortcut::activated, this, [this, zoomTo] { setZoom(zoomTo(_zoom)); });
    };
    const auto in = [](qreal zoom) { return LaunchIdiom::steppedZoom(zoom, 1); };
    const auto out = [](qreal zoom) { return LaunchIdiom::steppedZoom(zoom, -1); };
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_Plus), in);
    // Plus is shifted on most layouts; browsers take Ctrl with the unshifted key too.
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_Equal), in);
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_Minus), out);
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_0), [](qreal) { return 1.0; });
}

void ZoomView::setZoom(qreal zoom)
{
    zoom = std::clamp(zoom, LaunchIdiom::minimumZoom, LaunchIdiom::maximumZoom);
    if (!isWindow() || fillsScreen(this)) {
        showAt(std::min(zoom, fittedZoom()));
        return;
    }
    const QSizeF points = _deviceScreen->size();
    // Before the window is shown its frame is unknown: assume the largest one likely.
    const QSize frame = isVisible() ? frameGeometry().size() - geometry().size() : LaunchIdiom::windowFrame;
    const QScreen *onScreen = screen();
    const QRect available = onScreen ? onScreen->availableGeometry() : QRect();
    if (!available.isEmpty()) {
        const qreal holds = std::min((available.width() - frame.width()) / points.width(),
                                     (available.height() - frame.height()) / points.height());
        zoom = std::max(std::min(zoom, holds), LaunchIdiom::minimumZoom);
    }
    const QSize size = (points * zoom).toSize();
    if (size == this->size())
        showAt(fittedZoom());
    else
        resize(size);
    if (isVisible() && !available.isEmpty()) {
        // A window grown over the bottom or right edge of its screen moves back onto it.
        const QRect grown(frameGeometry().topLeft(), size + frame);
        const QPoint inside(
            std::clamp(grown.x(), available.left(), std::max(available.left(), available.right() - grown.width() + 1)),
            std::clamp(grown.y(), available.top(), std::max(available.top(), available.bottom() - grown.height() + 1)));
        if (inside != grown.topLeft())
            move(inside);
    }
}

QSize ZoomView::sizeHint() const
{
    return (QSizeF(_deviceScreen->size()) * _zoom).toSize();
}

qreal ZoomView::fittedZoom() const
{
    const QSizeF points = _deviceScreen->size();
    const QSize area = viewport()->size();
    if (points.isEmpty() || area.isEmpty())
        return _zoom;
    return std::min(area.width() / points.width(), area.height() / points.height());
}

void ZoomView::showAt(qreal zoom)
{
    setTransform(QTransform::fromScale(zoom, zoom));
    // The images are kept at the density they are drawn at, up to the density they are stored at.
    ResourceImages::setKeptScale(zoom * devicePixelRatioF());
    if (std::abs(zoom - _zoom) < 1e-9)
        return;
    _zoom = zoom;
    Q_EMIT zoomChanged(zoom);
}

void ZoomView::showEvent(QShowEvent *event)
{
    QGraphicsView::showEvent(event);
    // Keys go where they go in a plain window: to the first widget of the screen that takes them.
    // The screen's widgets may be built right after the window is shown, so this waits for them.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (_deviceScreen->focusWidget())
                return;
            for (QWidget *next = _deviceScreen->nextInFocusChain(); next != _deviceScreen;
                 next = next->nextInFocusChain()) {
                if ((next->focusPolicy() & Qt::TabFocus) && next->isVisibleTo(_deviceScreen) && next->isEnabled()) {
                    _proxy->setFocus(Qt::OtherFocusReason);
                    next->setFocus(Qt::TabFocusReason);
                    return;
                }
            }
        },
        Qt::QueuedConnection);
}

void ZoomView::resizeEvent(QResizeEvent *event)
{
    QGraphicsView::resizeEvent(event);
    showAt(fittedZoom());
}

void ZoomView::wheelEvent(QWheelEvent *event)
{
    if (!(event->modifiers() & Qt::ControlModifier)) {
        QGraphicsView::wheelEvent(event);
        return;
    }
    _wheelAngle += event->angleDelta().y();
    const int steps = _wheelAngle / 120;
    _wheelAngle -= steps * 120;
    if (steps != 0)
        setZoom(LaunchIdiom::steppedZoom(_zoom, steps));
    event->accept();
}
