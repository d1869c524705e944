#include "HostCounterReader.h"

#include <QByteArrayView>
#include <QFile>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

// A whole small pseudo file by plain system calls: a scrape reads a dozen of them.
std::optional<QByteArray> readFile(const QByteArray &path)
{
    const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return std::nullopt;
    QByteArray data(8192, Qt::Uninitialized);
    qsizetype used = 0;
    for (;;) {
        const ssize_t n = ::read(fd, data.data() + used, size_t(data.size() - used));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            ::close(fd);
            if (n < 0)
                return std::nullopt;
            break;
        }
        used += n;
        if (used == data.size()) {
            if (data.size() >= 4 * 1024 * 1024) { // a pseudo file that never ends
                ::close(fd);
                break;
            }
            data.resize(data.size() * 2);
        }
    }
    data.truncate(used);
    return data;
}

void skipBlanks(const char *&p, const char *end)
{
    while (p < end && (*p == ' ' || *p == '\t'))
        ++p;
}

bool parseUnsigned(const char *&p, const char *end, quint64 &value)
{
    skipBlanks(p, end);
    const char *start = p;
    quint64 v = 0;
    while (p < end && *p >= '0' && *p <= '9')
        v = v * 10 + quint64(*p++ - '0');
    value = v;
    return p != start && (p == end || *p == ' ' || *p == '\t' || *p == '\n');
}

// The next line, from p to its line break (or the end).
const char *lineEnd(const char *p, const char *end)
{
    const void *newline = std::memchr(p, '\n', size_t(end - p));
    return newline ? static_cast<const char *>(newline) : end;
}

// "Key:   12345 kB" of /proc/meminfo, as bytes.
std::optional<quint64> memInfoField(const char *text, const char *end, QByteArrayView key)
{
    for (const char *line = text; line < end;) {
        const char *next = lineEnd(line, end);
        if (next - line > key.size() && std::memcmp(line, key.data(), size_t(key.size())) == 0
            && line[key.size()] == ':') {
            const char *p = line + key.size() + 1;
            quint64 kB = 0;
            skipBlanks(p, next);
            const char *digits = p;
            while (p < next && *p >= '0' && *p <= '9')
                kB = kB * 10 + quint64(*p++ - '0');
            if (p == digits || kB > (~quint64(0)) / 1024)
                return std::nullopt;
            return kB * 1024;
        }
        line = next + 1;
    }
    return std::nullopt;
}

} // namespace

const std::array<const char *, HostCounterReader::modeCount> HostCounterReader::modeNames = {
    "user", "nice", "system", "idle", "iowait", "irq", "softirq", "steal"};

HostCounterReader::HostCounterReader(const QString &rootDir)
{
    QString dir = rootDir;
    while (dir.endsWith(QLatin1Char('/')))
        dir.chop(1);
    _procDir = QFile::encodeName(dir) + "/proc";
}

QList<HostCounterReader::CpuModes> HostCounterReader::parseCpuModes(const char *text, qsizetype length)
{
    QList<CpuModes> cpus;
    const char *end = text + length;
    for (const char *line = text; line < end;) {
        const char *next = lineEnd(line, end);
        // "cpuN" lines only: the total "cpu " line is their sum, and an offline CPU has none.
        if (next - line > 3 && std::memcmp(line, "cpu", 3) == 0 && line[3] >= '0' && line[3] <= '9') {
            const char *p = line + 3;
            quint64 cpu = 0;
            while (p < next && *p >= '0' && *p <= '9' && cpu < 1'000'000)
                cpu = cpu * 10 + quint64(*p++ - '0');
            CpuModes modes;
            modes.cpu = int(cpu);
            int count = 0;
            while (count < modeCount && parseUnsigned(p, next, modes.ticks[size_t(count)]))
                ++count;
            // Kernels before 2.6.11 stop after idle or iowait; later columns stay zero.
            if (count >= 4 && cpu < 1'000'000)
                cpus.append(modes);
        }
        line = next + 1;
    }
    return cpus;
}

HostCounterReader::MemoryExtras HostCounterReader::parseMemoryExtras(const char *text, qsizetype length)
{
    const char *end = text + length;
    MemoryExtras extras;
    extras.available = memInfoField(text, end, "MemAvailable");
    extras.swapTotal = memInfoField(text, end, "SwapTotal");
    extras.swapFree = memInfoField(text, end, "SwapFree");
    return extras;
}

std::optional<quint64> HostCounterReader::parsePressureSome(const char *text, qsizetype length)
{
    const char *end = text + length;
    if (length < 5 || std::memcmp(text, "some ", 5) != 0)
        return std::nullopt;
    const char *line = lineEnd(text, end);
    static constexpr QByteArrayView key = " total=";
    const QByteArrayView first(text, line - text);
    const qsizetype at = first.indexOf(key);
    if (at < 0)
        return std::nullopt;
    const char *p = text + at + key.size();
    quint64 total = 0;
    if (!parseUnsigned(p, line, total))
        return std::nullopt;
    return total;
}

