#pragma once

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// A tree of 1,000 processes with real-looking stat lines, built once per run.
class GeneratedProcTree {
public:
    static GeneratedProcTree &instance()
    {
        static GeneratedProcTree tree;
        return tree;
    }
    QString root() const { return m_dir.path(); }

private:
    GeneratedProcTree()
    {
        const QByteArray proc = QFile::encodeName(m_dir.path()) + "/proc";
        ::mkdir(proc.constData(), 0755);
        const QByteArray stat = "cpu  31186 17 14108 988118 734 5 364 9 0 0\nbtime 1700000000\n";
        writeFile(proc + "/stat", stat);
        writeFile(proc + "/meminfo",
                  "MemTotal:        8048576 kB\nMemFree:         1200000 kB\nMemAvailable:    5000000 kB\n"
                  "Active:          3000000 kB\nInactive:        2500000 kB\n");
        for (int pid = 1; pid <= 1000; ++pid) {
            const QByteArray dir = proc + '/' + QByteArray::number(pid);
            ::mkdir(dir.constData(), 0755);
            const QByteArray line = QByteArray::number(pid) + " (worker-" + QByteArray::number(pid)
                + ") S 1 1 0 0 -1 4194560 1523 0 0 0 12 7 0 0 20 0 1 0 " + QByteArray::number(pid * 37)
                + " 5435392 710 18446744073709551615 94815633768448 94815634557853 140734943515104 0 0 0 65536 "
                  "3670016 1132560123 1 0 0 17 1 0 0 0 0 0 94815634791152 94815634839396 94816016547840 "
                  "140734943517498 140734943517513 140734943517513 140734943518698 0\n";
            writeFile(dir + "/stat", line);
        }
    }
    static void writeFile(const QByteArray &path, const QByteArray &data)
    {
        const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0)
            return;
        if (::write(fd, data.constData(), size_t(data.size())) != data.size())
            std::fputs("bench_stats: short write while building the tree\n", stderr);
        ::close(fd);
    }
    QTemporaryDir m_dir;
};
