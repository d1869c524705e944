#pragma once

#include <QAccessibleWidget>

// A state bar as a value indicator: a progress bar from 0 to 100 whose value is how full
// the bar is, in percent; its name and its description (what the colour warns of, when
// it does) are the widget's accessible name and description.
class OOStateBarAccessible : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit OOStateBarAccessible(QWidget *stateBar);

    QString text(QAccessible::Text t) const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    QVariant currentValue() const override;
    void setCurrentValue(const QVariant &) override {}
    QVariant maximumValue() const override { return 100.0; }
    QVariant minimumValue() const override { return 0.0; }
    QVariant minimumStepSize() const override { return 0.0; }
};
