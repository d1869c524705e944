#pragma once

#include <QByteArray>

#include <memory>

class QApplication;
class QProcessEnvironment;

// Opens the application on the window system. Where no display can be opened, the user
// reads one line that says so and what works without one, and the process ends with
// status 1, instead of Qt's abort and its advice to reinstall.
class PlatformStart {
public:
    static std::unique_ptr<QApplication> open(int &argc, char **argv);

    // Where there is no session bus, the D-Bus library starts one the first time Qt asks
    // for it (Qt's accessibility bridge does at start), and that bus outlives us. Returns
    // the DBUS_SESSION_BUS_ADDRESS that says there is none ("disabled:"), or nothing where
    // the environment names a bus or the user's runtime directory holds one.
    static QByteArray sessionBusAddress(const QProcessEnvironment &environment);
};
