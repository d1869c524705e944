#include "PrivateBus.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QDBusReply>
#include <QProcessEnvironment>
#include <QThread>
#include <QUuid>

namespace {

const QString upowerService = QStringLiteral("org.freedesktop.UPower");

void endProcess(QProcess *process)
{
    if (!process || process->state() == QProcess::NotRunning)
        return;
    process->terminate();
    if (!process->waitForFinished(5000)) {
        process->kill();
        process->waitForFinished(5000);
    }
}

} // namespace

PrivateBus::PrivateBus()
    : m_daemon(std::make_unique<QProcess>())
    , m_connectionName(QStringLiteral("kovar-test-") + QUuid::createUuid().toString(QUuid::WithoutBraces))
{
    m_daemon->start(QStringLiteral("dbus-daemon"),
                    {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address=1")});
    if (!m_daemon->waitForStarted(5000))
        return;
    QDeadlineTimer deadline(10000);
    while (!m_daemon->canReadLine() && !deadline.hasExpired())
        m_daemon->waitForReadyRead(100);
    m_address = QString::fromUtf8(m_daemon->readLine()).trimmed();
}

PrivateBus::~PrivateBus()
{
    stopUPower();
    QDBusConnection::disconnectFromBus(m_connectionName);
    endProcess(m_daemon.get());
}

bool PrivateBus::isRunning() const
{
    return m_daemon->state() == QProcess::Running && !m_address.isEmpty() && connection().isConnected();
}

QString PrivateBus::address() const
{
    return m_address;
}

QDBusConnection PrivateBus::connection() const
{
    return QDBusConnection::connectToBus(m_address, m_connectionName);
}

bool PrivateBus::startUPower()
{
    stopUPower();
    m_upower = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), m_address);
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_address);
    m_upower->setProcessEnvironment(environment);
    m_upower->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // The Debian interpreter explicitly: it is the one that has the mock module.
    m_upower->start(QStringLiteral("/usr/bin/python3"),
                    {QStringLiteral("-m"), QStringLiteral("dbusmock"), QStringLiteral("--template"),
                     QStringLiteral("upower")});
    if (!m_upower->waitForStarted(5000))
        return false;
    const QDBusConnection bus = connection();
    // The name counts only once this very process owns it: a mock ended just before
    // may still hold it for a moment.
    const uint pid = uint(m_upower->processId());
    QDeadlineTimer deadline(30000);
    while (!deadline.hasExpired()) {
        const QDBusReply<uint> owner = bus.interface()->servicePid(upowerService);
        if (owner.isValid() && owner.value() == pid)
            return true;
        if (m_upower->state() == QProcess::NotRunning)
            return false;
        m_upower->waitForFinished(50);
    }
    return false;
}

void PrivateBus::stopUPower()
{
    if (!m_upower)
        return;
    endProcess(m_upower.get());
    m_upower.reset();
    // Gone from the bus too, so that the next test starts from "no UPower".
    const QDBusConnection bus = connection();
    QDeadlineTimer deadline(10000);
    while (bus.interface()->isServiceRegistered(upowerService) && !deadline.hasExpired())
        QThread::msleep(20);
}

bool PrivateBus::callMock(const QString &method, const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(upowerService, QStringLiteral("/org/freedesktop/UPower"),
                                                       QStringLiteral("org.freedesktop.DBus.Mock"), method);
    call.setArguments(arguments);
    const QDBusMessage reply = connection().call(call, QDBus::Block, 10000);
    if (reply.type() == QDBusMessage::ErrorMessage) {
        qWarning("mock UPower %s failed: %s", qPrintable(method), qPrintable(reply.errorMessage()));
        return false;
    }
    return true;
}
