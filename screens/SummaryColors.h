#pragma once

#include <QColor>

// The Summary page's palette. A few pairs differ on purpose by one step of 255 or 256
// (the wired legend against its ring segment, the first battery green against the
// later one); keep them apart.
namespace SummaryColors {

// Components as the chart items take them (floats in 0..1, opaque); QColor would
// round them to 16 bits and lose the 255-against-256 difference.
struct Rgb {
    float red;
    float green;
    float blue;
    QColor color() const { return QColor::fromRgbF(red, green, blue, 1.0f); }
    friend bool operator==(const Rgb &, const Rgb &) = default;
};

constexpr Rgb rgb(double r, double g, double b)
{
    return Rgb{float(r), float(g), float(b)};
}

inline constexpr Rgb cpuUser = rgb(0, 1.0, 1.0);
inline constexpr Rgb cpuSystem = rgb(1.0, 0, 0);
inline constexpr Rgb cpuIdle = rgb(0, 0, 0);
inline constexpr Rgb memoryWiredLegend = rgb(225 / 255.0, 0.8, 0);
inline constexpr Rgb memoryWiredSegment = rgb(0.87890625, 0.8, 0);
inline constexpr Rgb memoryActive = rgb(220 / 255.0, 0, 20 / 255.0);
inline constexpr Rgb memoryInactive = rgb(0, 130 / 255.0, 240 / 255.0);
inline constexpr Rgb memoryFree = rgb(232 / 255.0, 232 / 255.0, 232 / 255.0);
inline constexpr Rgb low = rgb(0, 130 / 255.0, 250 / 255.0);
inline constexpr Rgb warning = rgb(230 / 255.0, 110 / 255.0, 10 / 255.0);
inline constexpr Rgb critical = rgb(220 / 255.0, 0, 20 / 255.0);
inline constexpr Rgb good = rgb(20 / 255.0, 220 / 255.0, 50 / 255.0);
inline constexpr Rgb initialBatteryLevel = rgb(20 / 255.0, 200 / 255.0, 50 / 255.0);
inline constexpr Rgb unknown = rgb(232 / 255.0, 232 / 255.0, 232 / 255.0);

// Disk use: 90 % and more is critical, 70 % and more a warning; anything else
// (a number that is not one, too) is low.
inline Rgb diskLevelColor(double usedPercent)
{
    if (usedPercent >= 90)
        return critical;
    if (usedPercent >= 70)
        return warning;
    return low;
}

// Battery level in percent, negative when unknown.
inline Rgb batteryLevelColor(float levelPercent)
{
    if (levelPercent < 0)
        return unknown;
    if (levelPercent <= 10)
        return critical;
    if (levelPercent <= 30)
        return warning;
    return good;
}

} // namespace SummaryColors
