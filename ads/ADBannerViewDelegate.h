#pragma once

#include <QString>

class ADBannerView;

// Told when the platform's banner has an ad to show and when it has lost it.
class ADBannerViewDelegate {
public:
    virtual ~ADBannerViewDelegate() = default;

    virtual void bannerViewDidLoadAd(ADBannerView *banner) = 0;
    virtual void bannerView(ADBannerView *banner, const QString &didFailToReceiveAdWithError) = 0;
};
