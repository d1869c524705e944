#pragma once

#include "LaunchIdiom.h"

#include <QSize>

#include <memory>

class Device;
class MonitorAppDelegate;

// The application delegate of an idiom, chosen at launch in place of the handheld's
// per-family interface file.
namespace IdiomDelegate {

// MonitorAppDelegate_iPhone or MonitorAppDelegate_iPad, with a window of windowSize;
// device as MonitorAppDelegate takes it.
std::unique_ptr<MonitorAppDelegate> create(LaunchIdiom::Kind kind, QSize windowSize, Device *device = nullptr);

} // namespace IdiomDelegate
