#include "IdiomDelegate.h"

#include "MonitorAppDelegate_iPad.h"
#include "MonitorAppDelegate_iPhone.h"

namespace IdiomDelegate {

std::unique_ptr<MonitorAppDelegate> create(LaunchIdiom::Kind kind, QSize windowSize, Device *device)
{
    if (kind == LaunchIdiom::Kind::Tablet)
        return std::make_unique<MonitorAppDelegate_iPad>(windowSize, device);
    return std::make_unique<MonitorAppDelegate_iPhone>(windowSize, device);
}

} // namespace IdiomDelegate
