#include "OOPageControl.h"

#include "FocusRing.h"
#include "FontTable.h"
#include "OOPageCellButton.h"

#include <QAccessible>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace {

const QColor TitleColor = Qt::white;
const QColor CurrentTitleColor = QColor::fromRgbF(1.0, 0.5, 0.0, 1.0);
const QColor CurrentPillColor = Qt::black;
constexpr qreal PillOpacity = 0.6;
constexpr qreal BorderWidth = 1.5;
const QColor BorderColor = Qt::white;

bool validIndex(qsizetype index, qsizetype count)
{
    return index >= 0 && index < count;
}

} // namespace

OOPageControl::OOPageControl(const QRect &frame, int numberOfPages, QWidget *parent)
    : QWidget(parent)
    , _numberOfPages(numberOfPages)
{
    setGeometry(frame);
    setAutoFillBackground(false);
    setFocusPolicy(Qt::TabFocus);

    const qreal h = qreal(frame.height()) - 4.0;
    _titleFont = FontTable::font(QStringLiteral("TrebuchetMS-Bold"), h - 4.0);
    if (numberOfPages < 1)
        return;
    const qreal cell = (qreal(frame.width()) - 2.0) / qreal(numberOfPages);
    const qreal w = cell - 2.0;

    for (int i = 0; i < numberOfPages; ++i) {
        const QRectF rect(qreal(i) * cell + 2.0, 2.0, w, h);
        _cells.append(Cell{rect, QColor(Qt::transparent), TitleColor, QString()});

        auto *button = new OOPageCellButton(this);
        button->setGeometry(rect.toAlignedRect() & QRect(QPoint(0, 0), frame.size()));
        button->setProperty("tag", i);
        connect(button, &QAbstractButton::clicked, this, &OOPageControl::buttonWasTouchUpInside);
        _buttons.append(button);
    }
}

OOPageControl::~OOPageControl() = default;

void OOPageControl::setCurrentPage(int page)
{
    _currentPage = validIndex(page, _cells.size()) ? page : -1;
    for (qsizetype i = 0; i < _cells.size(); ++i) {
        Cell &cell = _cells[i];
        const bool current = i == page;
        cell.pillColor = current ? CurrentPillColor : QColor(Qt::transparent);
        cell.titleColor = current ? CurrentTitleColor : TitleColor;
    }
    update();
    if (_currentPage >= 0 && QAccessible::isActive()) {
        QAccessibleEvent event(this, QAccessible::Selection);
        event.setChild(_currentPage);
        QAccessible::updateAccessibility(&event);
    }
}

void OOPageControl::requestPage(int page)
{
    if (validIndex(page, _cells.size()))
        Q_EMIT pageRequested(page);
}

void OOPageControl::keyPressEvent(QKeyEvent *event)
{
    const int last = int(_cells.size()) - 1;
    switch (event->key()) {
    case Qt::Key_Left:
        requestPage(std::max(0, _currentPage - 1));
        break;
    case Qt::Key_Right:
        requestPage(std::min(last, _currentPage + 1));
        break;
    case Qt::Key_Home:
        requestPage(0);
        break;
    case Qt::Key_End:
        requestPage(last);
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
}

void OOPageControl::focusInEvent(QFocusEvent *event)
{
    _keyboardFocus = FocusRing::cameByKeyboard(event->reason(), _keyboardFocus);
    update();
    QWidget::focusInEvent(event);
}

void OOPageControl::focusOutEvent(QFocusEvent *event)
{
    update();
    QWidget::focusOutEvent(event);
}

void OOPageControl::setTitles(const QVariantList &titles)
{
    qsizetype index = 0;
    for (const QVariant &title : titles) {
        if (title.typeId() != QMetaType::QString)
            continue;
        if (index > _cells.size() - 1)
            break;
        _cells[index].title = title.toString();
        ++index;
    }
    update();
}

QRectF OOPageControl::cellRect(int index) const
{
    return validIndex(index, _cells.size()) ? _cells.at(index).rect : QRectF();
}

QString OOPageControl::title(int index) const
{
    return validIndex(index, _cells.size()) ? _cells.at(index).title : QString();
}

QColor OOPageControl::pillColor(int index) const
{
    return validIndex(index, _cells.size()) ? _cells.at(index).pillColor : QColor();
}

QColor OOPageControl::titleColor(int index) const
{
    return validIndex(index, _cells.size()) ? _cells.at(index).titleColor : QColor();
}

qreal OOPageControl::cellCornerRadius() const
{
    return (qreal(height()) - 4.0) * 0.5;
}

void OOPageControl::buttonWasTouchUpInside()
{
    // The pager drives the selection; a tap on a cell deliberately does nothing.
}

void OOPageControl::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    const qreal radius = cellCornerRadius();
    painter.setFont(_titleFont);
    const QFontMetricsF metrics(_titleFont);

    for (const Cell &cell : std::as_const(_cells)) {
        if (cell.pillColor.alpha() != 0) {
            QPainterPath pill;
            pill.addRoundedRect(cell.rect, radius, radius);
            QColor color = cell.pillColor;
            color.setAlphaF(color.alphaF() * PillOpacity);
            painter.fillPath(pill, color);
        }
        if (!cell.title.isEmpty()) {
            // Titles that do not fit end in an ellipsis, as labels do.
            const QString text = metrics.elidedText(cell.title, Qt::ElideRight, cell.rect.width());
            painter.setPen(cell.titleColor);
            painter.drawText(cell.rect, Qt::AlignCenter, text);
        }
        // The border lies inside the cell, above the title.
        const qreal half = BorderWidth / 2.0;
        QPainterPath border;
        border.addRoundedRect(cell.rect.adjusted(half, half, -half, -half), radius - half, radius - half);
        painter.strokePath(border, QPen(BorderColor, BorderWidth));
    }
    if (showsFocusRing() && _currentPage >= 0)
        FocusRing::paint(painter, _cells.at(_currentPage).rect.adjusted(-1.5, -1.5, 1.5, 1.5), radius + 1.5);
}
