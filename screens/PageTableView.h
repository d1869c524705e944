#pragma once

#include <QListView>

// The list the pages show their rows in: transparent over the panel, no frame, no
// selection or focus, no scroll bars, scrolled by the pixel with a drag or a flick.
// The rows are painted by the page's delegate. The wheel and the Up and Down keys
// scroll it by ScrollStep points. A list that a page lets take the keyboard focus moves a
// current row with the arrows instead, ringed while the focus came by keyboard; a screen
// reader follows it row by row.
class PageTableView : public QListView {
    Q_OBJECT
public:
    static constexpr int ScrollStep = 20;

    PageTableView(QAbstractItemModel *model, QAbstractItemDelegate *delegate, QWidget *parent);

protected:
    void updateGeometries() override;
    void paintEvent(QPaintEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    bool _keyboardFocus = false;
};
