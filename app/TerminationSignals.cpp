#include "TerminationSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cerrno>
#include <csignal>

#include <sys/socket.h>
#include <unistd.h>

namespace {

int wakeFds[2] = {-1, -1}; // [0] written by the handler, [1] read by the event loop
constexpr int Handled[] = {SIGTERM, SIGINT};

void setDisposition(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int signalNumber : Handled)
        sigaction(signalNumber, &action, nullptr);
}

extern "C" void onTerminationSignal(int signalNumber)
{
    const int savedErrno = errno;
    if (signalNumber != SIGHUP)
        setDisposition(SIG_DFL);
    const char byte = char(signalNumber);
    if (::write(wakeFds[0], &byte, 1) < 0) {
        // Nothing to be done inside a signal handler; the default disposition is back.
    }
    errno = savedErrno;
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent)
    : TerminationSignals(std::function<void()>(), parent)
{
}

TerminationSignals::TerminationSignals(std::function<void()> onHangup, QObject *parent)
    : QObject(parent)
    , _onHangup(std::move(onHangup))
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, wakeFds) != 0)
        return;
    _notifier = new QSocketNotifier(wakeFds[1], QSocketNotifier::Read, this);
    connect(_notifier, &QSocketNotifier::activated, this, &TerminationSignals::readSignal);
    setDisposition(onTerminationSignal);
    if (_onHangup) {
        struct sigaction action = {};
        action.sa_handler = onTerminationSignal;
        sigemptyset(&action.sa_mask);
        action.sa_flags = SA_RESTART;
        sigaction(SIGHUP, &action, nullptr);
    }
}

TerminationSignals::~TerminationSignals()
{
    setDisposition(SIG_DFL);
    if (_onHangup)
        std::signal(SIGHUP, SIG_DFL);
    delete _notifier;
    for (int &fd : wakeFds) {
        if (fd >= 0)
            ::close(fd);
        fd = -1;
    }
}

void TerminationSignals::readSignal()
{
    char byte = 0;
    if (::read(wakeFds[1], &byte, 1) != 1)
        return;
    if (byte == char(SIGHUP) && _onHangup)
        _onHangup();
    else
        QCoreApplication::quit();
}
