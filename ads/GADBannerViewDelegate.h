#pragma once

#include "GADRequestError.h"

class GADBannerView;

// Told of every banner that arrives and every request that fails, on the main thread.
class GADBannerViewDelegate {
public:
    virtual ~GADBannerViewDelegate() = default;

    virtual void adViewDidReceiveAd(GADBannerView *view) = 0;
    virtual void adView(GADBannerView *view, const GADRequestError &didFailToReceiveAdWithError) = 0;
};
