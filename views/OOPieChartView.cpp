#include "OOPieChartView.h"

#include "DropShadow.h"
#include "ViewsLogging.h"

#include <QAccessible>
#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <numbers>

namespace {

constexpr float FullCircle = 6.2831855f;
constexpr double TwoPi = 6.283185307179586;
const QColor BaseRingColor = QColor::fromRgbF(0.5, 0.5, 0.5, 1.0);
const QColor OutlineColor = Qt::white;
constexpr qreal OutlineWidth = 2.0;

double toDegrees(double radians)
{
    return radians * 180.0 / std::numbers::pi;
}

// The clockwise sweep, in radians, of an arc from start to end on a y-down
// screen: angle 0 is to the right and angles grow downwards. Equal angles
// sweep nothing; a span of a full turn or more is the whole circle; an end
// before the start goes on round past angle 0.
double clockwiseSweep(float start, float end)
{
    if (!std::isfinite(start) || !std::isfinite(end))
        return 0.0; // all-zero items leave 0/0 angles: nothing to draw
    double sweep = double(end) - double(start);
    if (sweep >= TwoPi - 1e-6)
        return TwoPi;
    if (sweep < 0.0) {
        sweep = std::fmod(sweep, TwoPi) + TwoPi;
        // A start that float rounding carried a hair past a full turn (the
        // last item after all the others, when it is zero) has nothing left
        // to sweep; going round once more would cover every other segment.
        if (sweep >= TwoPi - 1e-5)
            sweep = 0.0;
    }
    return sweep;
}

QRectF circleBox(QPointF centre, qreal radius)
{
    return QRectF(centre.x() - radius, centre.y() - radius, 2.0 * radius, 2.0 * radius);
}

// The ring segment between the two radii from start to end: the same area as
// the even-odd union of the outer and the inner wedge, without the seams that
// antialiasing leaves where the two wedges' edges meet.
QPainterPath ringSegment(QPointF centre, qreal outer, qreal inner, float start, float end)
{
    QPainterPath path;
    const double sweep = clockwiseSweep(start, end);
    if (sweep <= 0.0)
        return path;
    // Qt counts degrees counter-clockwise on screen.
    const double startDeg = -toDegrees(start);
    const double sweepDeg = -toDegrees(sweep);
    path.arcMoveTo(circleBox(centre, outer), startDeg);
    path.arcTo(circleBox(centre, outer), startDeg, sweepDeg);
    path.arcTo(circleBox(centre, inner), startDeg + sweepDeg, -sweepDeg);
    path.closeSubpath();
    return path;
}

QPainterPath circle(QPointF centre, qreal radius)
{
    QPainterPath path;
    const double sweep = clockwiseSweep(0.0f, FullCircle);
    path.arcMoveTo(circleBox(centre, radius), 0.0);
    path.arcTo(circleBox(centre, radius), 0.0, -toDegrees(sweep));
    path.closeSubpath();
    return path;
}

} // namespace

OOPieChartView::OOPieChartView(const QRect &frame, QWidget *parent)
    : QWidget(parent)
{
    if (frame.isValid())
        setGeometry(frame);
}

void OOPieChartView::addItemData0(const PieChartItem &data0, const PieChartItem &data1, const PieChartItem &data2,
                                  const PieChartItem &data3)
{
    setItemData({data0, data1, data2, data3});
}

void OOPieChartView::setItemData(const QList<PieChartItem> &itemData)
{
    _itemData = itemData;
    update();
    // A screen reader hears the shares as the chart's name.
    if (QAccessible::isActive()) {
        QAccessibleEvent event(this, QAccessible::NameChanged);
        QAccessible::updateAccessibility(&event);
    }
}

float OOPieChartView::outerRadius(const QSizeF &size)
{
    const float w = float(size.width());
    const float h = float(size.height());
    const float diameter = w < h ? w : h;
    return diameter * 0.5f - 5.0f;
}

void OOPieChartView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF centre = QRectF(rect()).center();
    const float outer = outerRadius(size());
    const float inner = outer / 3.0f;

    // Base ring: the inner circle punches a hole through the outer disc.
    QPainterPath ring = circle(centre, outer);
    ring.addPath(circle(centre, inner));
    ring.setFillRule(Qt::OddEvenFill);
    DropShadow::fillPath(painter, ring, BaseRingColor, QPointF(3.0, 3.0), 3.0);

    if (_itemData.isEmpty()) {
        qCWarning(lcViews).noquote() << "#### OOPieChartView itemData count:[0]";
    } else {
        quint64 sum = 0;
        for (const PieChartItem &item : _itemData)
            sum += item.value();
        const double total = double(sum);
        double start = 0.0;
        for (qsizetype i = 0; i < _itemData.size(); ++i) {
            const PieChartItem &item = _itemData.at(i);
            // The last segment runs on to angle 0 so that rounding leaves no gap;
            // a single item therefore starts and ends at 0 and shows nothing.
            const double end = i == _itemData.size() - 1 ? 0.0 : double(item.value()) / total * TwoPi + start;
            painter.fillPath(ringSegment(centre, outer, inner, float(start), float(end)), item.color());
            start = end;
        }
    }

    const QPen pen(OutlineColor, OutlineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    DropShadow::strokePath(painter, circle(centre, outer), pen, QPointF(2.0, 2.0), 2.0);
    DropShadow::strokePath(painter, circle(centre, inner), pen, QPointF(2.0, 2.0), 2.0);
}
