#pragma once

#include <memory>

class QApplication;

// Opens the application on the window system. Where no display can be opened, the user
// reads one line that says so and what works without one, and the process ends with
// status 1, instead of Qt's abort and its advice to reinstall.
class PlatformStart
{
public:
    static std::unique_ptr<QApplication> open(int &argc, char **argv);
};
