#pragma once

#include "CarrierInfo.h"

#include <QDBusConnection>
#include <QString>

#include <optional>

// The cellular provider as ModemManager reports it. No bus, no ModemManager,
// no modem, or a modem that knows no operator: no carrier.
class ModemManagerCarrier {
public:
    explicit ModemManagerCarrier(QDBusConnection connection);

    // Bounds every bus call, so that a wedged service cannot freeze the caller.
    void setCallTimeout(int milliseconds);

    std::optional<CarrierInfo> carrier() const;

    // The first modem's signal: quality from 0 to 1 and its newest access technology
    // ("lte", "umts", ...); nullopt without ModemManager or a modem.
    struct Signal {
        double quality = 0.0;
        QString accessTechnology;
    };
    std::optional<Signal> signal() const;

    // The carrier from the system bus, as the application asks for it.
    static std::optional<CarrierInfo> fromSystemBus();

private:
    QDBusConnection _connection;
    int _callTimeout = 2000;
};
