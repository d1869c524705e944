#include "ProcReader.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

// Reads a whole (small, pseudo) file with plain system calls: QFile's buffering and
// signals cost more than the read itself when hundreds of files are read per tick.
std::optional<QByteArray> readFile(const QByteArray &path)
{
    const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return std::nullopt;
    QByteArray data;
    qsizetype used = 0;
    data.resize(4096);
    for (;;) {
        const ssize_t n = ::read(fd, data.data() + used, size_t(data.size() - used));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            ::close(fd);
            return std::nullopt;
        }
        if (n == 0)
            break;
        used += n;
        if (used == data.size())
            data.resize(data.size() * 2);
    }
    ::close(fd);
    data.truncate(used);
    return data;
}

// Unsigned decimal at *p; advances p. False when there is no digit.
bool parseUnsigned(const char *&p, const char *end, quint64 &value)
{
    while (p < end && (*p == ' ' || *p == '\t'))
        ++p;
    const char *start = p;
    quint64 v = 0;
    while (p < end && *p >= '0' && *p <= '9') {
        v = v * 10 + quint64(*p - '0'); // wraps on absurd input, which is fine for tick counters
        ++p;
    }
    value = v;
    return p != start;
}

bool parseSigned(const char *&p, const char *end, qint64 &value)
{
    while (p < end && (*p == ' ' || *p == '\t'))
        ++p;
    bool negative = false;
    if (p < end && (*p == '-' || *p == '+')) {
        negative = *p == '-';
        ++p;
    }
    quint64 magnitude = 0;
    if (!parseUnsigned(p, end, magnitude) || magnitude > quint64(LLONG_MAX))
        return false;
    value = negative ? -qint64(magnitude) : qint64(magnitude);
    return true;
}

// The line starting with key followed by a blank, or nullptr.
const char *findLine(const char *text, const char *end, const char *key)
{
    const size_t keyLength = std::strlen(key);
    const char *line = text;
    while (line < end) {
        if (size_t(end - line) > keyLength && std::memcmp(line, key, keyLength) == 0
            && (line[keyLength] == ' ' || line[keyLength] == '\t' || line[keyLength] == ':'))
            return line + keyLength;
        const void *newline = std::memchr(line, '\n', size_t(end - line));
        if (!newline)
            break;
        line = static_cast<const char *>(newline) + 1;
    }
    return nullptr;
}

// PF_KTHREAD of the stat record's flags: a kernel thread, which has no program to end.
constexpr quint64 KernelThreadFlag = 0x00200000;

} // namespace

ProcReader::ProcReader(const QString &rootDir)
    : _root(rootDir)
{
    QString dir = rootDir;
    while (dir.endsWith(QLatin1Char('/')))
        dir.chop(1);
    _procDir = QFile::encodeName(dir) + "/proc";
}

std::optional<ProcReader::CpuTicks> ProcReader::parseCpuLine(const char *text, qsizetype length)
{
    const char *end = text + length;
    const char *p = findLine(text, end, "cpu");
    if (!p)
        return std::nullopt;
    const void *newline = std::memchr(p, '\n', size_t(end - p));
    const char *lineEnd = newline ? static_cast<const char *>(newline) : end;

    // user nice system idle iowait irq softirq steal guest guest_nice; old kernels
    // stop after idle, so later columns default to zero.
    quint64 field[10] = {};
    int count = 0;
    while (count < 10 && parseUnsigned(p, lineEnd, field[count]))
        ++count;
    if (count < 4)
        return std::nullopt;

    // Niced work (a build, a batch job) is work the user asked for: it counts as
    // user time, or a busy machine would read as idle. Guest time is already inside
    // user; steal is time this machine did not get, so it is left out.
    CpuTicks ticks;
    ticks.user = field[0] + field[1];
    ticks.system = field[2] + field[5] + field[6];
    ticks.idle = field[3] + field[4];
    return ticks;
}

ProcReader::MemInfo ProcReader::parseMemInfo(const char *text, qsizetype length)
{
    const char *end = text + length;
    auto field = [&](const char *key) -> std::optional<quint64> {
        const char *p = findLine(text, end, key);
        if (!p || *p != ':')
            return std::nullopt;
        ++p;
        quint64 value = 0;
        if (!parseUnsigned(p, end, value))
            return std::nullopt;
        return value;
    };
    MemInfo info;
    info.memTotal = field("MemTotal");
    info.memFree = field("MemFree");
    info.active = field("Active");
    info.inactive = field("Inactive");
    return info;
}

std::optional<qint64> ProcReader::parseBootTime(const char *text, qsizetype length)
{
    const char *end = text + length;
    const char *p = findLine(text, end, "btime");
    qint64 value = 0;
    if (!p || !parseSigned(p, end, value))
        return std::nullopt;
    return value;
}

