#pragma once

#include <QAccessibleWidget>
#include <QHash>

// A page indicator read as a tab list: one tab per page, named by the page's title, the
// page shown selected; pressing a tab asks the indicator for its page. The titled cells
// and the plain dots read alike. The tabs are the only children: the invisible cell
// buttons under the titles would only repeat them.
class PageTabListAccessible : public QAccessibleWidget {
public:
    // control: an OOPageControl or a DotPageControl.
    explicit PageTabListAccessible(QWidget *control);
    ~PageTabListAccessible() override;

    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QString text(QAccessible::Text t) const override;

private:
    mutable QHash<int, QAccessible::Id> _tabs;
};
