#pragma once

#include <QColor>

// One segment of a state bar: an amount and its fill colour.
class StateBarItem {
public:
    constexpr StateBarItem() = default;
    constexpr StateBarItem(double value, float red, float green, float blue, float alpha)
        : _value(value)
        , _red(red)
        , _green(green)
        , _blue(blue)
        , _alpha(alpha)
    {
    }

    static constexpr StateBarItem initWithVal(double value, float colorRed, float green, float blue, float alpha)
    {
        return StateBarItem(value, colorRed, green, blue, alpha);
    }

    constexpr double value() const { return _value; }
    constexpr float red() const { return _red; }
    constexpr float green() const { return _green; }
    constexpr float blue() const { return _blue; }
    constexpr float alpha() const { return _alpha; }
    constexpr void setValue(double value) { _value = value; }
    constexpr void setRed(float red) { _red = red; }
    constexpr void setGreen(float green) { _green = green; }
    constexpr void setBlue(float blue) { _blue = blue; }
    constexpr void setAlpha(float alpha) { _alpha = alpha; }

    QColor color() const { return QColor::fromRgbF(_red, _green, _blue, _alpha); }

    friend constexpr bool operator==(const StateBarItem &, const StateBarItem &) = default;

private:
    double _value = 0.0;
    float _red = 0.0f;
    float _green = 0.0f;
    float _blue = 0.0f;
    float _alpha = 1.0f;
};
