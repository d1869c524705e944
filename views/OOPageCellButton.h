#pragma once

#include <QAbstractButton>

// The invisible button over one page-control cell.
class OOPageCellButton : public QAbstractButton {
    Q_OBJECT

public:
    explicit OOPageCellButton(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};
