#include "ProcessCellDelegate.h"

#include "FontTable.h"
#include "ProcessTableModel.h"

#include <QPainter>

namespace {
// The cell's label frames, relative to the row's top-left corner.
const QRect PidFrame(5, 0, 50, 40);
const QRect NameFrame(60, 0, 180, 20);
const QRect StartTimeFrame(60, 20, 180, 20);
const QRect PriorityFrame(240, 0, 50, 40);
const QColor DarkGray = QColor::fromRgbF(1.0f / 3, 1.0f / 3, 1.0f / 3);

void drawLabel(QPainter *painter, const QRect &frame, const QString &text, const QColor &color,
               Qt::Alignment alignment)
{
    const QString shown = painter->fontMetrics().elidedText(text, Qt::ElideRight, frame.width());
    painter->setPen(color);
    painter->drawText(frame, int(alignment | Qt::AlignVCenter) | Qt::TextSingleLine, shown);
}
} // namespace

ProcessCellDelegate::ProcessCellDelegate(QObject *parent)
    : QStyledItemDelegate(parent)
    , _font(FontTable::font(QStringLiteral("Helvetica-Bold"), 14))
{
}

void ProcessCellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                const QModelIndex &index) const
{
    painter->save();
    const QRect row = option.rect;
    if (index.row() % 2 == 1) {
        QColor stripe(Qt::black);
        stripe.setAlphaF(StripeAlpha);
        painter->fillRect(QRect(row.left(), row.top(), row.width(), RowHeight), stripe);
    }
    painter->setFont(_font);
    const QPoint origin = row.topLeft();
    drawLabel(painter, PidFrame.translated(origin), index.data(ProcessTableModel::PidRole).toString(),
              Qt::white, Qt::AlignLeft);
    drawLabel(painter, NameFrame.translated(origin), index.data(ProcessTableModel::ProcessNameRole).toString(),
              Qt::white, Qt::AlignLeft);
    drawLabel(painter, StartTimeFrame.translated(origin),
              index.data(ProcessTableModel::StartTimeRole).toString(), DarkGray, Qt::AlignLeft);
    drawLabel(painter, PriorityFrame.translated(origin), index.data(ProcessTableModel::PriorityRole).toString(),
              Qt::white, Qt::AlignHCenter);
    painter->restore();
}

QSize ProcessCellDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    return QSize(option.rect.width(), RowHeight);
}
