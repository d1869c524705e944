#pragma once

#include <functional>

class QObject;

// The application's "did become active" moments, for the screens that read a figure
// anew on each one (the network record).
namespace ActivationWatch {

// Calls action each time the application becomes active, for as long as context lives.
// The window is shown, and so activated, before the screens are built: an application
// that is already active counts that activation as the first one, and action runs once
// soon after this call.
void onEveryActivation(QObject *context, std::function<void()> action);

} // namespace ActivationWatch
