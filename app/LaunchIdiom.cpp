#include "LaunchIdiom.h"

#include <algorithm>

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
    const int smallerSide = std::min(availableScreen.width(), availableScreen.height());
    return smallerSide < tabletMinimumSide ? Kind::Phone : Kind::Tablet;
}

QSize LaunchIdiom::windowSize(Kind kind, QSize availableScreen)
{
    // A screen too short for the status bar and some content is no handheld's.
    const bool handheld = availableScreen.height() > availableScreen.width()
                          && availableScreen.width() > 0
                          && availableScreen.height() > 2 * statusBarHeight;
    if (handheld)
        return availableScreen;
    return kind == Kind::Phone ? QSize(320, 480) : QSize(768, 1024);
}
