#include "LaunchIdiom.h"

#include <algorithm>

namespace {

bool holdsTablet(QSize screen)
{
    return std::min(screen.width(), screen.height()) >= LaunchIdiom::tabletMinimumSide;
}

} // namespace

LaunchIdiom::Kind LaunchIdiom::choose(LaunchOptions::Idiom requested, QSize availableScreen)
{
    switch (requested) {
    case LaunchOptions::Idiom::Phone:
        return Kind::Phone;
    case LaunchOptions::Idiom::Tablet:
        return Kind::Tablet;
    case LaunchOptions::Idiom::Automatic:
        break;
    }
    if (isHandheld(availableScreen))
        return holdsTablet(availableScreen) ? Kind::Tablet : Kind::Phone;
    const QSize framed = tabletWindow + windowFrame;
    const bool fits = availableScreen.width() >= framed.width() && availableScreen.height() >= framed.height();
    return fits ? Kind::Tablet : Kind::Phone;
}

QSize LaunchIdiom::windowSize(Kind kind, QSize availableScreen)
{
    if (isHandheld(availableScreen) && (kind == Kind::Phone || holdsTablet(availableScreen)))
        return availableScreen;
    return kind == Kind::Phone ? phoneWindow : tabletWindow;
}

bool LaunchIdiom::isHandheld(QSize availableScreen)
{
    // A screen too short for the status bar and some content is no handheld's.
    return availableScreen.height() > availableScreen.width() && availableScreen.width() > 0
        && availableScreen.height() > 2 * statusBarHeight;
}
