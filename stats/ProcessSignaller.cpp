#include "ProcessSignaller.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/syscall.h>
#include <unistd.h>

#ifndef SYS_pidfd_open
#define SYS_pidfd_open 434
#endif
#ifndef SYS_pidfd_send_signal
#define SYS_pidfd_send_signal 424
#endif

ProcessSignaller::Seams ProcessSignaller::hostSeams()
{
    Seams seams;
    // The C library of the oldest supported systems has no wrappers for these.
    seams.openPidfd = [](int pid) {
        const long fd = ::syscall(SYS_pidfd_open, pid, 0);
        return fd >= 0 ? int(fd) : -errno;
    };
    seams.sendByPidfd = [](int pidfd, int signal) {
        return ::syscall(SYS_pidfd_send_signal, pidfd, signal, nullptr, 0) == 0 ? 0 : -errno;
    };
    seams.sendByPid = [](int pid, int signal) { return ::kill(pid, signal) == 0 ? 0 : -errno; };
    seams.closePidfd = [](int pidfd) { ::close(pidfd); };
    seams.ownPid = int(::getpid());
    return seams;
}

ProcessSignaller::ProcessSignaller(const QString &rootDir, Seams seams)
    : _reader(rootDir)
    , _seams(std::move(seams))
{
}

ProcessSignaller::~ProcessSignaller()
{
    release();
}

void ProcessSignaller::release()
{
    if (_pidfd >= 0 && _seams.closePidfd)
        _seams.closePidfd(_pidfd);
    _pidfd = -1;
    _pid = 0;
    _reused = false;
}

void ProcessSignaller::pin(int pid, const QString &name, quint64 startTicks, bool kernelThread)
{
    release();
    _pid = pid;
    _name = name;
    _startTicks = startTicks;
    _kernelThread = kernelThread;
    if (!refusal().isEmpty())
        return;
    _pidfd = _seams.openPidfd ? _seams.openPidfd(pid) : -ENOSYS;
    // The pidfd holds whatever process has the pid now: the listed one only if its start
    // time still matches after the descriptor was opened.
    if (_pidfd >= 0) {
        const Holder now = holder();
        if (now != Holder::Listed) {
            if (_seams.closePidfd)
                _seams.closePidfd(_pidfd);
            _pidfd = -1;
            _reused = now == Holder::Other;
        }
    }
}

ProcessSignaller::Holder ProcessSignaller::holder() const
{
    const std::optional<ProcReader::ProcStat> stat = _reader.processStat(_pid);
    if (!stat)
        return Holder::Gone;
    if (stat->startTicks != _startTicks)
        return Holder::Other;
    // A zombie has exited; only its parent's wait is left.
    return stat->state == 'Z' || stat->state == 'X' ? Holder::Gone : Holder::Listed;
}

QString ProcessSignaller::describe() const
{
    return QStringLiteral("\u201c%1\u201d (pid %2)").arg(_name).arg(_pid);
}

QString ProcessSignaller::refusal() const
{
    if (_pid <= 0)
        return QStringLiteral("No process is chosen.");
    if (_pid == 1)
        return QStringLiteral("KOVAR does not end pid 1: the system runs on it.");
    if (_kernelThread)
        return QStringLiteral("%1 is part of the kernel and cannot be ended.").arg(describe());
    if (_pid == _seams.ownPid)
        return QStringLiteral("%1 is KOVAR itself: quit it instead.").arg(describe());
    return {};
}

ProcessSignaller::Outcome ProcessSignaller::send(int signal)
{
    if (const QString refused = refusal(); !refused.isEmpty())
        return {false, refused};
    const QString other = QStringLiteral("Pid %1 now belongs to another process: %2 has exited. Nothing was signalled.")
                              .arg(_pid)
                              .arg(QStringLiteral("\u201c%1\u201d").arg(_name));
    if (_reused)
        return {false, other};
    int result = 0;
    if (_pidfd >= 0) {
        result = _seams.sendByPidfd ? _seams.sendByPidfd(_pidfd, signal) : -ENOSYS;
    } else {
        switch (holder()) {
        case Holder::Other:
            return {false, other};
        case Holder::Gone:
            result = -ESRCH;
            break;
        case Holder::Listed:
            result = _seams.sendByPid ? _seams.sendByPid(_pid, signal) : -ENOSYS;
            break;
        }
    }
    const char *what = signal == SIGKILL ? "killed" : "asked to end";
    switch (-result) {
    case 0:
        return {true, QStringLiteral("%1 was %2.").arg(describe(), QLatin1String(what))};
    case ESRCH:
        return {false, QStringLiteral("%1 has already exited.").arg(describe())};
    case EPERM:
        return {false, QStringLiteral("You may not signal %1: it belongs to another user.").arg(describe())};
    default:
        return {false,
                QStringLiteral("%1 could not be signalled: %2.")
                    .arg(describe(), QString::fromLocal8Bit(std::strerror(-result)))};
    }
}
