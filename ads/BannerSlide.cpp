#include "BannerSlide.h"

#include <QPropertyAnimation>
#include <QWidget>

namespace {
const char SlideMarker[] = "kovarBannerSlide";
}

QEasingCurve BannerSlide::curve()
{
    // The platform's default ease-in-out timing: the cubic Bézier (0.42, 0) (0.58, 1).
    QEasingCurve curve(QEasingCurve::BezierSpline);
    curve.addCubicBezierSegment(QPointF(0.42, 0.0), QPointF(0.58, 1.0), QPointF(1.0, 1.0));
    return curve;
}

QPropertyAnimation *BannerSlide::running(const QWidget *banner)
{
    if (!banner)
        return nullptr;
    const auto animations = banner->findChildren<QPropertyAnimation *>(Qt::FindDirectChildrenOnly);
    for (QPropertyAnimation *animation : animations) {
        if (animation->property(SlideMarker).toBool() && animation->state() == QAbstractAnimation::Running)
            return animation;
    }
    return nullptr;
}

QPropertyAnimation *BannerSlide::slide(QWidget *banner, const QRect &frame, const QString &name)
{
    if (!banner)
        return nullptr;
    // Stopping the old slide leaves the banner where it got to; the new one starts there.
    if (QPropertyAnimation *previous = running(banner))
        previous->stop();

    auto *animation = new QPropertyAnimation(banner, "geometry", banner);
    animation->setObjectName(name);
    animation->setProperty(SlideMarker, true);
    animation->setDuration(DurationMs);
    animation->setEasingCurve(curve());
    animation->setStartValue(banner->geometry());
    animation->setEndValue(frame);
    animation->start(QAbstractAnimation::DeleteWhenStopped);
    return animation;
}
