#pragma once

#include <QListView>

// The list the pages show their rows in: transparent over the panel, no frame, no
// selection or focus, no scroll bars, scrolled by the pixel with a drag or a flick.
// The rows are painted by the page's delegate. The wheel and the Up and Down keys
// scroll it by ScrollStep points.
class PageTableView : public QListView {
    Q_OBJECT
public:
    static constexpr int ScrollStep = 20;

    PageTableView(QAbstractItemModel *model, QAbstractItemDelegate *delegate, QWidget *parent);

protected:
    void updateGeometries() override;
};
