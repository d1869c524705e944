#include "SensorReader.h"

#include "SysfsText.h"

#include <QByteArrayView>
#include <QDir>

#include <algorithm>
#include <cmath>

namespace {

QStringList entries(const QString &dir, const QString &pattern)
{
    QStringList names = QDir(dir).entryList({pattern}, QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot | QDir::System);
    // thermal_zone10 after thermal_zone9: the kernel's own numbering.
    std::sort(names.begin(), names.end(),
              [](const QString &a, const QString &b) { return a.size() != b.size() ? a.size() < b.size() : a < b; });
    return names;
}

std::optional<quint64> readUnsigned(const QString &root, const QString &relative)
{
    const QByteArray text = SysfsText::read(root, relative, 64).trimmed();
    bool ok = false;
    const quint64 value = text.toULongLong(&ok);
    return ok ? std::optional<quint64>(value) : std::nullopt;
}

QString firstWord(const QString &root, const QString &relative)
{
    return SysfsText::firstLine(root, relative);
}

} // namespace

SensorReader::SensorReader(const QString &rootDir)
    : _root(rootDir)
{
}

std::optional<double> SensorReader::parseMilli(QByteArrayView text)
{
    bool ok = false;
    const qlonglong value = text.trimmed().toLongLong(&ok);
    if (!ok)
        return std::nullopt;
    return double(value) / 1000.0;
}

QList<SensorReader::Wireless> SensorReader::parseWireless(const char *text, qsizetype length)
{
    // " wlan0: 0000   54.  -56.  -256        0 ..." : status, link quality, signal level, noise.
    QList<Wireless> found;
    for (QByteArrayView line : QByteArrayView(text, length).toByteArray().split('\n')) {
        const qsizetype colon = line.indexOf(':');
        if (colon <= 0 || line.contains('|'))
            continue;
        const QByteArray name = line.first(colon).trimmed().toByteArray();
        const QList<QByteArray> fields = line.sliced(colon + 1).toByteArray().simplified().split(' ');
        if (name.isEmpty() || fields.size() < 3)
            continue;
        auto number = [](QByteArray field, bool &ok) {
            if (field.endsWith('.'))
                field.chop(1);
            return field.toDouble(&ok);
        };
        bool linkOk = false;
        bool levelOk = false;
        Wireless wireless{name, number(fields[1], linkOk), number(fields[2], levelOk)};
        if (!linkOk || !levelOk || !std::isfinite(wireless.linkQuality) || !std::isfinite(wireless.signalDbm))
            continue;
        // Old drivers give the level as an unsigned byte of the dBm figure.
        if (wireless.signalDbm > 0.0 && wireless.signalDbm <= 255.0)
            wireless.signalDbm -= 256.0;
        found.append(wireless);
    }
    return found;
}

QList<SensorReader::Temperature> SensorReader::temperatures() const
{
    QList<Temperature> found;
    const QString thermal = QStringLiteral("sys/class/thermal");
    for (const QString &zone : entries(QDir(_root).filePath(thermal), QStringLiteral("thermal_zone*"))) {
        const std::optional<double> celsius = parseMilli(
            SysfsText::read(_root, thermal + u'/' + zone + QStringLiteral("/temp"), 64));
        if (celsius)
            found.append({zone, QStringLiteral("temp"),
                          firstWord(_root, thermal + u'/' + zone + QStringLiteral("/type")), *celsius});
    }
    const QString hwmon = QStringLiteral("sys/class/hwmon");
    for (const QString &chipDir : entries(QDir(_root).filePath(hwmon), QStringLiteral("hwmon*"))) {
        const QString base = hwmon + u'/' + chipDir + u'/';
        const QString chip = firstWord(_root, base + QStringLiteral("name"));
        for (const QString &input : entries(QDir(_root).filePath(base), QStringLiteral("temp*_input"))) {
            const std::optional<double> celsius = parseMilli(SysfsText::read(_root, base + input, 64));
            if (!celsius)
                continue;
            const QString sensor = input.chopped(int(sizeof "_input") - 1);
            found.append({chip.isEmpty() ? chipDir : chip, sensor,
                          firstWord(_root, base + sensor + QStringLiteral("_label")), *celsius});
        }
    }
    return found;
}

QList<SensorReader::Battery> SensorReader::batteries() const
{
    QList<Battery> found;
    const QString supplies = QStringLiteral("sys/class/power_supply");
    for (const QString &name : entries(QDir(_root).filePath(supplies), QStringLiteral("*"))) {
        const QString base = supplies + u'/' + name + u'/';
        if (firstWord(_root, base + QStringLiteral("type")) != u"Battery"
            || firstWord(_root, base + QStringLiteral("scope")) == u"Device")
            continue; // a mouse's or headset's battery is not the machine's
        Battery battery{name, std::nullopt, readUnsigned(_root, base + QStringLiteral("cycle_count"))};
        for (const char *kind : {"energy", "charge"}) {
            const auto full = readUnsigned(_root, base + QLatin1String(kind) + QStringLiteral("_full"));
            const auto design = readUnsigned(_root, base + QLatin1String(kind) + QStringLiteral("_full_design"));
            if (full && design && *design > 0) {
                battery.health = double(*full) / double(*design);
                break;
            }
        }
        if (battery.health || battery.cycles)
            found.append(battery);
    }
    return found;
}

QList<SensorReader::Charger> SensorReader::chargers() const
{
    QList<Charger> found;
    const QString supplies = QStringLiteral("sys/class/power_supply");
    for (const QString &name : entries(QDir(_root).filePath(supplies), QStringLiteral("*"))) {
        const QString base = supplies + u'/' + name + u'/';
        if (firstWord(_root, base + QStringLiteral("type")) == u"Battery")
            continue;
        if (const auto online = readUnsigned(_root, base + QStringLiteral("online")))
            found.append({name, *online != 0});
    }
    return found;
}

QList<SensorReader::Wireless> SensorReader::wireless() const
{
    const QByteArray text = SysfsText::read(_root, QStringLiteral("proc/net/wireless"));
    return parseWireless(text.constData(), text.size());
}
