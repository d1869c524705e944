#include "MetricsExposition.h"

#include "Formatting.h"
#include "InfoDictionary.h"
#include "StatCore.h"

#include <algorithm>

namespace {

enum class Type { Counter, Gauge, Info };

// Writes one family at a time: the metadata lines as the format wants them, then
// its samples.
class Writer {
public:
    explicit Writer(MetricsExposition::Format format)
        : _openMetrics(format == MetricsExposition::Format::OpenMetrics)
    {
        _out.reserve(4096);
    }

    // name is the sample name (with _total or _info); OpenMetrics names the family without it.
    void family(const char *name, Type type, const char *help)
    {
        QByteArray family(name);
        const char *typeName = type == Type::Counter ? "counter" : "gauge";
        if (_openMetrics && type == Type::Counter)
            family.chop(int(sizeof "_total") - 1);
        if (_openMetrics && type == Type::Info) {
            family.chop(int(sizeof "_info") - 1);
            typeName = "info";
        }
        _out += "# HELP " + family + ' ' + help + '\n';
        _out += "# TYPE " + family + ' ' + typeName + '\n';
    }

    // labels: "" or `name="value"` pairs already escaped, comma-separated.
    void sample(const char *name, const QByteArray &labels, const char *value)
    {
        _out += name;
        if (!labels.isEmpty())
            _out += '{' + labels + '}';
        _out += ' ';
        _out += value;
        _out += '\n';
    }

    void sample(const char *name, const QByteArray &labels, quint64 value)
    {
        sample(name, labels, QByteArray::number(value).constData());
    }

    void sample(const char *name, const QByteArray &labels, double value, const char *format)
    {
        sample(name, labels, Formatting::print(format, value).toLatin1().constData());
    }

    QByteArray finish()
    {
        if (_openMetrics)
            _out += "# EOF\n";
        return _out;
    }

private:
    bool _openMetrics;
    QByteArray _out;
};

// A label pair with the value escaped as both formats want: backslash, double quote, line feed.
QByteArray label(const char *name, const QString &value)
{
    QByteArray escaped;
    const QByteArray utf8 = value.toUtf8();
    escaped.reserve(utf8.size() + 2);
    for (const char c : utf8) {
        if (c == '\\' || c == '"')
            escaped += '\\';
        if (c == '\n')
            escaped += "\\n";
        else
            escaped += c;
    }
    return QByteArray(name) + "=\"" + escaped + '"';
}

QByteArray label(const char *name, const char *value)
{
    return label(name, QString::fromLatin1(value));
}

// Media type and quality of one element of an Accept header.
std::pair<QByteArrayView, double> mediaRange(QByteArrayView element)
{
    const qsizetype semicolon = element.indexOf(';');
    const QByteArrayView type = element.first(semicolon < 0 ? element.size() : semicolon).trimmed();
    double quality = 1.0;
    qsizetype at = semicolon;
    while (at >= 0) {
        const qsizetype next = element.indexOf(';', at + 1);
        const QByteArrayView parameter = element.sliced(at + 1, (next < 0 ? element.size() : next) - at - 1).trimmed();
        if (parameter.size() > 2 && (parameter.startsWith("q=") || parameter.startsWith("Q="))) {
            bool ok = false;
            const double q = parameter.sliced(2).toDouble(&ok);
            quality = ok && q >= 0.0 && q <= 1.0 ? q : 0.0;
        }
        at = next;
    }
    return {type, quality};
}

} // namespace

MetricsExposition::Sample MetricsExposition::sample(StatCore &core)
{
    Sample sample;
    sample.cpuTicks = core.cpuTicksSinceBoot();
    sample.clockTicksPerSecond = core.clockTicksPerSecond();
    sample.memory = core.memoryUsage();
    sample.disk = core.diskUsage();
    sample.processes = core.processCount();
    sample.networkAvailable = core.networkAvailable();
    sample.activeWWAN = core.activeWWAN();
    sample.activeWLAN = core.activeWLAN();
    return sample;
}

QList<std::pair<QByteArray, QString>> MetricsExposition::deviceInfo(const StatCore &core)
{
    // The System page's identification rows, each as a label.
    static constexpr std::pair<const char *, const char *> rows[] = {
        {"Device", "device"}, {"Model", "model"},           {"Name", "name"},     {"UDID", "udid"},
        {"OS", "os"},         {"OS Version", "os_version"}, {"Kernel", "kernel"},
    };
    const InfoDictionary info = core.systemInfo();
    QList<std::pair<QByteArray, QString>> labels;
    for (const auto &[key, labelName] : rows) {
        QString value;
        for (const QString &section : info.sectionNames()) {
            for (const InfoRow &row : info.section(section)) {
                if (row.key == QLatin1String(key))
                    value = row.value;
            }
        }
        labels.append({QByteArray(labelName), value});
    }
    return labels;
}

