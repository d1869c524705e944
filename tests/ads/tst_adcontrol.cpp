#include "ADBannerView.h"
#include "ADControl.h"
#include "ADControlForiPad.h"
#include "BannerKinds.h"
#include "BannerSlide.h"
#include "FixtureTree.h"
#include "GADBannerView.h"

#include <QPropertyAnimation>
#include <QtTest>

#include <thread>

namespace {

const QString Kind = QStringLiteral("ADBannerView");
const BannerKinds::Factory PlatformBanner = [](const QRect &frame) { return new ADBannerView(frame); };

// Runs every slide on the host's banners to its end, as if 0.2 s had passed.
void finishSlides(const QWidget *host)
{
    for (QWidget *banner : host->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        while (QPropertyAnimation *slide = BannerSlide::running(banner))
            slide->setCurrentTime(slide->duration());
    }
}

QString text(const QWidget *banner)
{
    const QRect r = banner ? banner->geometry() : QRect();
    return banner ? QStringLiteral("%1 %2 %3 %4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height())
                  : QStringLiteral("-");
}

// A phone (slot at 410) or tablet (slot at 914) screen with a controller's banners in it, the
// platform's made by the given kind. The build has no ad server: the network banner's own
// request has failed, and it is parking.
struct Slot {
    std::unique_ptr<QWidget> host = std::make_unique<QWidget>();
    std::unique_ptr<ADControlBase> control;
    QStringList posted; // the AdKind of each ReceiveAd, "?" for a malformed one

    Slot(bool phone, const BannerKinds::Factory &platformKind = PlatformBanner)
        : control(phone ? static_cast<ADControlBase *>(new ADControl) : new ADControlForiPad)
    {
        if (auto *announcing = qobject_cast<ADControl *>(control.get())) {
            QObject::connect(announcing, &ADControl::ReceiveAd, [this](const QVariantMap &info) {
                posted << (info.size() == 1 ? info.value(QStringLiteral("AdKind")).toString() : QStringLiteral("?"));
            });
        }
        BannerKinds::add(Kind, platformKind);
        control->addAds(host.get(), phone ? 410 : 914);
        BannerKinds::remove(Kind);
        QCoreApplication::processEvents();
    }
    ADBannerView *platform() const { return control->adBanner(); }
    GADBannerView *network() const { return control->adMobBanner(); }
    QStringList frames() const { return {text(platform()), text(network())}; }

    void send(const QString &event)
    {
        const QHash<QString, std::function<void()>> events = {
            {"P+", [this] { control->bannerViewDidLoadAd(platform()); }},
            {"P-", [this] { control->bannerView(platform(), QStringLiteral("no fill")); }},
            {"N+", [this] { control->adViewDidReceiveAd(network()); }},
            {"N0", [this] { control->adViewDidReceiveAd(nullptr); }},
            {"N-",
             [this] {
                 control->adView(network(), GADRequestError{GADRequestError::ServerError, QStringLiteral("no fill")});
             }},
            {"C", [this] { network()->loadRequest(GADRequest::request()); }},
            {"H+", [this] { control->hideAllAds(true); }},
            {"H-", [this] { control->hideAllAds(false); }},
        };
        events.value(event)();
        QCoreApplication::processEvents();
    }
};

} // namespace

class TestADControl : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        if (!GADBannerView::configuredServerUrl().isEmpty())
            QSKIP("This build has an ad server, which the banners would ask.");
    }

    void states_data() { FixtureTree::addRows("slot-states.tsv", {"screen", "events", "expected"}); }
    void states()
    {
        QFETCH(QString, screen);
        QFETCH(QString, events);
        QFETCH(QString, expected);
        const bool alone = screen.endsWith(u"alone"), odd = screen.endsWith(u"odd"), platform = !alone && !odd;
        const BannerKinds::Factory oddKind = [](const QRect &) { return new QWidget; };
        Slot slot(screen.startsWith(u"phone"), alone ? BannerKinds::Factory() : odd ? oddKind : PlatformBanner);
        QCOMPARE(slot.host->findChildren<QWidget *>(Qt::FindDirectChildrenOnly).size(), platform ? 2 : 1);
        QVERIFY(BannerSlide::running(slot.network())); // it asked for a banner at once
        const QString portrait = ADBannerView::ADBannerContentSizeIdentifierPortrait;
        QVERIFY(!platform
                || (slot.platform()->delegate() == slot.control.get()
                    && slot.platform()->currentContentSizeIdentifier() == portrait
                    && slot.platform()->requiredContentSizeIdentifiers() == QSet<QString>{portrait}));
        finishSlides(slot.host.get());
        for (const QString &event : events.split(u' ', Qt::SkipEmptyParts)) {
            const QStringList before = slot.frames();
            slot.send(event);
            // Banners slide from where they are over 0.2 s, easing in and out; they do not jump.
            QCOMPARE(slot.frames(), before);
            for (QWidget *banner : slot.host->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
                const QPropertyAnimation *slide = BannerSlide::running(banner);
                const QEasingCurve curve = slide ? slide->easingCurve() : QEasingCurve();
                QVERIFY(!slide
                        || (slide->duration() == 200 && slide->startValue().toRect() == banner->geometry()
                            && curve.valueForProgress(0.1) < 0.05 && qAbs(curve.valueForProgress(0.5) - 0.5) < 0.01
                            && curve.valueForProgress(0.9) > 0.95));
            }
            finishSlides(slot.host.get());
        }
        const QString hidden = QString(slot.network()->isHidden() ? "N" : "")
            + (platform && slot.platform()->isHidden() ? "P" : "");
        const QObjectList order = slot.host->children();
        const bool onTop = platform && order.indexOf(slot.network()) > order.indexOf(slot.platform());
        QCOMPARE(QStringList({text(slot.platform()), text(slot.network()), hidden.isEmpty() ? "-" : hidden,
                              slot.control->iAdShow() ? "yes" : "no", onTop ? "yes" : "no",
                              slot.posted.isEmpty() ? "-" : slot.posted.join(u' ')})
                     .join(" | "),
                 expected);
        QCOMPARE(slot.control->adHide(), events.endsWith(u"H+"));
    }

    void hostScreenGoesAway()
    {
        Slot slot(true);
        slot.host.reset();
        // Its banners went with it: callbacks and calls touch nothing, and no host gets no banners.
        for (const char *event : {"P+", "P-", "N0", "N-", "H+"})
            slot.send(QLatin1String(event));
        slot.control->hideAdmob(false);
        slot.control->addAds(nullptr, 410);
        QVERIFY(!slot.control->adBanner() && !slot.control->adMobBanner());
    }

    void controllerGoesAway()
    {
        Slot slot(true);
        const QPointer<GADBannerView> network = slot.network();
        const QPointer<ADBannerView> platform = slot.platform();
        slot.control.reset();
        // The host keeps its banners, which no longer call back.
        QVERIFY(network && platform && !network->delegate() && !platform->delegate());
    }

    void sharedInstances()
    {
        std::array<std::pair<ADControl *, ADControlForiPad *>, 8> made{};
        std::vector<std::thread> callers;
        for (auto &pair : made)
            callers.emplace_back([&pair] { pair = {ADControl::defaultsAD(), ADControlForiPad::defaultsADForiPad()}; });
        for (std::thread &caller : callers)
            caller.join();
        // One of each for the process, made on some other thread but called back on the application's.
        for (const auto &pair : made)
            QVERIFY(pair.first == ADControl::defaultsAD() && pair.second == ADControlForiPad::defaultsADForiPad());
        QCOMPARE(made[0].first->thread(), QCoreApplication::instance()->thread());
        QCOMPARE(made[0].second->thread(), QCoreApplication::instance()->thread());
    }
};

QTEST_MAIN(TestADControl)
#include "tst_adcontrol.moc"
