#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QVariantList>

#include <memory>

// A message bus of the test's own (a dbus-daemon child process) with, on demand, a
// mock UPower on it. Everything started here is ended here, by its own process.
class PrivateBus
{
public:
    PrivateBus();
    ~PrivateBus();

    bool isRunning() const;
    QString address() const;
    QDBusConnection connection() const;

    // Starts the mock UPower and waits until its name is on the bus.
    bool startUPower();
    void stopUPower();

    // Calls a method of the mock's control interface; false (and a warning) on error.
    bool callMock(const QString &method, const QVariantList &arguments);

private:
    std::unique_ptr<QProcess> m_daemon;
    std::unique_ptr<QProcess> m_upower;
    QString m_address;
    QString m_connectionName;
};
