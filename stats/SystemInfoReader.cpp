#include "SystemInfoReader.h"

#include "DeviceIdentity.h"
#include "Formatting.h"
#include "SysfsText.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

#include <sys/utsname.h>
#include <unistd.h>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

namespace {

std::uint32_t saturate32(std::uint64_t value)
{
    return value > UINT32_MAX ? UINT32_MAX : std::uint32_t(value);
}

std::uint64_t hostTimeBaseFrequency()
{
#if defined(__aarch64__)
    std::uint64_t frequency = 0;
    asm volatile("mrs %0, cntfrq_el0" : "=r"(frequency));
    return frequency;
#elif defined(__x86_64__) || defined(__i386__)
    unsigned a = 0, b = 0, c = 0, d = 0;
    const unsigned maxLeaf = __get_cpuid_max(0, nullptr);
    // Leaf 0x15: TSC = crystal clock * ebx / eax, when the processor tells both.
    if (maxLeaf >= 0x15) {
        __cpuid(0x15, a, b, c, d);
        if (a != 0 && b != 0 && c != 0)
            return std::uint64_t(c) * b / a;
    }
    // Leaf 0x16: the base frequency in MHz, which the TSC runs at where 0x15 names
    // no crystal.
    if (maxLeaf >= 0x16) {
        __cpuid(0x16, a, b, c, d);
        if ((a & 0xFFFF) != 0)
            return std::uint64_t(a & 0xFFFF) * 1000000;
    }
    // Under a hypervisor the TSC rate in kHz is commonly published in leaf 0x40000010.
    if (maxLeaf >= 1) {
        __cpuid(1, a, b, c, d);
        const bool hypervisor = (c & (1u << 31)) != 0;
        if (hypervisor) {
            __cpuid(0x40000000, a, b, c, d);
            if (a >= 0x40000010 && a < 0x40000100) {
                __cpuid(0x40000010, a, b, c, d);
                if (a != 0)
                    return std::uint64_t(a) * 1000;
            }
        }
    }
    return 0;
#else
    return 0;
#endif
}

struct CacheFigures {
    std::uint64_t lineSize = 0;
    std::uint64_t l1i = 0;
    std::uint64_t l1d = 0;
    std::uint64_t l2 = 0;
    std::uint64_t l3 = 0;
};

bool isAsciiDigits(QStringView text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

// "32K", "8192K", "1M", or plain bytes. Plain code rather than a regular expression:
// the pattern engine would be loaded and compiled for these few files alone.
std::uint64_t parseCacheSize(const QString &text)
{
    const QString trimmed = text.trimmed();
    qsizetype digits = 0;
    while (digits < trimmed.size() && trimmed.at(digits) >= u'0' && trimmed.at(digits) <= u'9')
        ++digits;
    bool ok = false;
    const std::uint64_t value = trimmed.left(digits).toULongLong(&ok);
    if (!ok)
        return 0;
    const QString unit = trimmed.mid(digits).trimmed().toUpper();
    if (unit.isEmpty())
        return value;
    if (unit == u"K")
        return value * 1024;
    if (unit == u"M")
        return value * 1024 * 1024;
    if (unit == u"G")
        return value * 1024 * 1024 * 1024;
    return 0;
}

CacheFigures readCacheDirectories(const QString &root)
{
    CacheFigures figures;
    const QString base = QStringLiteral("sys/devices/system/cpu/cpu0/cache");
    // Filtered here: a name filter would compile a wildcard pattern for each call.
    const QStringList entries =
        QDir(QDir(root).filePath(base)).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    std::uint64_t firstLine = 0;
    std::uint64_t dataLine = 0;
    for (const QString &index : entries) {
        if (!index.startsWith(QLatin1String("index")))
            continue;
        const QString dir = base + u'/' + index + u'/';
        const QString level = SysfsText::firstLine(root, dir + QStringLiteral("level"));
        const QString type = SysfsText::firstLine(root, dir + QStringLiteral("type"));
        const std::uint64_t size = parseCacheSize(SysfsText::firstLine(root, dir + QStringLiteral("size")));
        const std::uint64_t line =
            SysfsText::firstLine(root, dir + QStringLiteral("coherency_line_size")).toULongLong();
        if (firstLine == 0)
            firstLine = line;
        if (level == u"1" && type == u"Instruction") {
            figures.l1i = size;
        } else if (level == u"1" && (type == u"Data" || type == u"Unified")) {
            figures.l1d = size;
            dataLine = line;
        } else if (level == u"2") {
            figures.l2 = size;
        } else if (level == u"3") {
            figures.l3 = size;
        }
    }
    figures.lineSize = dataLine != 0 ? dataLine : firstLine;
    return figures;
}

// What firmware writes into DMI when the maker filled nothing in.
bool isFirmwarePlaceholder(const QString &value)
{
    static const char *const placeholders[] = {
        "To Be Filled By O.E.M.",
        "To Be Filled By OEM",
        "System Product Name",
        "System manufacturer",
        "System Name",
        "Product Name",
        "Default string",
        "Not Applicable",
        "Not Specified",
        "Not Available",
        "None",
        "N/A",
        "OEM",
        "O.E.M.",
        "Unknown",
        "Undefined",
        "Invalid",
        "Type1ProductConfigId",
        "0123456789",
        "Default_string",
        "XXXXXXXXXX",
    };
    const QString text = value.trimmed();
    if (text.isEmpty())
        return true;
    for (const char *placeholder : placeholders) {
        if (text.compare(QLatin1String(placeholder), Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

// The text up to the first NUL: device-tree strings end in one, and string lists
// ("compatible") separate their entries with them.
QString firstDeviceTreeString(QByteArray raw)
{
    const qsizetype nul = raw.indexOf('\0');
    if (nul >= 0)
        raw.truncate(nul);
    return QString::fromUtf8(raw).trimmed();
}

// A computed frequency shown to the whole MHz and no further: "2.596 GHz",
// "1.8 GHz", "816 MHz", as the handheld's own table writes "1 GHz" and "412 MHz".
QString frequencyText(double hz)
{
    const long long mhz = std::llround(hz / 1000000.0);
    if (mhz <= 0)
        return QStringLiteral("");
    int decimals = 0;
    if (mhz >= 1000)
        decimals = mhz % 10 != 0 ? 3 : mhz % 100 != 0 ? 2 : mhz % 1000 != 0 ? 1 : 0;
    return Formatting::hzToKiloMegaGigaWithHz(double(mhz) * 1000000.0, decimals, true);
}

bool machineMatches(const QString &machine, const char *exact)
{
    return machine == QLatin1String(exact);
}

bool machineStarts(const QString &machine, const char *prefix)
{
    return machine.startsWith(QLatin1String(prefix));
}

} // namespace

SystemInfoReader::SystemCalls SystemInfoReader::hostSystemCalls()
{
    SystemCalls calls;
    calls.uname = [] {
        struct utsname names {};
        if (::uname(&names) != 0)
            return UnameValues{QStringLiteral(""), QStringLiteral(""), QStringLiteral("")};
        return UnameValues{QString::fromUtf8(names.sysname), QString::fromUtf8(names.release),
                           QString::fromUtf8(names.machine)};
    };
    calls.sysconf = [](int name) { return ::sysconf(name); };
    calls.timeBaseFrequency = &hostTimeBaseFrequency;
    return calls;
}

SystemInfoReader::SystemInfoReader(QString root, SystemCalls calls)
    : _root(std::move(root))
    , _calls(std::move(calls))
{
}

QString SystemInfoReader::getSysInfoByName(const QString &name) const
{
    if (name == u"hw.machine" || name == u"kern.ostype" || name == u"kern.osrelease") {
        const UnameValues names = _calls.uname ? _calls.uname() : UnameValues{};
        const QString &value = name == u"hw.machine" ? names.machine
            : name == u"kern.ostype"                 ? names.sysname
                                                     : names.release;
        return value.isNull() ? QStringLiteral("") : value;
    }
    if (name == u"hw.model")
        return hardwareIdentifier();
    return QStringLiteral("");
}

QString SystemInfoReader::dmiValue(const char *file) const
{
    const QString value = SysfsText::firstLine(_root, QStringLiteral("sys/class/dmi/id/") + QLatin1String(file));
    return isFirmwarePlaceholder(value) ? QStringLiteral("") : value;
}

QString SystemInfoReader::deviceTreeString(const char *file) const
{
    return firstDeviceTreeString(
        SysfsText::read(_root, QStringLiteral("sys/firmware/devicetree/base/") + QLatin1String(file)));
}

QString SystemInfoReader::hardwareName() const
{
    // Phones and boards carry their marketing name in the device tree.
    const QString model = deviceTreeString("model");
    if (!model.isEmpty())
        return model;
    // PCs: maker and product, without repeating a maker that the product already
    // names ("VMware, Inc." + "VMware Virtual Platform").
    const QString vendor = dmiValue("sys_vendor");
    const QString product = dmiValue("product_name");
    const QString vendorWord = vendor.section(QLatin1Char(' '), 0, 0).remove(QLatin1Char(','));
    if (product.isEmpty() && vendor.isEmpty()) {
        // An architecture is not a device, but it is all that is known.
        const QString machine = getSysInfoByName(QStringLiteral("hw.machine"));
        return machine.isEmpty() ? QStringLiteral("Linux") : QStringLiteral("Linux ") + machine;
    }
    if (product.isEmpty())
        return vendor;
    if (vendor.isEmpty() || product.startsWith(vendorWord, Qt::CaseInsensitive))
        return product;
    return vendor + QLatin1Char(' ') + product;
}

QString SystemInfoReader::hardwareIdentifier() const
{
    // The first "compatible" entry is the board's own ("pine64,pinephone-1.2"); the
    // rest name the families it belongs to.
    const QString compatible = deviceTreeString("compatible");
    if (!compatible.isEmpty())
        return compatible;
    return dmiValue("product_name");
}

QString SystemInfoReader::cpuInfoValue(const char *key) const
{
    // "key<TAB>: value" lines; the first processor's block comes first.
    const QList<QByteArray> lines = SysfsText::read(_root, QStringLiteral("proc/cpuinfo")).split('\n');
    for (const QByteArray &line : lines) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0 && line.left(colon).trimmed().compare(key, Qt::CaseInsensitive) == 0)
            return QString::fromUtf8(line.mid(colon + 1)).trimmed();
    }
    return QStringLiteral("");
}

std::uint64_t SystemInfoReader::timeBaseHz() const
{
    if (const std::uint64_t fromProcessor = _calls.timeBaseFrequency ? _calls.timeBaseFrequency() : 0)
        return fromProcessor;
    // The kernel calibrates its delay loop on the same counter (x86: the TSC, arm64:
    // the arch timer) and prints twice its rate in MHz as "bogomips".
    bool ok = false;
    const double bogomips = cpuInfoValue("bogomips").toDouble(&ok);
    if (!ok || !(bogomips > 0.0) || bogomips > 1.0e7)
        return 0;
    return std::uint64_t(std::llround(bogomips / 2.0 * 1000000.0));
}

std::uint32_t SystemInfoReader::processorCount() const
{
    const QStringList entries = QDir(QDir(_root).filePath(QStringLiteral("sys/devices/system/cpu")))
                                    .entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    std::uint32_t count = 0;
    for (const QString &entry : entries) {
        if (entry.startsWith(QLatin1String("cpu")) && isAsciiDigits(QStringView(entry).mid(3)))
            ++count;
    }
    if (count > 0)
        return count;
    const long configured = _calls.sysconf ? _calls.sysconf(_SC_NPROCESSORS_CONF) : 0;
    return configured > 0 ? saturate32(std::uint64_t(configured)) : 0;
}

std::uint32_t SystemInfoReader::cacheFigure(std::uint32_t selector) const
{
    // Where the kernel lists the caches, a level it does not list is not there (many
    // phones have no L3). Virtual machines often expose no cache directory at all;
    // the C library then still knows the figures from the processor itself.
    const CacheFigures figures = readCacheDirectories(_root);
    const bool kernelListsCaches =
        QFileInfo(QDir(_root).filePath(QStringLiteral("sys/devices/system/cpu/cpu0/cache"))).isDir();
    std::uint64_t fromSysfs = 0;
    int sysconfName = 0;
    switch (selector) {
    case HW_CACHELINE:
        fromSysfs = figures.lineSize;
        sysconfName = _SC_LEVEL1_DCACHE_LINESIZE;
        break;
    case HW_L1ICACHESIZE:
        fromSysfs = figures.l1i;
        sysconfName = _SC_LEVEL1_ICACHE_SIZE;
        break;
    case HW_L1DCACHESIZE:
        fromSysfs = figures.l1d;
        sysconfName = _SC_LEVEL1_DCACHE_SIZE;
        break;
    case HW_L2CACHESIZE:
        fromSysfs = figures.l2;
        sysconfName = _SC_LEVEL2_CACHE_SIZE;
        break;
    case HW_L3CACHESIZE:
        fromSysfs = figures.l3;
        sysconfName = _SC_LEVEL3_CACHE_SIZE;
        break;
    default:
        return 0;
    }
    if (kernelListsCaches)
        return saturate32(fromSysfs);
    const long fromLibc = _calls.sysconf ? _calls.sysconf(sysconfName) : 0;
    return fromLibc > 0 ? saturate32(std::uint64_t(fromLibc)) : 0;
}

std::uint32_t SystemInfoReader::getSysInfo(std::uint32_t selector) const
{
    switch (selector) {
    case HW_NCPU:
        return processorCount();
    case HW_TB_FREQ:
        return saturate32(timeBaseHz());
    case HW_CACHELINE:
    case HW_L1ICACHESIZE:
    case HW_L1DCACHESIZE:
    case HW_L2CACHESIZE:
    case HW_L3CACHESIZE:
        return cacheFigure(selector);
    default:
        return 0;
    }
}

QString SystemInfoReader::platformString() const
{
    const QString machine = getSysInfoByName(QStringLiteral("hw.machine"));
    if (machineMatches(machine, "iFPGA"))
        return QStringLiteral("iFPGA");
    if (machineMatches(machine, "iPhone1,1"))
        return QStringLiteral("iPhone 1G");
    if (machineMatches(machine, "iPhone1,2"))
        return QStringLiteral("iPhone 3G");
    if (machineStarts(machine, "iPhone2"))
        return QStringLiteral("iPhone 3GS");
    if (machineStarts(machine, "iPhone3"))
        return QStringLiteral("iPhone 4");
    if (machineStarts(machine, "iPhone4"))
        return QStringLiteral("iPhone 4S");
    if (machineStarts(machine, "iPhone5"))
        return QStringLiteral("iPhone 5");
    if (machineStarts(machine, "iPod1"))
        return QStringLiteral("iPod touch 1G");
    if (machineStarts(machine, "iPod2"))
        return QStringLiteral("iPod touch 2G");
    if (machineStarts(machine, "iPod3"))
        return QStringLiteral("iPod touch 3G");
    if (machineStarts(machine, "iPod4"))
        return QStringLiteral("iPod touch 4G");
    if (machineStarts(machine, "iPod5"))
        return QStringLiteral("iPod touch 5G");
    if (machineStarts(machine, "iPad1"))
        return QStringLiteral("iPad 1");
    if (machineStarts(machine, "iPad2"))
        return QStringLiteral("iPad 2");
    if (machineStarts(machine, "iPad3"))
        return QStringLiteral("The new iPad");
    if (machineStarts(machine, "AppleTV2"))
        return QStringLiteral("Apple TV 2G");
    if (machineStarts(machine, "iPhone"))
        return QStringLiteral("Unknown iPhone");
    if (machineStarts(machine, "iPod"))
        return QStringLiteral("Unknown iPod");
    if (machineStarts(machine, "iPad"))
        return QStringLiteral("Unknown iPad");
    return hardwareName();
}

QString SystemInfoReader::getCPUFrequency() const
{
    const QString machine = getSysInfoByName(QStringLiteral("hw.machine"));
    if (machineMatches(machine, "iPhone1,1") || machineMatches(machine, "iPhone1,2"))
        return QStringLiteral("412 MHz");
    if (machineStarts(machine, "iPhone2"))
        return QStringLiteral("600 MHz");
    if (machineStarts(machine, "iPhone3") || machineStarts(machine, "iPhone4"))
        return QStringLiteral("800 MHz");
    if (machineStarts(machine, "iPhone5"))
        return QStringLiteral("1 GHz");
    if (machineStarts(machine, "iPod1"))
        return QStringLiteral("412 MHz");
    if (machineStarts(machine, "iPod2"))
        return QStringLiteral("533 MHz");
    if (machineStarts(machine, "iPod3"))
        return QStringLiteral("600 MHz");
    if (machineStarts(machine, "iPod4"))
        return QStringLiteral("800 Mhz"); // the lower-case h is the stored text
    if (machineStarts(machine, "iPod5") || machineStarts(machine, "iPad1") || machineStarts(machine, "iPad2")
        || machineStarts(machine, "iPad3")) {
        return QStringLiteral("1 GHz");
    }
    // The highest clock cpufreq allows (kHz), else the clock the kernel measured.
    bool ok = false;
    const quint64 maxKHz = SysfsText::firstLine(_root,
                                                QStringLiteral("sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq"))
                               .toULongLong(&ok);
    if (ok && maxKHz > 0)
        return frequencyText(double(maxKHz) * 1000.0);
    const double mhz = cpuInfoValue("cpu MHz").toDouble(&ok);
    if (ok && mhz > 0.0)
        return frequencyText(mhz * 1000000.0);
    return QStringLiteral("");
}

InfoDictionary SystemInfoReader::systemInfo() const
{
    const DeviceIdentity identity(_root);
    auto bytes = [this](std::uint32_t selector) {
        return Formatting::byteToKiloMegaGigaWithByte(double(getSysInfo(selector)), 0, true);
    };

    InfoDictionary info;
    info.addSection(QStringLiteral("DeviceInfo"),
                    {{QStringLiteral("Device"), platformString()},
                     {QStringLiteral("Model"), getSysInfoByName(QStringLiteral("hw.model"))},
                     {QStringLiteral("Name"), identity.name()},
                     {QStringLiteral("UDID"), identity.uniqueIdentifier()}});
    info.addSection(QStringLiteral("OSInfo"),
                    {{QStringLiteral("OS"), identity.systemName()},
                     {QStringLiteral("OS Version"), identity.systemVersion()},
                     {QStringLiteral("Kernel"),
                      getSysInfoByName(QStringLiteral("kern.ostype")) + QStringLiteral(", ")
                          + getSysInfoByName(QStringLiteral("kern.osrelease"))}});
    info.addSection(
        QStringLiteral("CPUInfo"),
        {{QStringLiteral("Number of Cpus"), QString::number(getSysInfo(HW_NCPU))},
         {QStringLiteral("CPU Frequency"), getCPUFrequency()},
         // The full 64-bit rate: a TSC above 4.29 GHz is no rarity.
         {QStringLiteral("TB Frequency"), Formatting::hzToKiloMegaGigaWithHz(double(timeBaseHz()), 0, true)},
         {QStringLiteral("Cache Line Size"), bytes(HW_CACHELINE)},
         {QStringLiteral("L1 I Cache Size"), bytes(HW_L1ICACHESIZE)},
         {QStringLiteral("L1 D Cache Size"), bytes(HW_L1DCACHESIZE)},
         {QStringLiteral("L2 Cache Size"), bytes(HW_L2CACHESIZE)},
         {QStringLiteral("L3 Cache Size"), bytes(HW_L3CACHESIZE)}});
    return info;
}
