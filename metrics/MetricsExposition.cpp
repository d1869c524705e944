#include "MetricsExposition.h"

#include "Formatting.h"
#include "InfoDictionary.h"
#include "StatCore.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <tuple>

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
    void sample(const char *name, QByteArrayView labels, QByteArrayView value)
    {
        _out += name;
        if (!labels.isEmpty()) {
            _out += '{';
            _out += labels;
            _out += '}';
        }
        _out += ' ';
        _out += value;
        _out += '\n';
    }

    void sample(const char *name, QByteArrayView labels, const char *value)
    {
        sample(name, labels, QByteArrayView(value));
    }

    void sample(const char *name, QByteArrayView labels, quint64 value)
    {
        char digits[24];
        const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
        sample(name, labels, QByteArrayView(digits, end - digits));
    }

    // ticks / perSecond with three decimals, as "%.3f" writes it, without floating point: a
    // scrape writes hundreds of these.
    void seconds(const char *name, QByteArrayView labels, quint64 ticks, quint64 perSecond)
    {
        quint64 whole = ticks / perSecond;
        quint64 thousandths = ((ticks % perSecond) * 1000 + perSecond / 2) / perSecond;
        if (thousandths == 1000) {
            ++whole;
            thousandths = 0;
        }
        char digits[32];
        char *end = std::to_chars(digits, digits + 24, whole).ptr;
        *end++ = '.';
        *end++ = char('0' + thousandths / 100);
        *end++ = char('0' + thousandths / 10 % 10);
        *end++ = char('0' + thousandths % 10);
        sample(name, labels, QByteArrayView(digits, end - digits));
    }

    void sample(const char *name, QByteArrayView labels, double value, const char *format)
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
QByteArray label(const char *name, QByteArrayView utf8)
{
    QByteArray pair(name);
    pair.reserve(pair.size() + utf8.size() + 4);
    pair += "=\"";
    for (const char c : utf8) {
        if (c == '\\' || c == '"')
            pair += '\\';
        if (c == '\n')
            pair += "\\n";
        else
            pair += c;
    }
    pair += '"';
    return pair;
}

QByteArray label(const char *name, const QString &value)
{
    return label(name, QByteArrayView(value.toUtf8()));
}