std::optional<HostCounterReader::Load> HostCounterReader::parseLoad(const char *text, qsizetype length)
{
    const QByteArrayView line(text, lineEnd(text, text + length) - text);
    const QList<QByteArrayView> fields = [&] {
        QList<QByteArrayView> parts;
        qsizetype start = 0;
        while (parts.size() < 3 && start < line.size()) {
            qsizetype space = line.indexOf(' ', start);
            if (space < 0)
                space = line.size();
            if (space > start)
                parts.append(line.sliced(start, space - start));
            start = space + 1;
        }
        return parts;
    }();
    if (fields.size() < 3)
        return std::nullopt;
    Load load;
    double *targets[] = {&load.one, &load.five, &load.fifteen};
    for (int i = 0; i < 3; ++i) {
        bool ok = false;
        *targets[i] = fields[i].toDouble(&ok);
        if (!ok || !(*targets[i] >= 0.0) || !std::isfinite(*targets[i]))
            return std::nullopt;
    }
    return load;
}

QList<HostCounterReader::NetDevice> HostCounterReader::parseNetDevices(const char *text, qsizetype length)
{
    QList<NetDevice> devices;
    const char *end = text + length;
    for (const char *line = text; line < end;) {
        const char *next = lineEnd(line, end);
        // "  name: rx bytes packets errs drop fifo frame compressed multicast tx bytes packets errs drop ..."
        const void *colon = std::memchr(line, ':', size_t(next - line));
        const void *bar = std::memchr(line, '|', size_t(next - line));
        if (colon && !bar) {
            const char *nameStart = line;
            skipBlanks(nameStart, next);
            const auto *nameEnd = static_cast<const char *>(colon);
            const char *p = nameEnd + 1;
            quint64 field[16] = {};
            int count = 0;
            while (count < 16 && parseUnsigned(p, next, field[count]))
                ++count;
            if (count == 16 && nameEnd > nameStart) {
                NetDevice device;
                device.name = QByteArray(nameStart, nameEnd - nameStart);
                for (int i = 0; i < 4; ++i) {
                    device.counters[size_t(i)] = field[i];
                    device.counters[size_t(i + 4)] = field[i + 8];
                }
                devices.append(device);
            }
        }
        line = next + 1;
    }
    return devices;
}

std::optional<HostCounterReader::OwnProcess> HostCounterReader::parseOwnStat(const char *text, qsizetype length)
{
    // The name runs from the first "(" to the last ")"; field 3 follows it.
    const char *end = text + length;
    const char *close = nullptr;
    for (const char *q = end; q > text;) {
        if (*--q == ')') {
            close = q;
            break;
        }
    }
    if (!close || close + 3 > end)
        return std::nullopt;
    const char *p = close + 2;
    if (*p == ' ' || *p == '\n')
        return std::nullopt;
    ++p; // state letter
    OwnProcess own;
    quint64 utime = 0;
    for (int field = 4; field <= 24; ++field) {
        quint64 value = 0;
        skipBlanks(p, end);
        if (p < end && *p == '-') // priority and nice may be negative; only their place matters
            ++p;
        if (!parseUnsigned(p, end, value))
            return std::nullopt;
        if (field == 14)
            utime = value;
        else if (field == 15)
            own.cpuTicks = utime + value;
        else if (field == 22)
            own.startTicks = value;
        else if (field == 23)
            own.virtualBytes = value;
        else if (field == 24)
            own.residentPages = value;
    }
    return own;
}

QList<HostCounterReader::CpuModes> HostCounterReader::cpuModes() const
{
    const std::optional<QByteArray> data = readFile(_procDir + "/stat");
    return data ? parseCpuModes(data->constData(), data->size()) : QList<CpuModes>();
}

std::optional<HostCounterReader::MemoryExtras> HostCounterReader::memoryExtras() const
{
    const std::optional<QByteArray> data = readFile(_procDir + "/meminfo");
    if (!data)
        return std::nullopt;
    return parseMemoryExtras(data->constData(), data->size());
}

std::optional<quint64> HostCounterReader::pressureSome(const char *resource) const
{
    const std::optional<QByteArray> data = readFile(_procDir + "/pressure/" + resource);
    if (!data)
        return std::nullopt;
    return parsePressureSome(data->constData(), data->size());
}

std::optional<HostCounterReader::Load> HostCounterReader::load() const
{
    const std::optional<QByteArray> data = readFile(_procDir + "/loadavg");
    if (!data)
        return std::nullopt;
    return parseLoad(data->constData(), data->size());
}

QList<HostCounterReader::NetDevice> HostCounterReader::netDevices() const
{
    const std::optional<QByteArray> data = readFile(_procDir + "/net/dev");
    return data ? parseNetDevices(data->constData(), data->size()) : QList<NetDevice>();
}

std::optional<HostCounterReader::OwnProcess> HostCounterReader::ownProcess() const
{
    const std::optional<QByteArray> data = readFile(_procDir + "/self/stat");
    if (!data)
        return std::nullopt;
    std::optional<OwnProcess> own = parseOwnStat(data->constData(), data->size());
    if (!own)
        return std::nullopt;
    if (DIR *dir = ::opendir((_procDir + "/self/fd").constData())) {
        qsizetype count = 0;
        while (const dirent *entry = ::readdir(dir))
            count += entry->d_name[0] != '.';
        ::closedir(dir);
        own->openFds = count; // the directory's own descriptor included, as other exporters count
    }
    return own;
}
