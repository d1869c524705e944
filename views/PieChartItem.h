#pragma once

#include <QColor>
#include <QtGlobal>

// One ring segment: an amount and its fill colour. The amount is 64-bit
// because memory sizes in bytes do not fit in 32 bits on today's machines.
class PieChartItem
{
public:
    constexpr PieChartItem() = default;
    constexpr PieChartItem(quint64 value, float red, float green, float blue, float alpha)
        : m_value(value), m_red(red), m_green(green), m_blue(blue), m_alpha(alpha)
    {
    }

    static constexpr PieChartItem initWithValue(quint64 value, float colorRed, float green, float blue,
                                                float alpha)
    {
        return PieChartItem(value, colorRed, green, blue, alpha);
    }

    constexpr quint64 value() const { return m_value; }
    constexpr float red() const { return m_red; }
    constexpr float green() const { return m_green; }
    constexpr float blue() const { return m_blue; }
    constexpr float alpha() const { return m_alpha; }
    constexpr void setValue(quint64 value) { m_value = value; }
    constexpr void setRed(float red) { m_red = red; }
    constexpr void setGreen(float green) { m_green = green; }
    constexpr void setBlue(float blue) { m_blue = blue; }
    constexpr void setAlpha(float alpha) { m_alpha = alpha; }

    QColor color() const { return QColor::fromRgbF(m_red, m_green, m_blue, m_alpha); }

    friend constexpr bool operator==(const PieChartItem &, const PieChartItem &) = default;

private:
    quint64 m_value = 0;
    float m_red = 0.0f;
    float m_green = 0.0f;
    float m_blue = 0.0f;
    float m_alpha = 1.0f;
};
