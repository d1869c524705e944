#include "OOStateBarView.h"

#include "DropShadow.h"
#include "ViewsLogging.h"

#include <QAccessible>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

const QColor BackgroundColor = QColor::fromRgbF(0.5, 0.5, 0.5, 1.0);
const QColor UnderlayColor = QColor::fromRgbF(0.0, 0.0, 0.0, 1.0);
const QColor OutlineColor = Qt::white;
constexpr qreal OutlineWidth = 4.0;

// A tangent arc of the given radius between the lines current→corner and
// corner→target, preceded by a line from the current point to where the arc
// starts. Degenerate corners (collinear points, zero radius) become a line
// to the corner.
void addArcToPoint(QPainterPath &path, QPointF corner, QPointF target, qreal radius)
{
    const QPointF current = path.currentPosition();
    const QPointF toCurrent = current - corner;
    const QPointF toTarget = target - corner;
    const qreal lenCurrent = std::hypot(toCurrent.x(), toCurrent.y());
    const qreal lenTarget = std::hypot(toTarget.x(), toTarget.y());
    if (radius <= 0.0 || lenCurrent == 0.0 || lenTarget == 0.0) {
        path.lineTo(corner);
        return;
    }
    const QPointF u0 = toCurrent / lenCurrent;
    const QPointF u1 = toTarget / lenTarget;
    const qreal cosAngle = std::clamp(u0.x() * u1.x() + u0.y() * u1.y(), -1.0, 1.0);
    const qreal angle = std::acos(cosAngle);
    if (angle < 1e-9 || std::numbers::pi - angle < 1e-9) {
        path.lineTo(corner);
        return;
    }
    const qreal tangentDistance = radius / std::tan(angle / 2.0);
    const QPointF t0 = corner + u0 * tangentDistance;
    const QPointF t1 = corner + u1 * tangentDistance;
    QPointF bisector = u0 + u1;
    bisector /= std::hypot(bisector.x(), bisector.y());
    const QPointF centre = corner + bisector * (radius / std::sin(angle / 2.0));

    path.lineTo(t0);
    // Qt's degrees grow counter-clockwise on screen, against the y-down axis.
    const qreal startDeg = std::atan2(-(t0.y() - centre.y()), t0.x() - centre.x()) * 180.0 / std::numbers::pi;
    const qreal endDeg = std::atan2(-(t1.y() - centre.y()), t1.x() - centre.x()) * 180.0 / std::numbers::pi;
    qreal sweep = endDeg - startDeg;
    while (sweep > 180.0)
        sweep -= 360.0;
    while (sweep < -180.0)
        sweep += 360.0;
    path.arcTo(QRectF(centre.x() - radius, centre.y() - radius, 2.0 * radius, 2.0 * radius), startDeg, sweep);
}

} // namespace

OOStateBarView::OOStateBarView(const QRect &frame, QWidget *parent)
    : QWidget(parent)
{
    if (frame.isValid())
        setGeometry(frame);
    _cornerRadius = float(double(frame.height()) * 0.5 - double(_shadowSize));
}

void OOStateBarView::addItemData(const StateBarItem &item)
{
    _itemData.append(item);
    itemsChanged();
}

void OOStateBarView::addItemData0(const StateBarItem &data0, const StateBarItem &data1)
{
    _itemData = {data0, data1};
    itemsChanged();
}

void OOStateBarView::setItemData(const QList<StateBarItem> &itemData)
{
    _itemData = itemData;
    itemsChanged();
}

double OOStateBarView::filledPercent() const
{
    double total = 0.0;
    for (const StateBarItem &item : _itemData)
        total += item.value();
    if (_itemData.isEmpty() || !(total > 0.0))
        return 0.0;
    return std::clamp(_itemData.first().value() / total * 100.0, 0.0, 100.0);
}

void OOStateBarView::itemsChanged()
{
    update();
    if (QAccessible::isActive()) {
        QAccessibleValueChangeEvent event(this, filledPercent());
        QAccessible::updateAccessibility(&event);
    }
}

QPainterPath OOStateBarView::createRoundedRectPathWithRect(const QRectF &rect, float cornerRadius)
{
    const double limit = std::max(rect.height() * 0.5, rect.width() * 0.5);
    const double radius = double(cornerRadius) <= limit ? double(cornerRadius) : limit;
    const qreal x = rect.x();
    const qreal y = rect.y();
    const qreal w = rect.width();
    const qreal h = rect.height();

    QPainterPath path;
    path.moveTo(x + radius, y);
    addArcToPoint(path, QPointF(x, y), QPointF(x, y + radius), radius);
    path.lineTo(x, y + h - radius);
    addArcToPoint(path, QPointF(x, y + h), QPointF(x + radius, y + h), radius);
    path.lineTo(x + w - radius, y + h);
    addArcToPoint(path, QPointF(x + w, y + h), QPointF(x + w, y + h - radius), radius);
    path.lineTo(x + w, y + radius);
    addArcToPoint(path, QPointF(x + w, y), QPointF(x + w - radius, y), radius);
    path.closeSubpath();
    return path;
}

QPainterPath OOStateBarView::outlinePath() const
{
    return createRoundedRectPathWithRect(QRectF(0.0, 0.0, width() - 6.0, height() - 6.0), _cornerRadius);
}

void OOStateBarView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double w = width();
    const double h = height();
    const double s = _shadowSize;
    const QPointF shadowOffset(s - 2.0, s - 2.0);

    DropShadow::fillPath(painter, outlinePath(), BackgroundColor, shadowOffset, s);

    if (_itemData.isEmpty()) {
        qCWarning(lcViews).noquote() << "#### OOStateBarView itemData count:[0]";
    } else {
        double total = 0.0;
        for (const StateBarItem &item : _itemData)
            total += item.value();

        DropShadow::fillPath(painter, outlinePath(), UnderlayColor, shadowOffset, s);
        // The clip holds to the end, outline included: with items only the
        // outline's inner half shows.
        painter.setClipPath(outlinePath());

        float x = 0.0f;
        for (qsizetype i = 0; i < _itemData.size(); ++i) {
            const StateBarItem &item = _itemData.at(i);
            double segmentWidth = w - s;
            if (i != _itemData.size() - 1) {
                segmentWidth = std::trunc((w - s) * item.value() / total);
                if (!std::isfinite(segmentWidth))
                    segmentWidth = 0.0; // 0/0 from an all-zero bar
            }
            painter.fillRect(QRectF(x, 0.0, segmentWidth, h - s), item.color());
            x = float(double(x) + segmentWidth);
        }
    }

    const QPen pen(OutlineColor, OutlineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    DropShadow::strokePath(painter, outlinePath(), pen, QPointF(2.0, 2.0), 2.0);
}
