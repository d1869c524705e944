#include "PlatformStart.h"

#include <QApplication>
#include <QFileInfo>
#include <QList>
#include <QProcessEnvironment>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

struct HeldMessage {
    QtMsgType type;
    QByteArray category;
    QString text;
};

QList<HeldMessage> &heldMessages()
{
    static QList<HeldMessage> messages;
    return messages;
}

QByteArray noDisplayMessage(const QByteArray &display, const QByteArray &waylandDisplay)
{
    QByteArray where;
    if (display.isEmpty() && waylandDisplay.isEmpty())
        where = "no display is set (neither DISPLAY nor WAYLAND_DISPLAY)";
    else if (!display.isEmpty() && !waylandDisplay.isEmpty())
        where = "neither display " + display + " nor " + waylandDisplay + " could be opened";
    else
        where = "display " + display + waylandDisplay + " could not be opened";
    return "kovar: cannot open a window: " + where
        + "; without a display, kovar --snapshot prints the figures and kovar --screenshot DIR renders the pages\n";
}

// While the platform starts, its complaints (a display that does not answer) are held
// back: they are noise if it then fails, and are passed on if it succeeds.
void holdWhileStarting(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type == QtFatalMsg) {
        const QByteArray line = noDisplayMessage(qgetenv("DISPLAY"), qgetenv("WAYLAND_DISPLAY"));
        std::fputs(line.constData(), stderr);
        std::fflush(stderr);
        // Nothing has started that would need tearing down; Qt would abort right after this.
        std::_Exit(1);
    }
    heldMessages().append({type, QByteArray(context.category), text});
}

} // namespace

std::unique_ptr<QApplication> PlatformStart::open(int &argc, char **argv)
{
    const QtMessageHandler previous = qInstallMessageHandler(holdWhileStarting);
    auto application = std::make_unique<QApplication>(argc, argv);
    qInstallMessageHandler(previous);
    for (const HeldMessage &message : std::exchange(heldMessages(), {})) {
        const QMessageLogger logger(nullptr, 0, nullptr, message.category.constData());
        switch (message.type) {
        case QtDebugMsg:
            logger.debug("%s", qUtf8Printable(message.text));
            break;
        case QtInfoMsg:
            logger.info("%s", qUtf8Printable(message.text));
            break;
        case QtWarningMsg:
            logger.warning("%s", qUtf8Printable(message.text));
            break;
        default:
            logger.critical("%s", qUtf8Printable(message.text));
            break;
        }
    }
    return application;
}

QByteArray PlatformStart::sessionBusAddress(const QProcessEnvironment &environment)
{
    if (!environment.value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS")).isEmpty())
        return {};
    // The D-Bus library's own first choice when the variable is not set: systemd's user bus.
    const QString runtime = environment.value(QStringLiteral("XDG_RUNTIME_DIR"));
    if (!runtime.isEmpty() && QFileInfo(runtime + QStringLiteral("/bus")).exists())
        return {};
    return QByteArrayLiteral("disabled:");
}
