#pragma once

#include "ADBannerViewDelegate.h"
#include "GADBannerViewDelegate.h"

#include <QCoreApplication>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QThread>
#include <QWidget>

class ADBannerView;
class GADBannerView;

// One banner slot at the foot of a host screen, filled from two sources at once: the
// platform's banner, which wins whenever it has an ad, and the ad network's banner as
// the fallback. The phone and tablet controllers differ only in their frames and in
// whether they announce a banner.
class ADControlBase : public QObject, public GADBannerViewDelegate, public ADBannerViewDelegate {
    Q_OBJECT

public:
    // Where each banner stands, for a slot whose top edge is at y.
    struct Frames {
        QRect platformParked;
        QRect platformShown;
        QRect networkParked;
        QRect networkReceived; // on a network arrival
        QRect networkUnhidden; // when the platform banner gives the slot back
    };

    ~ADControlBase() override;

    virtual Frames frames(float y) const = 0;

    // Places both banners, parked below the slot, in the host's view and asks for ads.
    void addAds(QWidget *viewController, float wihtYPoint);
    void initAdmob(float y);
    void initiAd(float y);
    void hideAdmob(bool hidden);
    void hideAllAds(bool hidden);

    void bannerViewDidLoadAd(ADBannerView *banner) override;
    void bannerView(ADBannerView *banner, const QString &didFailToReceiveAdWithError) override;
    void adViewDidReceiveAd(GADBannerView *view) override;
    void adView(GADBannerView *view, const GADRequestError &didFailToReceiveAdWithError) override;

    QWidget *viewController() const { return _viewController; }
    void setViewController(QWidget *viewController) { _viewController = viewController; }
    float yPoint() const { return _yPoint; }
    bool iAdShow() const { return _iAdShow; }
    bool adHide() const { return _adHide; }
    // The banners belong to the host's view; these go null when it does.
    ADBannerView *adBanner() const;
    GADBannerView *adMobBanner() const;

protected:
    explicit ADControlBase(QObject *parent = nullptr);

    // Phone: posts "ReceiveAd"; tablet: stays silent.
    virtual void announce(const QString &adKind) = 0;

    // One instance per class, made on first use (safely from any thread), handed to the
    // application's thread, where the banners call it back, and kept until the process ends.
    template<class T>
    static T *sharedInstance()
    {
        static T *const instance = [] {
            T *made = new T;
            if (QCoreApplication *app = QCoreApplication::instance(); app && made->thread() != app->thread())
                made->moveToThread(app->thread());
            return made;
        }();
        return instance;
    }

private:
    QPointer<QWidget> _viewController;
    QPointer<ADBannerView> _adBanner;
    QPointer<GADBannerView> _adMobBanner;
    float _yPoint = 0;
    bool _iAdShow = false;
    bool _adHide = false;
};
