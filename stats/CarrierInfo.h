#pragma once

#include <QString>

// The subscriber's cellular provider, as far as the modem tells it.
struct CarrierInfo {
    QString carrierName;
    QString mobileCountryCode;
    QString mobileNetworkCode;
    QString isoCountryCode; // lower case, as in "us"
    bool allowsVOIP = false;

    bool operator==(const CarrierInfo &other) const = default;
};
