#include "ADControlBase.h"

#include "ADBannerView.h"
#include "BannerKinds.h"
#include "BannerSlide.h"
#include "GADBannerView.h"

#include <QLoggingCategory>

namespace {
Q_LOGGING_CATEGORY(lcAds, "kovar.ads", QtWarningMsg)
}

ADControlBase::ADControlBase(QObject *parent)
    : QObject(parent)
{
}

ADControlBase::~ADControlBase()
{
    // The host's view keeps the banners; they must not call back into a gone controller.
    if (_adBanner && _adBanner->delegate() == this)
        _adBanner->setDelegate(nullptr);
    if (_adMobBanner && _adMobBanner->delegate() == this)
        _adMobBanner->setDelegate(nullptr);
}

ADBannerView *ADControlBase::adBanner() const
{
    return _adBanner;
}

GADBannerView *ADControlBase::adMobBanner() const
{
    return _adMobBanner;
}

void ADControlBase::addAds(QWidget *viewController, float wihtYPoint)
{
    _yPoint = wihtYPoint;
    setViewController(viewController);
    initAdmob(wihtYPoint);
    initiAd(wihtYPoint);
}

void ADControlBase::initAdmob(float y)
{
    if (!_viewController)
        return;
    auto *banner = new GADBannerView(frames(y).networkParked, _viewController);
    banner->setRootViewController(_viewController);
    banner->setDelegate(this);
    banner->setAdUnitID(GADBannerView::configuredAdUnitID());
    banner->show();
    _adMobBanner = banner;
    banner->loadRequest(GADRequest::request());
}

void ADControlBase::initiAd(float y)
{
    const BannerKinds::Factory platformBanner = BannerKinds::find(QStringLiteral("ADBannerView"));
    if (!platformBanner || !_viewController)
        return;
    QWidget *made = platformBanner(QRect());
    auto *banner = qobject_cast<ADBannerView *>(made);
    if (!banner) {
        qCWarning(lcAds, "the registered ADBannerView kind makes no ADBannerView");
        delete made;
        return;
    }
    const QString portrait = ADBannerView::ADBannerContentSizeIdentifierPortrait;
    banner->setRequiredContentSizeIdentifiers({portrait});
    banner->setCurrentContentSizeIdentifier(portrait);
    banner->setGeometry(frames(y).platformParked);
    banner->setDelegate(this);
    // Added after the network banner, so it lies above it.
    banner->setParent(_viewController);
    banner->show();
    _adBanner = banner;
}

void ADControlBase::hideAdmob(bool hidden)
{
    if (!_adMobBanner)
        return;
    _adMobBanner->setHidden(hidden);
    if (!hidden) {
        // Takes the slot whatever it holds, even before the network has sent a banner.
        _adMobBanner->raise();
        BannerSlide::slide(_adMobBanner, frames(_yPoint).networkUnhidden, QStringLiteral("BannerSlide"));
    }
}

void ADControlBase::hideAllAds(bool hidden)
{
    if (_adBanner)
        _adBanner->setHidden(hidden);
    if (_adMobBanner)
        _adMobBanner->setHidden(hidden);
    _adHide = hidden;
}

void ADControlBase::bannerViewDidLoadAd(ADBannerView *)
{
    BannerSlide::slide(_adBanner, frames(_yPoint).platformShown, QStringLiteral("animateBannerAppear"));
    _iAdShow = true;
    hideAdmob(true);
    announce(QStringLiteral("iAd"));
}

void ADControlBase::bannerView(ADBannerView *, const QString &)
{
    BannerSlide::slide(_adBanner, frames(_yPoint).platformParked, QStringLiteral("animateBannerOff"));
    _iAdShow = false;
    hideAdmob(false);
}

void ADControlBase::adViewDidReceiveAd(GADBannerView *view)
{
    // The platform's banner has the slot: the network's stays hidden behind it.
    if (view && _iAdShow)
        return;
    BannerSlide::slide(_adMobBanner, frames(_yPoint).networkReceived, QStringLiteral("BannerSlide"));
    if (view)
        announce(QStringLiteral("AdMob"));
}

void ADControlBase::adView(GADBannerView *, const GADRequestError &error)
{
    qCDebug(lcAds) << "no network banner:" << error.localizedDescription;
    // Parked below the slot but left visible; the platform banner may still bring it back.
    BannerSlide::slide(_adMobBanner, frames(_yPoint).networkParked, QStringLiteral("BannerSlide"));
}
