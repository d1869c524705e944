#include "InfoCellDelegate.h"

#include "FontTable.h"
#include "InfoTableModel.h"
#include "OORectView.h"

#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>

namespace {
constexpr int MaximumValueLines = 2;
constexpr qint32 CircularSwatch = 1;

QColor rgb255(int red, int green, int blue)
{
    return QColor::fromRgbF(float(red) / 255.0f, float(green) / 255.0f, float(blue) / 255.0f);
}
} // namespace

const QColor InfoCellDelegate::LampGreen = rgb255(20, 220, 50);
const QColor InfoCellDelegate::LampRed = rgb255(220, 0, 20);
// UIKit's orange: RGB 1.0, 0.5, 0.0.
const QColor InfoCellDelegate::TitleOrange = QColor::fromRgbF(1.0f, 0.5f, 0.0f);

namespace {
// The value label starts leftOfCentre points left of the cell's centre and is half the
// cell wide plus widthPastHalf.
InfoCellDelegate::Geometry phoneCell(qreal leftOfCentre, qreal widthPastHalf, const QRectF &lamp = QRectF())
{
    constexpr qreal w = 320;
    constexpr qreal h = InfoTableModel::RowHeight;
    return {w, QRectF(10, 0, w * 0.5 - 20, h), QRectF(w * 0.5 - leftOfCentre, 0, w * 0.5 + widthPastHalf, h), lamp};
}
} // namespace

// System: the value runs 100 points under the caption (50 to 280 against 10 to 150).
const InfoCellDelegate::Geometry InfoCellDelegate::PhoneSystemCell = phoneCell(110, 70);
// Network: narrower (70 to 280), leaving room for the lamp left of a short value.
const InfoCellDelegate::Geometry InfoCellDelegate::PhoneNetworkCell = phoneCell(90, 50, QRectF(234, 12.5, 15, 15));
const InfoCellDelegate::Geometry InfoCellDelegate::TabletSystemCell = {344, QRectF(10, 0, 162, 40),
                                                                       QRectF(72, 0, 252, 40), QRectF()};
const InfoCellDelegate::Geometry InfoCellDelegate::TabletNetworkCell = {
    344, QRectF(10, 0, 162, 40), QRectF(92, 0, 232, 40), QRectF(274, 12.5, 15, 15)};

InfoCellDelegate::InfoCellDelegate(const Geometry &geometry, QObject *parent)
    : QStyledItemDelegate(parent)
    , _geometry(geometry)
    , _rowFont(FontTable::font(QStringLiteral("Helvetica-Bold"), 14))
    , _titleFont(FontTable::font(QStringLiteral("Helvetica-Bold"), 15))
{
}

void InfoCellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const int kind = index.data(InfoTableModel::RowKindRole).toInt();
    painter->save();
    if (kind == InfoTableModel::HeaderRow) {
        const QString title = index.data(InfoTableModel::TitleRole).toString();
        if (index.data(InfoTableModel::HeightRole).toInt() > 0)
            paintHeader(painter, option.rect, title);
    } else if (kind == InfoTableModel::DataRow) {
        paintDataRow(painter, option.rect, index);
    }
    // Footers are transparent spacers: nothing to paint.
    painter->restore();
}

QSize InfoCellDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    return QSize(option.rect.width(), index.data(InfoTableModel::HeightRole).toInt());
}

void InfoCellDelegate::paintHeader(QPainter *painter, const QRect &row, const QString &title) const
{
    const QRectF tab(row.left(), row.top(), TabWidth, InfoTableModel::HeaderHeight);
    painter->setRenderHint(QPainter::Antialiasing);
    // The plate fades as a whole, border included; the title over it does not.
    painter->setOpacity(TabAlpha);
    QPainterPath plate;
    plate.addRoundedRect(tab.adjusted(0.5, 0.5, -0.5, -0.5), TabRadius, TabRadius);
    painter->fillPath(plate, Qt::black);
    painter->setPen(QPen(Qt::white, 1.0));
    painter->drawPath(plate);
    painter->setOpacity(1.0);

    painter->setFont(_titleFont);
    painter->setPen(TitleOrange);
    const QRectF titleFrame = QRectF(10, 0, TabWidth, InfoTableModel::HeaderHeight).translated(tab.topLeft());
    painter->drawText(titleFrame, int(Qt::AlignLeft | Qt::AlignVCenter) | Qt::TextSingleLine,
                      painter->fontMetrics().elidedText(title, Qt::ElideRight, int(titleFrame.width())));
}

void InfoCellDelegate::paintDataRow(QPainter *painter, const QRect &row, const QModelIndex &index) const
{
    const QPointF origin = row.topLeft();
    if (index.data(InfoTableModel::RowInSectionRole).toInt() % 2 == 1) {
        QColor stripe(Qt::black);
        stripe.setAlphaF(StripeAlpha);
        painter->fillRect(QRectF(origin.x(), origin.y(), _geometry.stripeWidth, InfoTableModel::RowHeight), stripe);
    }

    painter->setFont(_rowFont);
    painter->setPen(Qt::white);
    const QRectF captionFrame = _geometry.caption.translated(origin);
    painter->drawText(captionFrame, int(Qt::AlignLeft | Qt::AlignVCenter) | Qt::TextSingleLine,
                      painter->fontMetrics().elidedText(index.data(InfoTableModel::KeyRole).toString(), Qt::ElideRight,
                                                        int(captionFrame.width())));

    const QString value = index.data(InfoTableModel::ValueRole).toString();
    paintValue(painter, _geometry.value.translated(origin), value);

    if (_geometry.lamp.isEmpty())
        return;
    // Exact and case-sensitive: "no" or "YES " light nothing.
    QColor lamp;
    if (value == QLatin1String("YES"))
        lamp = LampGreen;
    else if (value == QLatin1String("NO"))
        lamp = LampRed;
    else
        return;
    OORectView::paintSwatch(*painter, _geometry.lamp.translated(origin), CircularSwatch, lamp, 1.0f);
}

// Right-aligned, wrapped onto at most two lines, centred vertically; what does
// not fit is cut at the end of the second line.
void InfoCellDelegate::paintValue(QPainter *painter, const QRectF &frame, const QString &value) const
{
    if (value.isEmpty())
        return;
    QTextLayout layout(value, _rowFont, painter->device());
    QTextOption textOption(Qt::AlignRight);
    textOption.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(textOption);
    layout.beginLayout();
    QList<QTextLine> lines;
    bool cut = false;
    qreal height = 0;
    while (true) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        if (lines.size() == MaximumValueLines) {
            cut = true;
            break;
        }
        line.setLineWidth(frame.width());
        line.setPosition(QPointF(0, height));
        height += line.height();
        lines.append(line);
    }
    layout.endLayout();

    const qreal top = frame.top() + (frame.height() - height) / 2.0;
    const QFontMetricsF metrics(_rowFont, painter->device());
    for (int i = 0; i < lines.size(); ++i) {
        const QTextLine &line = lines[i];
        QString text = value.mid(line.textStart(), line.textLength());
        if (i == lines.size() - 1 && cut)
            text = metrics.elidedText(value.mid(line.textStart()).simplified(), Qt::ElideRight, frame.width());
        text = text.trimmed();
        const qreal lineTop = top + line.y();
        painter->drawText(QRectF(frame.left(), lineTop, frame.width(), line.height()),
                          int(Qt::AlignRight | Qt::AlignVCenter) | Qt::TextSingleLine, text);
    }
}
