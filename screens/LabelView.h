#pragma once

#include <QAccessible>
#include <QColor>
#include <QPointF>
#include <QString>
#include <QWidget>

// One line of text as the pages show it: a named font, a text colour, an optional
// fill behind the text, an optional hard text shadow, and an opacity for the whole
// label (the column headers fade text and fill together). Painted directly: the
// pages rewrite dozens of these on every refresh, and a repaint must stay cheap.
// A figure's label may carry the caption drawn beside it, so that a screen reader
// hears the two as one phrase ("User 12.5%").
class LabelView : public QWidget {
    Q_OBJECT
public:
    explicit LabelView(QWidget *parent = nullptr);
    LabelView(const QRect &frame, const QString &text, const QFont &font, QWidget *parent);

    QString text() const { return _text; }
    void setText(const QString &text);

    // Not drawn: read before the text by a screen reader.
    QString caption() const { return _caption; }
    void setCaption(const QString &caption) { _caption = caption; }
    // The caption and the text as one phrase, blanks of fixed-width figures folded.
    QString spokenText() const;
    // What a screen reader takes the label for: static text, or a page's or panel's
    // heading, or a column's header.
    QAccessible::Role readAs() const { return _readAs; }
    void setReadAs(QAccessible::Role role) { _readAs = role; }

    QColor textColor() const { return _textColor; }
    void setTextColor(const QColor &color);

    QColor backgroundColor() const { return _backgroundColor; }
    void setBackgroundColor(const QColor &color);

    Qt::Alignment alignment() const { return _alignment; }
    void setAlignment(Qt::Alignment horizontal);

    QColor shadowColor() const { return _shadowColor; }
    QPointF shadowOffset() const { return _shadowOffset; }
    void setShadow(const QColor &color, const QPointF &offset);

    qreal opacity() const { return _opacity; }
    void setOpacity(qreal opacity);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString _text;
    QString _caption;
    QAccessible::Role _readAs = QAccessible::StaticText;
    QColor _textColor = Qt::white;
    QColor _backgroundColor = Qt::transparent;
    QColor _shadowColor = Qt::transparent;
    QPointF _shadowOffset;
    Qt::Alignment _alignment = Qt::AlignLeft;
    qreal _opacity = 1.0;
};
