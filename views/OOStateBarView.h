#pragma once

#include "StateBarItem.h"

#include <QList>
#include <QPainterPath>
#include <QWidget>

// A horizontal capsule split left to right into coloured segments whose
// widths follow their values, on a grey background with a white outline.
class OOStateBarView : public QWidget {
    Q_OBJECT

public:
    // The corner radius is fixed here from the frame's height; resizing later
    // does not change it.
    explicit OOStateBarView(const QRect &frame = QRect(), QWidget *parent = nullptr);

    void addItemData(const StateBarItem &item);
    // Replaces all items by these two and repaints.
    void addItemData0(const StateBarItem &data0, const StateBarItem &data1);

    const QList<StateBarItem> &itemData() const { return _itemData; }
    void setItemData(const QList<StateBarItem> &itemData);

    // The first segment's share of the whole bar, in percent (0 for an empty bar): how
    // full the bar reads.
    double filledPercent() const;

    float shadowSize() const { return _shadowSize; }
    void setShadowSize(float shadowSize) { _shadowSize = shadowSize; }
    float cornerRadius() const { return _cornerRadius; }
    void setCornerRadius(float cornerRadius) { _cornerRadius = cornerRadius; }

    // A rounded rectangle whose radius is capped at half the rectangle's
    // longer side (not the shorter one: a radius above half the height passes
    // through as long as it fits the width).
    static QPainterPath createRoundedRectPathWithRect(const QRectF &rect, float cornerRadius);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QPainterPath outlinePath() const;
    void itemsChanged();

    QList<StateBarItem> _itemData;
    float _shadowSize = 5.0f;
    float _cornerRadius = 0.0f;
};
