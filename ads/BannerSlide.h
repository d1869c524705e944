#pragma once

#include <QEasingCurve>
#include <QRect>
#include <QString>

class QPropertyAnimation;
class QWidget;

// Moves a banner to a new frame the way the platform animates a view by default:
// 0.2 s, ease in and out. A slide started while another runs on the same banner takes
// over from wherever the banner is.
class BannerSlide {
public:
    static constexpr int DurationMs = 200;

    static QEasingCurve curve();
    // The running slide is a child of the banner, named after the slide.
    static QPropertyAnimation *slide(QWidget *banner, const QRect &frame, const QString &name);
    // The slide now moving the banner, or null.
    static QPropertyAnimation *running(const QWidget *banner);
};
