#pragma once

#include "PieChartItem.h"

#include <QList>
#include <QStringList>
#include <QWidget>

// A ring chart: a grey ring with a shadow, one coloured segment per item
// (clockwise from the right, in item order) and white outlines.
class OOPieChartView : public QWidget {
    Q_OBJECT

public:
    explicit OOPieChartView(const QRect &frame = QRect(), QWidget *parent = nullptr);

    // Replaces all items by these four, in this order, and repaints.
    void addItemData0(const PieChartItem &data0, const PieChartItem &data1, const PieChartItem &data2,
                      const PieChartItem &data3);

    const QList<PieChartItem> &itemData() const { return _itemData; }
    void setItemData(const QList<PieChartItem> &itemData);

    // What each segment stands for, in item order, for those who cannot see the colours.
    QStringList itemNames() const { return _itemNames; }
    void setItemNames(const QStringList &names) { _itemNames = names; }

    // Ring geometry for a bounds size: outer and inner radius.
    static float outerRadius(const QSizeF &size);
    static float innerRadius(const QSizeF &size) { return outerRadius(size) / 3.0f; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QList<PieChartItem> _itemData;
    QStringList _itemNames;
};
