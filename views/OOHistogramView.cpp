#include "OOHistogramView.h"

#include "DropShadow.h"

#include <QAccessible>
#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <limits>

namespace {

constexpr float Margin = 3.0f;
constexpr float Gap = 1.0f;
const QColor UserColor = QColor::fromRgbF(0.0, 1.0, 1.0, 1.0);
const QColor SystemColor = QColor::fromRgbF(1.0, 0.0, 0.0, 1.0);
const QColor FrameColor = Qt::white;
constexpr qreal FrameWidth = 4.0;
constexpr QPointF ShadowOffset(2.0, 2.0);
constexpr qreal ShadowBlur = 2.0;

// Cells that fit along one side: a float division truncated toward zero.
// Nonsense cell sizes give no cells rather than an out-of-range conversion.
int cellCount(float side, float cellSize)
{
    const float count = (side - 2.0f * Margin) / (cellSize + Gap);
    if (!std::isfinite(count) || count < 1.0f)
        return 0;
    if (count >= float(std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    return int(count);
}

} // namespace

OOHistogramView::OOHistogramView(const QRect &frame, QWidget *parent)
    : QWidget(parent)
{
    if (frame.isValid())
        setGeometry(frame);
}

void OOHistogramView::addItemData(const HistogramItem &item)
{
    // An all-zero sample has no shares to split and would divide by zero.
    if (item.data1() == 0 && item.data2() == 0 && item.data3() == 0)
        return;
    _itemData.append(item);
    if (_itemData.size() > HistoryLimit)
        _itemData.remove(0, _itemData.size() - HistoryLimit);
    update();
    // The summary a screen reader gives is the chart's name: it changes with every sample.
    if (QAccessible::isActive()) {
        QAccessibleEvent event(this, QAccessible::NameChanged);
        QAccessible::updateAccessibility(&event);
    }
}

int OOHistogramView::visibleColumns() const
{
    return cellCount(float(width()), _itemRectWidth);
}

void OOHistogramView::setItemData(const QList<HistogramItem> &itemData)
{
    _itemData = itemData;
    if (_itemData.size() > HistoryLimit)
        _itemData.remove(0, _itemData.size() - HistoryLimit);
    update();
}

void OOHistogramView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const float w = float(width());
    const float h = float(height());

    if (!_itemData.isEmpty()) {
        const qsizetype n = _itemData.size();
        const int columns = visibleColumns();
        const int rows = cellCount(h, _itemRectHeight);
        const float pitchX = _itemRectWidth + Gap;
        const float pitchY = _itemRectHeight + Gap;

        qsizetype first = 0;
        float x0 = Margin;
        if (columns > n) {
            // A short history hugs the right edge and grows leftwards.
            x0 = float(columns - n) * pitchX + Margin;
        } else {
            first = n - columns;
        }

        for (qsizetype i = first; i < n && columns > 0; ++i) {
            const HistogramItem &item = _itemData.at(i);
            const qint64 user = item.user();
            const qint64 system = item.system();
            const qint64 idle = item.idle();
            const qint64 sum = user + system + idle;
            if (sum == 0)
                continue; // only reachable with negative shares, which callers must not send
            qint64 idleRows = rows * idle / sum;
            qint64 userRows = rows * user / sum;
            const qint64 systemRows = rows * system / sum;
            const qint64 remainder = rows - (idleRows + userRows + systemRows);
            // One rounding row goes to the user share, the rest to idle.
            if (remainder != 0) {
                userRows += 1;
                idleRows += remainder - 1;
            }

            const float x = x0 + pitchX * float(i - first);
            for (int row = 0; row < rows; ++row) {
                if (row < idleRows)
                    continue;
                const QColor &color = row < idleRows + userRows ? UserColor : SystemColor;
                painter.fillRect(QRectF(x, pitchY * float(row) + Margin, _itemRectWidth, _itemRectHeight), color);
            }
        }
    }

    // The frame straddles the edge: only its inner half shows.
    QPen pen(FrameColor, FrameWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    QPainterPath frame;
    frame.addRect(QRectF(0.0, 0.0, w, h));
    DropShadow::strokePath(painter, frame, pen, ShadowOffset, ShadowBlur);
}