QByteArray label(const char *name, const char *value)
{
    return label(name, QByteArrayView(value));
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

MetricsExposition::Sample MetricsExposition::sample(StatCore &core, FileSystemReader *fileSystems)
{
    Sample sample;
    const HostCounterReader counters(core.rootDir());
    const SensorReader sensors(core.rootDir());
    sample.cpus = counters.cpuModes();
    sample.clockTicksPerSecond = core.clockTicksPerSecond();
    sample.pageSize = core.pageSize();
    sample.memory = core.memoryUsage();
    sample.memoryExtras = counters.memoryExtras();
    const char *resources[] = {"cpu", "memory", "io"};
    for (size_t i = 0; i < sample.pressure.size(); ++i)
        sample.pressure[i] = counters.pressureSome(resources[i]);
    sample.load = counters.load();
    sample.bootTime = core.bootTime();
    sample.netDevices = counters.netDevices();
    if (fileSystems)
        sample.fileSystems = fileSystems->fileSystems();
    sample.temperatures = sensors.temperatures();
    sample.batteries = sensors.batteries();
    sample.chargers = sensors.chargers();
    sample.wireless = sensors.wireless();
    sample.ownProcess = counters.ownProcess();
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

    const quint64 ticksPerSecond = quint64(sample.clockTicksPerSecond > 0 ? sample.clockTicksPerSecond : 100);
    const double perSecond = double(ticksPerSecond);
    if (!sample.cpus.isEmpty()) {
        out.family("kovar_cpu_seconds_total", Type::Counter, "Seconds each CPU spent in each mode since boot.");
        QByteArray labels;
        for (const HostCounterReader::CpuModes &cpu : sample.cpus) {
            for (size_t mode = 0; mode < cpu.ticks.size(); ++mode) {
                labels.resize(0);
                labels += "cpu=\"";
                labels += QByteArray::number(cpu.cpu);
                labels += "\",mode=\"";
                labels += HostCounterReader::modeNames[mode];
                labels += '"';
                out.seconds("kovar_cpu_seconds_total", labels, cpu.ticks[mode], ticksPerSecond);
            }
        }
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

    if (const auto &extras = sample.memoryExtras) {
        const std::tuple<const char *, const char *, std::optional<quint64>> figures[] = {
            {"kovar_memory_available_bytes", "Memory that can be given to new work without swapping (MemAvailable).",
             extras->available},
            {"kovar_swap_size_bytes", "Swap space in all.", extras->swapTotal},
            {"kovar_swap_free_bytes", "Swap space not in use.", extras->swapFree}};
        for (const auto &[name, help, bytes] : figures) {
            if (bytes) {
                out.family(name, Type::Gauge, help);
                out.sample(name, {}, *bytes);
            }
        }
    }
    const std::pair<const char *, const char *> pressures[] = {
        {"kovar_pressure_cpu_waiting_seconds_total", "Seconds some task waited for a CPU (pressure stall total)."},
        {"kovar_pressure_memory_waiting_seconds_total", "Seconds some task waited for memory (pressure stall total)."},
        {"kovar_pressure_io_waiting_seconds_total", "Seconds some task waited for I/O (pressure stall total)."}};
    for (size_t i = 0; i < sample.pressure.size(); ++i) {
        if (const auto &microseconds = sample.pressure[i]) {
            out.family(pressures[i].first, Type::Counter, pressures[i].second);
            out.sample(pressures[i].first, {}, double(*microseconds) / 1e6, "%.6f");
        }
    }

    if (const auto &load = sample.load) {
        const std::tuple<const char *, const char *, double> loads[] = {
            {"kovar_load1", "Load average over 1 minute.", load->one},
            {"kovar_load5", "Load average over 5 minutes.", load->five},
            {"kovar_load15", "Load average over 15 minutes.", load->fifteen}};
        for (const auto &[name, help, value] : loads) {
            out.family(name, Type::Gauge, help);
            out.sample(name, {}, value, "%.2f");
        }
    }
    if (sample.bootTime) {
        out.family("kovar_boot_time_seconds", Type::Gauge, "When the machine booted, in seconds since 1970.");
        out.sample("kovar_boot_time_seconds", {}, quint64(*sample.bootTime));
    }

    if (!sample.netDevices.isEmpty()) {
        static constexpr std::pair<const char *, const char *> counters[] = {
            {"kovar_network_receive_bytes_total", "Bytes received by the network device."},
            {"kovar_network_receive_packets_total", "Packets received by the network device."},
            {"kovar_network_receive_errs_total", "Receive errors of the network device."},
            {"kovar_network_receive_drop_total", "Received packets the network device dropped."},
            {"kovar_network_transmit_bytes_total", "Bytes sent by the network device."},
            {"kovar_network_transmit_packets_total", "Packets sent by the network device."},
            {"kovar_network_transmit_errs_total", "Transmit errors of the network device."},
            {"kovar_network_transmit_drop_total", "Packets to send that the network device dropped."}};
        QList<QByteArray> labels;
        for (const HostCounterReader::NetDevice &device : sample.netDevices)
            labels.append(label("device", QByteArrayView(device.name)));
        for (size_t i = 0; i < std::size(counters); ++i) {
            out.family(counters[i].first, Type::Counter, counters[i].second);
            for (qsizetype d = 0; d < sample.netDevices.size(); ++d)
                out.sample(counters[i].first, labels[d], sample.netDevices[d].counters[i]);
        }
    }
    if (!sample.wireless.isEmpty()) {
        out.family("kovar_wifi_signal_dbm", Type::Gauge, "Signal level of the Wi-Fi link, in dBm.");
        for (const SensorReader::Wireless &link : sample.wireless)
            out.sample("kovar_wifi_signal_dbm", label("device", QByteArrayView(link.device)), link.signalDbm, "%.0f");
        out.family("kovar_wifi_link_quality", Type::Gauge, "Link quality of the Wi-Fi link, on the driver's scale.");
        for (const SensorReader::Wireless &link : sample.wireless)
            out.sample("kovar_wifi_link_quality", label("device", QByteArrayView(link.device)), link.linkQuality,
                       "%.0f");
    }

    if (const auto &modem = sample.modem) {
        out.family("kovar_modem_signal_quality_ratio", Type::Gauge,
                   "Signal quality of the cellular modem, from 0 to 1, by its access technology.");
        out.sample("kovar_modem_signal_quality_ratio", label("access_technology", modem->accessTechnology),
                   modem->quality, "%.2f");
    }

    if (!sample.fileSystems.isEmpty()) {
        using Usage = FileSystemReader::Usage;
        static constexpr std::tuple<const char *, const char *, quint64 Usage::*> figures[] = {
            {"kovar_filesystem_size_bytes", "Size of the file system.", &Usage::size},
            {"kovar_filesystem_avail_bytes", "Space an unprivileged user may still write.", &Usage::avail},
            {"kovar_filesystem_free_bytes", "Free space, the part kept for root included.", &Usage::free},
            {"kovar_filesystem_files", "Inodes of the file system.", &Usage::files},
            {"kovar_filesystem_files_free", "Free inodes of the file system.", &Usage::filesFree}};
        QList<QByteArray> labels;
        for (const FileSystemReader::FileSystem &fs : sample.fileSystems)
            labels.append(label("device", QByteArrayView(fs.mount.device)) + ','
                          + label("fstype", QByteArrayView(fs.mount.fsType)) + ','
                          + label("mountpoint", QByteArrayView(fs.mount.mountPoint)));
        for (const auto &[name, help, field] : figures) {
            out.family(name, Type::Gauge, help);
            for (qsizetype i = 0; i < sample.fileSystems.size(); ++i)
                out.sample(name, labels[i], sample.fileSystems[i].usage.*field);
        }
    }

    if (!sample.temperatures.isEmpty()) {
        out.family("kovar_temperature_celsius", Type::Gauge,
                   "Temperature of a hwmon sensor or thermal zone, in degrees Celsius.");
        for (const SensorReader::Temperature &t : sample.temperatures)
            out.sample("kovar_temperature_celsius",
                       label("chip", t.chip) + ',' + label("sensor", t.sensor) + ',' + label("label", t.label),
                       t.celsius, "%.3f");
    }
    bool anyHealth = false;
    bool anyCycles = false;
    for (const SensorReader::Battery &battery : sample.batteries) {
        anyHealth = anyHealth || battery.health;
        anyCycles = anyCycles || battery.cycles;
    }
    if (anyHealth) {
        out.family("kovar_battery_health_ratio", Type::Gauge,
                   "Charge the battery holds when full, as a share of what it held new.");
        for (const SensorReader::Battery &battery : sample.batteries) {
            if (battery.health)
                out.sample("kovar_battery_health_ratio", label("power_supply", battery.name), *battery.health, "%.4f");
        }
    }
    if (anyCycles) {
        out.family("kovar_power_supply_cycle_count", Type::Gauge, "Charge cycles the battery has been through.");
        for (const SensorReader::Battery &battery : sample.batteries) {
            if (battery.cycles)
                out.sample("kovar_power_supply_cycle_count", label("power_supply", battery.name), *battery.cycles);
        }
    }
    if (!sample.chargers.isEmpty()) {
        out.family("kovar_power_supply_online", Type::Gauge, "1 when the charger (mains, USB) is plugged in.");
        for (const SensorReader::Charger &charger : sample.chargers)
            out.sample("kovar_power_supply_online", label("power_supply", charger.name), charger.online ? "1" : "0");
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

    out.family("kovar_build_info", Type::Gauge, "Always 1; the version of kovar and of the Qt it runs on.");
    out.sample("kovar_build_info",
               label("version", KOVAR_VERSION) + ',' + label("qt_version", QString::fromLatin1(qVersion())), "1");

    if (const auto &own = sample.ownProcess) {
        out.family("process_cpu_seconds_total", Type::Counter, "Total user and system CPU time spent in seconds.");
        out.sample("process_cpu_seconds_total", {}, double(own->cpuTicks) / perSecond, "%.2f");
        if (sample.pageSize > 0) {
            out.family("process_resident_memory_bytes", Type::Gauge, "Resident memory size in bytes.");
            out.sample("process_resident_memory_bytes", {}, own->residentPages * quint64(sample.pageSize));
        }
        out.family("process_virtual_memory_bytes", Type::Gauge, "Virtual memory size in bytes.");
        out.sample("process_virtual_memory_bytes", {}, own->virtualBytes);
        if (sample.bootTime) {
            out.family("process_start_time_seconds", Type::Gauge,
                       "Start time of the process since unix epoch in seconds.");
            out.sample("process_start_time_seconds", {}, double(*sample.bootTime) + double(own->startTicks) / perSecond,
                       "%.2f");
        }
        if (own->openFds) {
            out.family("process_open_fds", Type::Gauge, "Number of open file descriptors.");
            out.sample("process_open_fds", {}, quint64(*own->openFds));
        }
    }

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
