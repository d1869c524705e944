#pragma once

#include <QtGlobal>

// One CPU sample for the histogram. Only the ratios between the three shares
// matter; the unit is whatever the caller counts in (ticks, usually).
class HistogramItem {
public:
    constexpr HistogramItem() = default;
    constexpr HistogramItem(qint32 data1, qint32 data2, qint32 data3)
        : _data1(data1)
        , _data2(data2)
        , _data3(data3)
    {
    }

    static constexpr HistogramItem initWithData1(qint32 data1, qint32 data2, qint32 data3)
    {
        return HistogramItem(data1, data2, data3);
    }
    // The same record under the names the CPU screen thinks in.
    static constexpr HistogramItem initWithUser(qint32 user, qint32 system, qint32 idle)
    {
        return HistogramItem(user, system, idle);
    }

    constexpr qint32 data1() const { return _data1; }
    constexpr qint32 data2() const { return _data2; }
    constexpr qint32 data3() const { return _data3; }
    constexpr void setData1(qint32 value) { _data1 = value; }
    constexpr void setData2(qint32 value) { _data2 = value; }
    constexpr void setData3(qint32 value) { _data3 = value; }

    constexpr qint32 user() const { return _data1; }
    constexpr qint32 system() const { return _data2; }
    constexpr qint32 idle() const { return _data3; }

    friend constexpr bool operator==(const HistogramItem &, const HistogramItem &) = default;

private:
    qint32 _data1 = 0;
    qint32 _data2 = 0;
    qint32 _data3 = 0;
};
