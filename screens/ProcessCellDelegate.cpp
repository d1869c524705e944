#include "ProcessCellDelegate.h"

#include "FontTable.h"
#include "ProcessTableModel.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QtMath>

namespace {
const QColor DarkGray = QColor::fromRgbF(1.0f / 3, 1.0f / 3, 1.0f / 3);

void drawLabel(QPainter *painter, const QRect &frame, const QString &text, const QColor &color, Qt::Alignment alignment)
{
    const QString shown = painter->fontMetrics().elidedText(text, Qt::ElideRight, frame.width());
    painter->setPen(color);
    painter->drawText(frame, int(alignment | Qt::AlignVCenter) | Qt::TextSingleLine, shown);
}
} // namespace

const ProcessCellDelegate::Geometry ProcessCellDelegate::PhoneCell = {0, QRect(5, 0, 50, 40), QRect(60, 0, 180, 20),
                                                                      QRect(60, 20, 180, 20), QRect(240, 0, 50, 40)};
const ProcessCellDelegate::Geometry ProcessCellDelegate::TabletCell = {344, QRect(5, 0, 55, 40), QRect(60, 0, 220, 20),
                                                                       QRect(60, 20, 220, 20), QRect(280, 0, 64, 40)};

ProcessCellDelegate::ProcessCellDelegate(const Geometry &geometry, QObject *parent)
    : QStyledItemDelegate(parent)
    , _geometry(geometry)
    , _font(FontTable::font(QStringLiteral("Helvetica-Bold"), 14))
{
}

void ProcessCellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    painter->save();
    const QRect row = option.rect;
    if (index.row() % 2 == 1) {
        QColor stripe(Qt::black);
        stripe.setAlphaF(StripeAlpha);
        const int stripeWidth = _geometry.stripeWidth > 0 ? _geometry.stripeWidth : row.width();
        painter->fillRect(QRect(row.left(), row.top(), stripeWidth, RowHeight), stripe);
    }
    painter->setFont(_font);
    const QPoint origin = row.topLeft();
    // No pid is cut: up to the kernel's largest, 4,194,304, the column takes what
    // it needs of the gap before the name (whole pixels of its fractional advance).
    const QString pid = index.data(ProcessTableModel::PidRole).toString();
    QRect pidFrame = _geometry.pid.translated(origin);
    pidFrame.setWidth(qMax(pidFrame.width(), qCeil(QFontMetricsF(painter->font()).horizontalAdvance(pid))));
    drawLabel(painter, pidFrame, pid, Qt::white, Qt::AlignLeft);
    drawLabel(painter, _geometry.name.translated(origin), index.data(ProcessTableModel::ProcessNameRole).toString(),
              Qt::white, Qt::AlignLeft);
    drawLabel(painter, _geometry.startTime.translated(origin), index.data(ProcessTableModel::StartTimeRole).toString(),
              DarkGray, Qt::AlignLeft);
    drawLabel(painter, _geometry.priority.translated(origin), index.data(ProcessTableModel::PriorityRole).toString(),
              Qt::white, Qt::AlignHCenter);
    // The row a find or a click picked: outlined, so the list keeps its look otherwise.
    if (option.state & QStyle::State_Selected) {
        const int width = _geometry.stripeWidth > 0 ? _geometry.stripeWidth : row.width();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(Qt::white, 1));
        painter->setBrush(Qt::NoBrush);
        painter->drawRoundedRect(QRectF(row.left() + 0.5, row.top() + 0.5, width - 1, RowHeight - 1), 4, 4);
    }
    painter->restore();
}

QSize ProcessCellDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    return QSize(option.rect.width(), RowHeight);
}
