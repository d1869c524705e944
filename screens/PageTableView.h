#pragma once

#include <QListView>

// The list the pages show their rows in: transparent over the panel, no frame, no
// selection or focus, no scroll bars, scrolled by the pixel with a drag or a flick.
// The rows are painted by the page's delegate.
class PageTableView : public QListView {
    Q_OBJECT
public:
    PageTableView(QAbstractItemModel *model, QAbstractItemDelegate *delegate, QWidget *parent);
};
