#pragma once

#include "ProcReader.h"

#include <QString>

#include <functional>

// Ends or kills the one process a user picked, and nothing else. The process is pinned
// when it is picked: a pidfd (Linux 5.3 and later) refers to it and to no later holder of
// its pid; without one, its start time is checked again just before the signal. The
// kernel decides what the user may signal; KOVAR itself never offers pid 1, kernel
// threads or its own process.
class ProcessSignaller {
public:
    // The system calls, replaceable so that a test can show what is never signalled.
    // Each answers 0 (or a descriptor) on success and minus errno on failure.
    struct Seams {
        std::function<int(int pid)> openPidfd;
        std::function<int(int pidfd, int signal)> sendByPidfd;
        std::function<int(int pid, int signal)> sendByPid;
        std::function<void(int pidfd)> closePidfd;
        int ownPid = 0;
    };
    static Seams hostSeams();

    struct Outcome {
        bool sent = false;
        QString message; // plain words for the sheet
    };

    explicit ProcessSignaller(const QString &rootDir = QStringLiteral("/"), Seams seams = hostSeams());
    ~ProcessSignaller();
    ProcessSignaller(const ProcessSignaller &) = delete;
    ProcessSignaller &operator=(const ProcessSignaller &) = delete;

    // Pins the process listed as name with pid and start ticks; releases the one before.
    void pin(int pid, const QString &name, quint64 startTicks, bool kernelThread);
    void release();

    // Why the pinned process is never offered a signal; empty when it may be.
    QString refusal() const;
    // SIGTERM or SIGKILL to the pinned process, or the reason nothing was sent.
    Outcome send(int signal);

    int pid() const { return _pid; }

private:
    // The start ticks the pid has now: the listed process, another, or none.
    enum class Holder { Listed, Other, Gone };
    Holder holder() const;
    QString describe() const;

    ProcReader _reader;
    Seams _seams;
    int _pid = 0;
    QString _name;
    quint64 _startTicks = 0;
    bool _kernelThread = false;
    int _pidfd = -1;
    bool _reused = false; // the pid named another process already when it was pinned
};
