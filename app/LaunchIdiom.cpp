#include "LaunchIdiom.h"

#include <algorithm>
#include <cmath>

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

qreal LaunchIdiom::steppedZoom(qreal zoom, int steps)
{
    // Zooms closer than this are one step: window sizes are whole pixels.
    constexpr qreal epsilon = 1e-3;
    qreal stepped = zoom;
    for (int i = 0; i < std::abs(steps); ++i) {
        const qreal units = stepped / zoomStep;
        stepped = steps > 0 ? (std::floor(units + epsilon) + 1) * zoomStep
                            : (std::ceil(units - epsilon) - 1) * zoomStep;
    }
    return std::clamp(stepped, minimumZoom, maximumZoom);
}

qreal LaunchIdiom::firstZoom(Kind kind, QSize availableScreen, int requestedPercent)
{
    if (isHandheld(availableScreen))
        return 1.0;
    if (requestedPercent > 0)
        return std::clamp(requestedPercent / 100.0, minimumZoom, maximumZoom);
    const QSize window = kind == Kind::Phone ? phoneWindow : tabletWindow;
    qreal zoom = 1.0;
    for (qreal step = maximumZoom; step > 1.0; step -= zoomStep) {
        const bool fits = window.height() * step + windowFrame.height() <= 0.9 * availableScreen.height()
            && window.width() * step + windowFrame.width() <= availableScreen.width();
        if (fits) {
            zoom = step;
            break;
        }
    }
    return zoom;
}
