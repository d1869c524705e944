#pragma once

#include <QtDBus>

// A message bus of the test's own (a dbus-daemon child) and, on demand, one mock service
// on it (python3-dbusmock, told the bus is the system bus). Everything started here is
// ended here, by its pid.
class PrivateBus {
public:
    PrivateBus()
    {
        _daemon.start(QStringLiteral("dbus-daemon"), {"--session", "--nofork", "--nopidfile", "--print-address=1"});
        for (QDeadlineTimer deadline(10000);
             _daemon.waitForStarted() && !_daemon.canReadLine() && !deadline.hasExpired();)
            _daemon.waitForReadyRead(100);
        _address = QString::fromUtf8(_daemon.readLine()).trimmed();
        QDBusConnection::connectToBus(_address, name);
    }
    ~PrivateBus()
    {
        stopMock();
        QDBusConnection::disconnectFromBus(name);
        _daemon.kill();
        _daemon.waitForFinished();
    }

    QDBusConnection connection() const { return QDBusConnection(name); }

    // Starts `python3 -m dbusmock arguments...` and waits until it owns `service`.
    bool startMock(const QString &service, const QStringList &arguments)
    {
        stopMock();
        _service = service;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), _address);
        _mock.setProcessEnvironment(environment);
        _mock.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // Debian's interpreter explicitly: it is the one that has the mock module.
        _mock.start(QStringLiteral("/usr/bin/python3"), QStringList{"-m", "dbusmock"} + arguments);
        // The name counts only once this very process owns it: a mock ended just before may
        // still hold it for a moment.
        for (QDeadlineTimer deadline(30000); _mock.waitForStarted() && !deadline.hasExpired();
             _mock.waitForFinished(20)) {
            const QDBusReply<uint> owner = connection().interface()->servicePid(service);
            if (owner.isValid() && owner.value() == uint(_mock.processId()))
                return true;
        }
        return false;
    }

    void stopMock()
    {
        _mock.kill();
        _mock.waitForFinished();
    }

    // A method of the mock's control interface at `path`; false (and a warning) on error.
    bool callMock(const QString &path, const QString &method, const QVariantList &arguments)
    {
        QDBusMessage call = QDBusMessage::createMethodCall(_service, path, QStringLiteral("org.freedesktop.DBus.Mock"),
                                                           method);
        call.setArguments(arguments);
        const QDBusMessage reply = connection().call(call, QDBus::Block, 10000);
        if (reply.type() != QDBusMessage::ReplyMessage)
            qWarning("mock %s failed: %s", qPrintable(method), qPrintable(reply.errorMessage()));
        return reply.type() == QDBusMessage::ReplyMessage;
    }

    // Round trips through the mock: whatever it sent before (signals, replies to the code
    // under test) and what those set off, a fetch and its answer, has been delivered on return.
    void settle()
    {
        const QDBusMessage ping = QDBusMessage::createMethodCall(_service, "/", "org.freedesktop.DBus.Peer", "Ping");
        for (int round = 0; round < 3; ++round) {
            QCoreApplication::processEvents();
            connection().call(ping, QDBus::Block, 10000);
        }
        QCoreApplication::processEvents();
    }

private:
    const QString name = QStringLiteral("kovar-private-bus");
    QProcess _daemon;
    QProcess _mock;
    QString _address;
    QString _service;
};