QByteArray MetricsExposition::render(const Sample &sample, Format format)
{
    Writer out(format);

    if (const auto &ticks = sample.cpuTicks) {
        out.family("kovar_cpu_seconds_total", Type::Counter,
                   "CPU time spent in each mode since boot, summed over all CPUs; niced work counts as user.");
        const double perSecond = double(sample.clockTicksPerSecond > 0 ? sample.clockTicksPerSecond : 100);
        const std::pair<const char *, quint64> modes[] = {
            {"user", ticks->user}, {"system", ticks->system}, {"idle", ticks->idle}};
        for (const auto &[mode, count] : modes)
            out.sample("kovar_cpu_seconds_total", label("mode", mode), double(count) / perSecond, "%.3f");
    }

    const MemoryUsageData &memory = sample.memory;
    if (memory.totalPages > 0) {
        out.family("kovar_memory_bytes", Type::Gauge,
                   "Memory by class: wired (kernel and unpageable), active, inactive and free.");
        const std::pair<const char *, quint64> classes[] = {
            {"wired", memory.wired}, {"active", memory.active}, {"inactive", memory.inactive}, {"free", memory.free}};
        for (const auto &[name, bytes] : classes)
            out.sample("kovar_memory_bytes", label("class", name), bytes);
    }
    if (memory.physical > 0) {
        out.family("kovar_memory_physical_bytes", Type::Gauge, "Physical memory installed.");
        out.sample("kovar_memory_physical_bytes", {}, memory.physical);
    }

    if (sample.disk.totalSize > 0.0) {
        out.family("kovar_disk_size_bytes", Type::Gauge, "Size of the file system that holds the home directory.");
        out.sample("kovar_disk_size_bytes", {}, sample.disk.totalSize, "%.0f");
        out.family("kovar_disk_available_bytes", Type::Gauge,
                   "Space an ordinary user can still write on the file system that holds the home directory.");
        out.sample("kovar_disk_available_bytes", {}, sample.disk.freeSize, "%.0f");
    }

    if (sample.batteryLevel >= 0.0f) {
        out.family("kovar_battery_level_ratio", Type::Gauge, "Battery charge, from 0 (empty) to 1 (full).");
        out.sample("kovar_battery_level_ratio", {}, double(sample.batteryLevel), "%.4g");
    }
    out.family("kovar_battery_state", Type::Gauge, "Battery state: 1 for the current one, 0 for the others.");
    const std::pair<const char *, BatteryState> states[] = {{"unknown", BatteryState::Unknown},
                                                            {"unplugged", BatteryState::Unplugged},
                                                            {"charging", BatteryState::Charging},
                                                            {"full", BatteryState::Full}};
    for (const auto &[name, state] : states)
        out.sample("kovar_battery_state", label("state", name), sample.batteryState == state ? "1" : "0");

    if (sample.processes) {
        out.family("kovar_processes", Type::Gauge, "Processes running, kernel threads included.");
        out.sample("kovar_processes", {}, quint64(*sample.processes));
    }

    out.family("kovar_network_reachable", Type::Gauge, "1 when the network can be reached without dialling first.");
    out.sample("kovar_network_reachable", {}, sample.networkAvailable ? "1" : "0");
    out.family("kovar_network_interface_active", Type::Gauge,
               "1 when the Wi-Fi (wlan) or cellular (wwan) interface carries the traffic.");
    out.sample("kovar_network_interface_active", label("type", "wlan"), sample.activeWLAN ? "1" : "0");
    out.sample("kovar_network_interface_active", label("type", "wwan"), sample.activeWWAN ? "1" : "0");

    out.family("kovar_device_info", Type::Info,
               "The device, its operating system and kernel; udid is this application's own id of the machine.");
    QByteArray labels;
    for (const auto &[name, value] : sample.deviceInfo)
        labels += (labels.isEmpty() ? "" : ",") + label(name.constData(), value);
    out.sample("kovar_device_info", labels, "1");

    return out.finish();
}

MetricsExposition::Format MetricsExposition::negotiate(QByteArrayView accept)
{
    double openMetrics = 0.0;
    double text = 0.0;
    qsizetype start = 0;
    while (start <= accept.size()) {
        const qsizetype comma = accept.indexOf(',', start);
        const qsizetype end = comma < 0 ? accept.size() : comma;
        const auto [type, quality] = mediaRange(accept.sliced(start, end - start));
        if (type.compare("application/openmetrics-text", Qt::CaseInsensitive) == 0)
            openMetrics = std::max(openMetrics, quality);
        else if (type.compare("text/plain", Qt::CaseInsensitive) == 0 || type == "text/*" || type == "*/*")
            text = std::max(text, quality);
        start = end + 1;
    }
    return openMetrics > 0.0 && openMetrics >= text ? Format::OpenMetrics : Format::Text;
}

QByteArray MetricsExposition::contentType(Format format)
{
    return format == Format::OpenMetrics
        ? QByteArrayLiteral("application/openmetrics-text; version=1.0.0; charset=utf-8")
        : QByteArrayLiteral("text/plain; version=0.0.4; charset=utf-8");
}
