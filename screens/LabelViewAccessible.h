#pragma once

#include <QAccessibleWidget>

// A painted label read as static text (or the heading or column header it stands for):
// its caption and text as one phrase, unless the widget was given an accessible name of
// its own.
class LabelViewAccessible : public QAccessibleWidget {
public:
    explicit LabelViewAccessible(QWidget *label);

    QString text(QAccessible::Text t) const override;
    QAccessible::Role role() const override;
};