std::optional<ProcReader::ProcStat> ProcReader::parseProcStat(const char *text, qsizetype length)
{
    const char *end = text + length;
    // The command name may itself hold spaces and parentheses: it runs from the
    // first "(" to the last ")".
    const char *open = static_cast<const char *>(std::memchr(text, '(', size_t(length)));
    if (!open)
        return std::nullopt;
    const char *close = nullptr;
    for (const char *q = end; q > open + 1;) {
        --q;
        if (*q == ')') {
            close = q;
            break;
        }
    }
    if (!close)
        return std::nullopt;

    ProcStat stat;
    const char *p = text;
    qint64 pid = 0;
    if (!parseSigned(p, open, pid) || pid < 0 || pid > INT_MAX)
        return std::nullopt;
    stat.pid = int(pid);
    stat.comm = QByteArray(open + 1, close - open - 1);

    // Field 3 (state) follows the name; then numbers up to field 22, which every kernel
    // writes, and the optional 23 (vsize) and 24 (rss).
    p = close + 1;
    while (p < end && *p == ' ')
        ++p;
    if (p >= end || *p == ' ' || *p == '\n')
        return std::nullopt;
    stat.state = *p++;
    quint64 userTicks = 0;
    for (int field = 4; field <= 24; ++field) {
        qint64 value = 0;
        if (!parseSigned(p, end, value)) {
            if (field > 22)
                break;
            return std::nullopt;
        }
        if (p < end && *p != ' ' && *p != '\n')
            return std::nullopt;
        switch (field) {
        case 4:
            stat.parentPid = value >= 0 && value <= INT_MAX ? int(value) : 0;
            break;
        case 9:
            stat.kernelThread = (quint64(value) & KernelThreadFlag) != 0;
            break;
        case 14:
            userTicks = quint64(value);
            break;
        case 15:
            stat.cpuTicks = userTicks + quint64(value);
            break;
        case 18:
            if (value < INT_MIN || value > INT_MAX)
                return std::nullopt;
            stat.priority = int(value);
            break;
        case 20:
            stat.threads = value >= 0 && value <= INT_MAX ? int(value) : 0;
            break;
        case 22:
            if (value < 0)
                return std::nullopt;
            stat.startTicks = quint64(value);
            break;
        case 24:
            if (value >= 0)
                stat.residentPages = quint64(value);
            break;
        default:
            break;
        }
    }
    return stat;
}

ProcReader::ElapsedTicks ProcReader::parseElapsedTicks(const char *text, qsizetype length)
{
    const char *end = text + length;
    ElapsedTicks elapsed;
    elapsed.bootTime = parseBootTime(text, length);
    if (const char *p = findLine(text, end, "cpu")) {
        const void *newline = std::memchr(p, '\n', size_t(end - p));
        const char *lineEnd = newline ? static_cast<const char *>(newline) : end;
        // user nice system idle iowait irq softirq steal: guest and guest_nice are inside user.
        quint64 value = 0;
        for (int field = 0; field < 8 && parseUnsigned(p, lineEnd, value); ++field)
            elapsed.allCpus += value;
    }
    for (const char *line = text; line < end;) {
        if (end - line > 3 && std::memcmp(line, "cpu", 3) == 0 && line[3] >= '0' && line[3] <= '9')
            ++elapsed.cpus;
        const void *newline = std::memchr(line, '\n', size_t(end - line));
        if (!newline)
            break;
        line = static_cast<const char *>(newline) + 1;
    }
    return elapsed;
}

std::optional<ProcReader::CpuTicks> ProcReader::cpuTicks() const
{
    const std::optional<QByteArray> data = readFile(_procDir + "/stat");
    if (!data)
        return std::nullopt;
    return parseCpuLine(data->constData(), data->size());
}

std::optional<ProcReader::MemInfo> ProcReader::memInfo() const
{
    const std::optional<QByteArray> data = readFile(_procDir + "/meminfo");
    if (!data)
        return std::nullopt;
    return parseMemInfo(data->constData(), data->size());
}

std::optional<qint64> ProcReader::bootTime() const
{
    const std::optional<QByteArray> data = readFile(_procDir + "/stat");
    if (!data)
        return std::nullopt;
    return parseBootTime(data->constData(), data->size());
}

std::optional<ProcReader::ElapsedTicks> ProcReader::elapsedTicks() const
{
    const std::optional<QByteArray> data = readFile(_procDir + "/stat");
    if (!data)
        return std::nullopt;
    return parseElapsedTicks(data->constData(), data->size());
}

std::optional<ProcReader::ProcStat> ProcReader::processStat(int pid) const
{
    const std::optional<QByteArray> data = readFile(statPath(pid));
    if (!data)
        return std::nullopt;
    std::optional<ProcStat> stat = parseProcStat(data->constData(), data->size());
    if (stat && stat->pid != pid)
        return std::nullopt;
    return stat;
}

std::optional<QList<int>> ProcReader::pids() const
{
    DIR *dir = ::opendir(_procDir.constData());
    if (!dir)
        return std::nullopt;
    QList<int> result;
    while (const dirent *entry = ::readdir(dir)) {
        const char *name = entry->d_name;
        if (*name < '1' || *name > '9')
            continue;
        long long pid = 0;
        const char *p = name;
        while (*p >= '0' && *p <= '9' && pid <= INT_MAX)
            pid = pid * 10 + (*p++ - '0');
        if (*p == '\0' && pid <= INT_MAX)
            result.append(int(pid));
    }
    ::closedir(dir);
    // The kernel lists /proc in pid order; a copied tree on disk does not.
    std::sort(result.begin(), result.end());
    return result;
}

QByteArray ProcReader::statPath(int pid) const
{
    return _procDir + '/' + QByteArray::number(pid) + "/stat";
}

std::optional<QList<ProcReader::ProcStat>> ProcReader::processStats() const
{
    const std::optional<QList<int>> pidList = pids();
    if (!pidList)
        return std::nullopt;

    QList<ProcStat> result;
    result.reserve(pidList->size());
    // One buffer and one path for the whole scan; a stat line is well under 1 KB.
    QByteArray path = _procDir + '/';
    const qsizetype prefix = path.size();
    char buffer[4096];
    for (int pid : *pidList) {
        path.truncate(prefix);
        path += QByteArray::number(pid);
        path += "/stat";
        const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
        if (fd < 0)
            continue; // gone since the directory was read
        ssize_t n;
        do {
            n = ::read(fd, buffer, sizeof buffer);
        } while (n < 0 && errno == EINTR);
        ::close(fd);
        if (n <= 0)
            continue;
        if (std::optional<ProcStat> stat = parseProcStat(buffer, n))
            result.append(std::move(*stat));
    }
    return result;
}
