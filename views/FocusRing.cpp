#include "FocusRing.h"

#include <QFocusEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

const QColor FocusRing::OuterColor = QColor::fromRgbF(1.0, 0.5, 0.0, 1.0);
const QColor FocusRing::InnerColor = Qt::white;

void FocusRing::paint(QPainter &painter, const QRectF &rect, qreal radius)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath outer;
    outer.addRoundedRect(rect, radius, radius);
    painter.strokePath(outer, QPen(OuterColor, OuterWidth));
    // The white core sits just inside the orange, so one of the two shows on any ground.
    const qreal in = (OuterWidth + InnerWidth) / 2.0;
    QPainterPath inner;
    inner.addRoundedRect(rect.adjusted(in, in, -in, -in), std::max(0.0, radius - in), std::max(0.0, radius - in));
    painter.strokePath(inner, QPen(InnerColor, InnerWidth));
    painter.restore();
}

bool FocusRing::cameByKeyboard(Qt::FocusReason reason, bool before)
{
    switch (reason) {
    case Qt::TabFocusReason:
    case Qt::BacktabFocusReason:
    case Qt::ShortcutFocusReason:
        return true;
    case Qt::MouseFocusReason:
        return false;
    default:
        return before;
    }
}

FocusRing::FocusRing(QWidget *target)
    : QWidget(target)
    , _target(target)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    setGeometry(target->rect());
    hide();
    target->installEventFilter(this);
}

bool FocusRing::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == _target) {
        switch (event->type()) {
        case QEvent::Resize:
            setGeometry(_target->rect());
            break;
        case QEvent::FocusIn:
            _keyboard = cameByKeyboard(static_cast<QFocusEvent *>(event)->reason(), _keyboard);
            setVisible(_keyboard);
            raise();
            break;
        case QEvent::FocusOut:
            hide();
            break;
        default:
            break;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void FocusRing::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const qreal half = OuterWidth / 2.0;
    paint(painter, QRectF(rect()).adjusted(half, half, -half, -half), 6.0);
}
