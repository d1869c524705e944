#include "LabelView.h"

#include <QAccessible>
#include <QPainter>

LabelView::LabelView(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

LabelView::LabelView(const QRect &frame, const QString &text, const QFont &font, QWidget *parent)
    : LabelView(parent)
{
    setGeometry(frame);
    setFont(font);
    _text = text;
}

void LabelView::setText(const QString &text)
{
    if (text == _text)
        return;
    _text = text;
    update();
    // Polite: the new figure is there for a reader who comes by; nothing is spoken now.
    if (QAccessible::isActive()) {
        QAccessibleEvent event(this, QAccessible::NameChanged);
        QAccessible::updateAccessibility(&event);
    }
}

QString LabelView::spokenText() const
{
    const QString text = _text.simplified();
    if (_caption.isEmpty() || text.isEmpty())
        return _caption.isEmpty() ? text : _caption;
    return _caption + QLatin1Char(' ') + text;
}

void LabelView::setTextColor(const QColor &color)
{
    if (color == _textColor)
        return;
    _textColor = color;
    update();
}

void LabelView::setBackgroundColor(const QColor &color)
{
    _backgroundColor = color;
    update();
}

void LabelView::setAlignment(Qt::Alignment horizontal)
{
    _alignment = horizontal & Qt::AlignHorizontal_Mask;
    update();
}

void LabelView::setShadow(const QColor &color, const QPointF &offset)
{
    _shadowColor = color;
    _shadowOffset = offset;
    update();
}

void LabelView::setOpacity(qreal opacity)
{
    _opacity = opacity;
    update();
}

void LabelView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setOpacity(_opacity);
    if (_backgroundColor.alpha() > 0)
        painter.fillRect(rect(), _backgroundColor);
    if (_text.isEmpty())
        return;

    // Too long a text loses its tail behind an ellipsis rather than spilling over
    // its neighbours; texts are single lines, vertically centred.
    const QString shown = fontMetrics().elidedText(_text, Qt::ElideRight, width());
    const int flags = int(_alignment) | Qt::AlignVCenter | Qt::TextSingleLine;
    painter.setFont(font());
    if (_shadowColor.alpha() > 0) {
        painter.setPen(_shadowColor);
        painter.drawText(QRectF(rect()).translated(_shadowOffset), flags, shown);
    }
    painter.setPen(_textColor);
    painter.drawText(rect(), flags, shown);
}
