#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

// Temperatures, power supplies and Wi-Fi signal from /sys and /proc under a root
// directory: thermal zones and hwmon chips, batteries' wear and chargers' state, and
// the kernel's wireless statistics. Whatever cannot be read is left out.
class SensorReader {
public:
    // hwmon: chip "coretemp", sensor "temp1", label "Package id 0" (as `sensors` names
    // them); a thermal zone: chip "thermal_zone0", sensor "temp", label its type.
    struct Temperature {
        QString chip;
        QString sensor;
        QString label;
        double celsius = 0.0;
    };
    struct Battery {
        QString name;
        std::optional<double> health; // full charge now / as designed
        std::optional<quint64> cycles;
    };
    // A charger (mains, USB): plugged in or not.
    struct Charger {
        QString name;
        bool online = false;
    };
    struct Wireless {
        QByteArray device;
        double linkQuality = 0.0;
        double signalDbm = 0.0;
    };

    explicit SensorReader(const QString &rootDir = QStringLiteral("/"));

    QList<Temperature> temperatures() const;
    QList<Battery> batteries() const;
    QList<Charger> chargers() const;
    QList<Wireless> wireless() const;

    // A sysfs value in thousandths ("45500\n" is 45.5); nullopt when not a number.
    static std::optional<double> parseMilli(QByteArrayView text);
    static QList<Wireless> parseWireless(const char *text, qsizetype length);

private:
    QString _root;
};
