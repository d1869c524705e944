#pragma once

#include <QAccessibleWidget>

// A ring chart in words, as its name: each segment's name with its share of the whole
// ("Memory: Wired 21%, Active 30%, Inactive 20%, Free 29%").
class OOPieChartAccessible : public QAccessibleWidget {
public:
    explicit OOPieChartAccessible(QWidget *pieChart);

    QString text(QAccessible::Text t) const override;
};
