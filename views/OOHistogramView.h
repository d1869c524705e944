#pragma once

#include "HistogramItem.h"

#include <QList>
#include <QWidget>

// The CPU-load history as a grid of small cells: one column per sample,
// newest at the right, each column red (system) at the foot, cyan (user)
// above it and unpainted (idle) at the top, inside a white frame.
class OOHistogramView : public QWidget {
    Q_OBJECT

public:
    // The newest samples kept; older ones are dropped as new ones arrive.
    static constexpr qsizetype HistoryLimit = 4096;

    explicit OOHistogramView(const QRect &frame = QRect(), QWidget *parent = nullptr);

    // Appends a sample and repaints; an all-zero sample is ignored.
    void addItemData(const HistogramItem &item);

    const QList<HistogramItem> &itemData() const { return _itemData; }
    void setItemData(const QList<HistogramItem> &itemData);

    float itemRectWidth() const { return _itemRectWidth; }
    void setItemRectWidth(float width) { _itemRectWidth = width; }
    float itemRectHeight() const { return _itemRectHeight; }
    void setItemRectHeight(float height) { _itemRectHeight = height; }

    // The samples that fit the width: the newest this many are drawn.
    int visibleColumns() const;
    // How far apart the samples are, in ms (0: unknown), so that the history can be
    // told in time rather than in samples.
    int sampleInterval() const { return _sampleIntervalMs; }
    void setSampleInterval(int ms) { _sampleIntervalMs = ms; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QList<HistogramItem> _itemData;
    float _itemRectWidth = 0.0f;
    float _itemRectHeight = 0.0f;
    int _sampleIntervalMs = 0;
};
