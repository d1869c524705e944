#pragma once

#include <QColor>
#include <QtGlobal>

// One ring segment: an amount and its fill colour. The amount is 64-bit
// because memory sizes in bytes do not fit in 32 bits on today's machines.
class PieChartItem {
public:
    constexpr PieChartItem() = default;
    constexpr PieChartItem(quint64 value, float red, float green, float blue, float alpha)
        : _value(value)
        , _red(red)
        , _green(green)
        , _blue(blue)
        , _alpha(alpha)
    {
    }

    static constexpr PieChartItem initWithValue(quint64 value, float colorRed, float green, float blue, float alpha)
    {
        return PieChartItem(value, colorRed, green, blue, alpha);
    }

    constexpr quint64 value() const { return _value; }
    constexpr float red() const { return _red; }
    constexpr float green() const { return _green; }
    constexpr float blue() const { return _blue; }
    constexpr float alpha() const { return _alpha; }
    constexpr void setValue(quint64 value) { _value = value; }
    constexpr void setRed(float red) { _red = red; }
    constexpr void setGreen(float green) { _green = green; }
    constexpr void setBlue(float blue) { _blue = blue; }
    constexpr void setAlpha(float alpha) { _alpha = alpha; }

    QColor color() const { return QColor::fromRgbF(_red, _green, _blue, _alpha); }

    friend constexpr bool operator==(const PieChartItem &, const PieChartItem &) = default;

private:
    quint64 _value = 0;
    float _red = 0.0f;
    float _green = 0.0f;
    float _blue = 0.0f;
    float _alpha = 1.0f;
};
