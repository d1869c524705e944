#include "iPadProcessesViewConroller.h"

#include <QListView>

namespace {
// The left-hand panel: 8 points in on the left, 4 on the right (the right-hand panels
// are the other way round), so the columns keep 8 points from the edges and each other.
constexpr ListPage::Insets TabletProcessesInsets = [] {
    ListPage::Insets insets = ListPage::TabletInsets;
    insets.background = QMargins(8, 8, 4, 0);
    return insets;
}();
} // namespace

iPadProcessesViewConroller::iPadProcessesViewConroller(QWidget *parent)
    : ProcessesPage({TabletProcessesInsets,
                     QRect(20, 40, 344, 15),
                     {QRect(20, 60, 60, 20), QRect(80, 60, 220, 20), QRect(300, 60, 64, 20)},
                     Qt::AlignHCenter},
                    ProcessCellDelegate::TabletCell, parent)
{
}

void iPadProcessesViewConroller::viewDidLoad()
{
    ProcessesPage::viewDidLoad();
    tableView()->setFocusPolicy(Qt::TabFocus);
}

bool iPadProcessesViewConroller::shouldAutorotateToInterfaceOrientation(InterfaceOrientation orientation) const
{
    return orientation == InterfaceOrientation::Portrait;
}
