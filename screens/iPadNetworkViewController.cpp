#include "iPadNetworkViewController.h"

namespace {
// The network panel keeps the phone's 19-point title.
constexpr ListPage::Insets TabletNetworkInsets = [] {
    ListPage::Insets insets = ListPage::TabletInsets;
    insets.titleSize = 19;
    return insets;
}();
} // namespace

iPadNetworkViewController::iPadNetworkViewController(QWidget *parent)
    : NetworkPage(TabletNetworkInsets, InfoCellDelegate::TabletNetworkCell, parent)
{
}

bool iPadNetworkViewController::shouldAutorotateToInterfaceOrientation(InterfaceOrientation) const
{
    return true;
}
