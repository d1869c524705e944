#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QList>
#include <QSet>
#include <QTemporaryDir>

#include <cstdio>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

// A /proc of generated processes with real-looking stat lines. Processes can be made
// to come and go as on a busy machine: new ones take pids the way the kernel hands
// them out, counting up and wrapping at pid_max, so dead pids are reused.
class GeneratedProcTree {
public:
    // The shared tree of 1,000 processes that never changes, built once per run.
    static GeneratedProcTree &instance()
    {
        static GeneratedProcTree tree(1000);
        return tree;
    }

    explicit GeneratedProcTree(int processes, int pidMax = 32768)
        : _dir(memoryBackedTemplate())
        , _proc(QFile::encodeName(_dir.path()) + "/proc")
        , _pidMax(pidMax)
    {
        ::mkdir(_proc.constData(), 0755);
        writeFile(_proc + "/meminfo",
                  "MemTotal:        8048576 kB\nMemFree:         1200000 kB\nMemAvailable:    5000000 kB\n"
                  "Active:          3000000 kB\nInactive:        2500000 kB\n");
        advanceClock();
        for (int i = 0; i < processes; ++i)
            spawn();
    }

    QString root() const { return _dir.path(); }
    qsizetype processCount() const { return _live.size(); }

    // One refresh period: the CPU counters move on and count processes are replaced
    // by new ones, picked at random.
    void churn(int count)
    {
        advanceClock();
        for (int i = 0; i < count && !_live.isEmpty(); ++i) {
            const qsizetype victim = std::uniform_int_distribution<qsizetype>(0, _live.size() - 1)(_random);
            const int pid = _live.at(victim);
            _live.removeAt(victim);
            _used.remove(pid);
            const QByteArray dir = _proc + '/' + QByteArray::number(pid);
            ::unlink((dir + "/stat").constData());
            ::rmdir(dir.constData());
        }
        for (int i = 0; i < count; ++i)
            spawn();
    }

private:
    // In RAM like /proc itself where the system has a tmpfs: a disk file system would
    // make the churn, not the reader, the cost being measured.
    static QString memoryBackedTemplate()
    {
        const bool shm = ::access("/dev/shm", W_OK) == 0;
        return (shm ? QStringLiteral("/dev/shm") : QDir::tempPath()) + QStringLiteral("/kovar-proc-XXXXXX");
    }

    void advanceClock()
    {
        _ticks += 200; // two seconds at 100 Hz, a quarter of them busy
        writeFile(_proc + "/stat",
                  "cpu  " + QByteArray::number(_ticks / 8) + " 0 " + QByteArray::number(_ticks / 8) + ' '
                      + QByteArray::number(_ticks * 3 / 4) + " 0 0 0 0 0 0\nbtime 1700000000\n");
    }

    void spawn()
    {
        do {
            _nextPid = _nextPid >= _pidMax ? 300 : _nextPid + 1;
        } while (_used.contains(_nextPid));
        const int pid = _nextPid;
        _used.insert(pid);
        _live.append(pid);
        const QByteArray dir = _proc + '/' + QByteArray::number(pid);
        ::mkdir(dir.constData(), 0755);
        const QByteArray line = QByteArray::number(pid) + " (worker-" + QByteArray::number(++_serial)
            + ") S 1 1 0 0 -1 4194560 1523 0 0 0 12 7 0 0 20 0 1 0 " + QByteArray::number(_ticks)
            + " 5435392 710 18446744073709551615 94815633768448 94815634557853 140734943515104 0 0 0 65536 "
              "3670016 1132560123 1 0 0 17 1 0 0 0 0 0 94815634791152 94815634839396 94816016547840 "
              "140734943517498 140734943517513 140734943517513 140734943518698 0\n";
        writeFile(dir + "/stat", line);
    }

    static void writeFile(const QByteArray &path, const QByteArray &data)
    {
        const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0)
            return;
        if (::write(fd, data.constData(), size_t(data.size())) != data.size())
            std::fputs("GeneratedProcTree: short write while building the tree\n", stderr);
        ::close(fd);
    }

    QTemporaryDir _dir;
    QByteArray _proc;
    int _pidMax;
    int _nextPid = 0;
    quint64 _serial = 0;
    quint64 _ticks = 0;
    QList<int> _live;
    QSet<int> _used;
    std::mt19937 _random{16};
};
