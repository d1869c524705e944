#include "ADBannerView.h"
#include "ADControl.h"
#include "ADControlForiPad.h"
#include "BannerKinds.h"
#include "BannerSlide.h"
#include "GADBannerView.h"

#include <QPropertyAnimation>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QtTest>

#include <thread>

namespace {

const QString PlatformKind = QStringLiteral("ADBannerView");

// Runs every slide on the host's banners to its end, as if 0.2 s had passed.
void finishSlides(const QWidget *host)
{
    for (QWidget *banner : host->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        while (QPropertyAnimation *slide = BannerSlide::running(banner))
            slide->setCurrentTime(slide->duration());
    }
}

// A host screen of the given size with a controller's banners in it. The network banner
// is pointed at no server, so the only callbacks it gets are the test's own.
struct Slot {
    std::unique_ptr<QWidget> host;
    std::unique_ptr<ADControlBase> control;
    QList<QVariantMap> posted;

    Slot(const QString &device, bool withPlatformBanner)
        : host(std::make_unique<QWidget>())
    {
        if (withPlatformBanner)
            BannerKinds::add(PlatformKind, [](const QRect &frame) { return new ADBannerView(frame); });
        else
            BannerKinds::remove(PlatformKind);
        if (device == QLatin1String("phone")) {
            host->resize(320, 460);
            auto *phone = new ADControl;
            QObject::connect(phone, &ADControl::ReceiveAd, phone, [this](const QVariantMap &info) { posted << info; });
            control.reset(phone);
            control->addAds(host.get(), 410);
        } else {
            host->resize(768, 1004);
            control = std::make_unique<ADControlForiPad>();
            control->addAds(host.get(), 914);
        }
        BannerKinds::remove(PlatformKind);
        if (GADBannerView *network = control->adMobBanner()) {
            network->setServerUrl(QUrl());
            network->loadRequest(GADRequest::request());
            QCoreApplication::processEvents();
            finishSlides(host.get());
        }
    }

    ADBannerView *platform() const { return control->adBanner(); }
    GADBannerView *network() const { return control->adMobBanner(); }

    void send(const QString &event)
    {
        if (event == QLatin1String("P+"))
            control->bannerViewDidLoadAd(platform());
        else if (event == QLatin1String("P-"))
            control->bannerView(platform(), QStringLiteral("no fill"));
        else if (event == QLatin1String("N+"))
            control->adViewDidReceiveAd(network());
        else if (event == QLatin1String("N0"))
            control->adViewDidReceiveAd(nullptr);
        else if (event == QLatin1String("N-"))
            control->adView(network(), GADRequestError{GADRequestError::ServerError, QStringLiteral("no fill")});
        else
            QFAIL(qPrintable(QStringLiteral("unknown event ") + event));
    }

    QStringList postedKinds() const
    {
        QStringList kinds;
        for (const QVariantMap &info : posted) {
            if (info.size() != 1)
                return {QStringLiteral("malformed")};
            kinds << info.value(QStringLiteral("AdKind")).toString();
        }
        return kinds;
    }

    bool networkAbovePlatform() const
    {
        const QObjectList order = host->children();
        return order.indexOf(network()) > order.indexOf(platform());
    }
};

} // namespace

class TestADControl : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { BannerKinds::remove(PlatformKind); }

    void startUp_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<float>("y");
        QTest::addColumn<QRect>("platformParked");
        QTest::addColumn<QRect>("networkParked");
        QTest::newRow("phone at 410") << "phone" << 410.0f << QRect(0, 460, 320, 50) << QRect(0, 460, 320, 50);
        QTest::newRow("tablet at 914") << "tablet" << 914.0f << QRect(0, 1004, 768, 66) << QRect(20, 1004, 728, 90);
    }
    void startUp()
    {
        QFETCH(QString, device);
        QFETCH(float, y);
        QFETCH(QRect, platformParked);
        QFETCH(QRect, networkParked);

        QWidget host;
        host.resize(device == QLatin1String("phone") ? QSize(320, 460) : QSize(768, 1004));
        QList<QRect> madeWith;
        BannerKinds::add(PlatformKind, [&madeWith](const QRect &frame) {
            madeWith << frame;
            return new ADBannerView(frame);
        });
        std::unique_ptr<ADControlBase> control;
        if (device == QLatin1String("phone"))
            control = std::make_unique<ADControl>();
        else
            control = std::make_unique<ADControlForiPad>();
        control->addAds(&host, y);

        QCOMPARE(control->yPoint(), y);
        QCOMPARE(control->viewController(), &host);
        QVERIFY(!control->iAdShow());

        GADBannerView *network = control->adMobBanner();
        QVERIFY(network);
        QCOMPARE(network->parentWidget(), &host);
        QCOMPARE(network->geometry(), networkParked);
        QCOMPARE(network->rootViewController(), &host);
        QCOMPARE(network->delegate(), static_cast<GADBannerViewDelegate *>(control.get()));
        QVERIFY(QRegularExpression(QStringLiteral("^[0-9a-f]{15}$")).match(network->adUnitID()).hasMatch());
        QVERIFY(!network->isHidden());

        ADBannerView *platform = control->adBanner();
        QVERIFY(platform);
        QCOMPARE(madeWith, QList<QRect>{QRect()});
        QCOMPARE(platform->parentWidget(), &host);
        QCOMPARE(platform->geometry(), platformParked);
        QCOMPARE(platform->delegate(), static_cast<ADBannerViewDelegate *>(control.get()));
        const QString portrait = ADBannerView::ADBannerContentSizeIdentifierPortrait;
        QCOMPARE(platform->requiredContentSizeIdentifiers(), QSet<QString>{portrait});
        QCOMPARE(platform->currentContentSizeIdentifier(), portrait);
        // The network banner first, the platform's above it.
        QVERIFY(host.children().indexOf(platform) > host.children().indexOf(network));
        // Nothing moves before a source answers.
        QVERIFY(!BannerSlide::running(platform));
        QVERIFY(!BannerSlide::running(network));
    }

    void states_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QStringList>("events");
        QTest::addColumn<QRect>("platformFrame");
        QTest::addColumn<QRect>("networkFrame");
        QTest::addColumn<bool>("networkHidden");
        QTest::addColumn<bool>("iAdShow");
        QTest::addColumn<bool>("networkOnTop");
        QTest::addColumn<QStringList>("posted");

        // P: the platform banner loaded (+) or failed (-); N: a network banner arrived (+),
        // arrived without a banner view (0), or failed (-).
        const QRect pSlot(0, 410, 320, 50), pParked(0, 460, 320, 50);
        const QRect nSlot = pSlot, nParked = pParked;
        using L = QStringList;
        QTest::newRow("phone: empty until a source answers")
            << "phone" << L{} << pParked << nParked << false << false << false << L{};
        QTest::newRow("phone: platform banner takes the empty slot")
            << "phone" << L{"P+"} << pSlot << nParked << true << true << false << L{"iAd"};
        QTest::newRow("phone: every platform arrival is posted")
            << "phone" << L{"P+", "P+"} << pSlot << nParked << true << true << false << L{"iAd", "iAd"};
        QTest::newRow("phone: platform failure hands the slot to the network banner")
            << "phone" << L{"P+", "P-"} << pParked << nSlot << false << false << true << L{"iAd"};
        QTest::newRow("phone: platform failure before any arrival still unhides the network banner")
            << "phone" << L{"P-"} << pParked << nSlot << false << false << true << L{};
        QTest::newRow("phone: network banner takes the empty slot")
            << "phone" << L{"N+"} << pParked << nSlot << false << false << false << L{"AdMob"};
        QTest::newRow("phone: network failure empties the slot, banner left visible")
            << "phone" << L{"N+", "N-"} << pParked << nParked << false << false << false << L{"AdMob"};
        QTest::newRow("phone: platform arrival hides the network banner where it stands")
            << "phone" << L{"N+", "P+"} << pSlot << nSlot << true << true << false << L{"AdMob", "iAd"};
        QTest::newRow("phone: network arrival behind the platform banner does nothing")
            << "phone" << L{"P+", "N+"} << pSlot << nParked << true << true << false << L{"iAd"};
        QTest::newRow("phone: network failure behind the platform banner parks it hidden")
            << "phone" << L{"N+", "P+", "N-"} << pSlot << nParked << true << true << false << L{"AdMob", "iAd"};
        QTest::newRow("phone: network arrival after a platform failure is posted")
            << "phone" << L{"P+", "P-", "N+"} << pParked << nSlot << false << false << true << L{"iAd", "AdMob"};
        QTest::newRow("phone: arrival without a banner view slides in silently")
            << "phone" << L{"N0"} << pParked << nSlot << false << false << false << L{};
        QTest::newRow("phone: arrival without a banner view slides in even behind the platform banner")
            << "phone" << L{"P+", "N0"} << pSlot << nSlot << true << true << false << L{"iAd"};

        const QRect tpSlot(0, 926, 768, 66), tpParked(0, 1004, 768, 66);
        const QRect tnArrived(20, 914, 728, 90), tnUnhidden(0, 914, 728, 90), tnParked(20, 1004, 728, 90);
        QTest::newRow("tablet: empty until a source answers")
            << "tablet" << L{} << tpParked << tnParked << false << false << false << L{};
        QTest::newRow("tablet: platform banner takes the slot, nothing posted")
            << "tablet" << L{"P+"} << tpSlot << tnParked << true << true << false << L{};
        QTest::newRow("tablet: network banner unhidden at x 0 after a platform failure")
            << "tablet" << L{"P+", "P-"} << tpParked << tnUnhidden << false << false << true << L{};
        QTest::newRow("tablet: network arrival at x 20, nothing posted")
            << "tablet" << L{"N+"} << tpParked << tnArrived << false << false << false << L{};
        QTest::newRow("tablet: network arrival after a platform failure moves it to x 20")
            << "tablet" << L{"P+", "P-", "N+"} << tpParked << tnArrived << false << false << true << L{};
        QTest::newRow("tablet: network failure parks it at x 20")
            << "tablet" << L{"N+", "N-"} << tpParked << tnParked << false << false << false << L{};
        QTest::newRow("tablet: network arrival behind the platform banner does nothing")
            << "tablet" << L{"P+", "N+"} << tpSlot << tnParked << true << true << false << L{};
        QTest::newRow("tablet: arrival without a banner view slides in")
            << "tablet" << L{"N0"} << tpParked << tnArrived << false << false << false << L{};
        QTest::newRow("tablet: arrival without a banner view slides in behind the platform banner")
            << "tablet" << L{"P+", "N0"} << tpSlot << tnArrived << true << true << false << L{};
    }
    void states()
    {
        QFETCH(QString, device);
        QFETCH(QStringList, events);
        QFETCH(QRect, platformFrame);
        QFETCH(QRect, networkFrame);
        QFETCH(bool, networkHidden);
        QFETCH(bool, iAdShow);
        QFETCH(bool, networkOnTop);
        QFETCH(QStringList, posted);

        Slot slot(device, true);
        for (const QString &event : events) {
            slot.send(event);
            finishSlides(slot.host.get());
        }
        QCOMPARE(slot.platform()->geometry(), platformFrame);
        QCOMPARE(slot.network()->geometry(), networkFrame);
        QCOMPARE(slot.network()->isHidden(), networkHidden);
        QVERIFY(!slot.platform()->isHidden());
        QCOMPARE(slot.control->iAdShow(), iAdShow);
        QCOMPARE(slot.networkAbovePlatform(), networkOnTop);
        QCOMPARE(slot.postedKinds(), posted);
    }

    void slides_data()
    {
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QString>("event");
        QTest::addColumn<bool>("movesPlatform");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QRect>("to");
        QTest::newRow("platform arrival") << QStringList{} << "P+" << true << "animateBannerAppear" << QRect(0, 410, 320, 50);
        QTest::newRow("platform failure") << QStringList{"P+"} << "P-" << true << "animateBannerOff" << QRect(0, 460, 320, 50);
        QTest::newRow("network given the slot back") << QStringList{"P+"} << "P-" << false << "BannerSlide" << QRect(0, 410, 320, 50);
        QTest::newRow("network arrival") << QStringList{} << "N+" << false << "BannerSlide" << QRect(0, 410, 320, 50);
        QTest::newRow("network failure") << QStringList{"N+"} << "N-" << false << "BannerSlide" << QRect(0, 460, 320, 50);
    }
    void slides()
    {
        QFETCH(QStringList, before);
        QFETCH(QString, event);
        QFETCH(bool, movesPlatform);
        QFETCH(QString, name);
        QFETCH(QRect, to);

        Slot slot(QStringLiteral("phone"), true);
        for (const QString &earlier : before)
            slot.send(earlier);
        finishSlides(slot.host.get());
        QWidget *banner = movesPlatform ? static_cast<QWidget *>(slot.platform()) : slot.network();
        const QRect from = banner->geometry();

        slot.send(event);
        QPropertyAnimation *slide = BannerSlide::running(banner);
        QVERIFY(slide);
        QCOMPARE(slide->objectName(), name);
        QCOMPARE(slide->propertyName(), QByteArray("geometry"));
        QCOMPARE(slide->duration(), 200);
        QCOMPARE(slide->startValue().toRect(), from);
        QCOMPARE(slide->endValue().toRect(), to);
        // The banner moves over time, not at once.
        QCOMPARE(banner->geometry(), from);
        QTRY_COMPARE_WITH_TIMEOUT(banner->geometry(), to, 2000);
    }

    void easeInOut_data()
    {
        QTest::addColumn<qreal>("progress");
        QTest::addColumn<qreal>("low");
        QTest::addColumn<qreal>("high");
        QTest::newRow("slow start") << 0.1 << 0.0 << 0.05;
        QTest::newRow("symmetric middle") << 0.5 << 0.49 << 0.51;
        QTest::newRow("slow end") << 0.9 << 0.95 << 1.0;
        QTest::newRow("ends exactly") << 1.0 << 1.0 << 1.0;
    }
    void easeInOut()
    {
        QFETCH(qreal, progress);
        QFETCH(qreal, low);
        QFETCH(qreal, high);
        const qreal value = BannerSlide::curve().valueForProgress(progress);
        QVERIFY2(value >= low - 1e-9 && value <= high + 1e-9, qPrintable(QString::number(value)));
    }

    void slideTakesOverFromWhereTheBannerIs()
    {
        Slot slot(QStringLiteral("phone"), true);
        slot.send(QStringLiteral("N+"));
        QPropertyAnimation *first = BannerSlide::running(slot.network());
        QVERIFY(first);
        first->setCurrentTime(100);
        const QRect midway = slot.network()->geometry();
        QVERIFY2(midway.y() > 410 && midway.y() < 460, qPrintable(QString::number(midway.y())));

        slot.send(QStringLiteral("N-"));
        QPropertyAnimation *second = BannerSlide::running(slot.network());
        QVERIFY(second);
        QVERIFY(second != first);
        QCOMPARE(second->startValue().toRect(), midway);
        QCOMPARE(second->endValue().toRect(), QRect(0, 460, 320, 50));
        finishSlides(slot.host.get());
        QCOMPARE(slot.network()->geometry(), QRect(0, 460, 320, 50));
    }

    void withoutPlatformBanner_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QStringList>("events");
        QTest::addColumn<QRect>("networkFrame");
        QTest::addColumn<QStringList>("posted");
        using L = QStringList;
        QTest::newRow("phone: network arrival") << "phone" << L{"N+"} << QRect(0, 410, 320, 50) << L{"AdMob"};
        QTest::newRow("phone: arrival then failure") << "phone" << L{"N+", "N-"} << QRect(0, 460, 320, 50) << L{"AdMob"};
        QTest::newRow("phone: failure, then a later arrival")
            << "phone" << L{"N-", "N+"} << QRect(0, 410, 320, 50) << L{"AdMob"};
        QTest::newRow("tablet: network arrival") << "tablet" << L{"N+"} << QRect(20, 914, 728, 90) << L{};
    }
    void withoutPlatformBanner()
    {
        QFETCH(QString, device);
        QFETCH(QStringList, events);
        QFETCH(QRect, networkFrame);
        QFETCH(QStringList, posted);

        Slot slot(device, false);
        QVERIFY(!slot.platform());
        QCOMPARE(slot.host->findChildren<ADBannerView *>().size(), 0);
        QCOMPARE(slot.host->findChildren<GADBannerView *>().size(), 1);
        for (const QString &event : events) {
            slot.send(event);
            finishSlides(slot.host.get());
            // Only the platform's callbacks hide the network banner.
            QVERIFY(!slot.network()->isHidden());
        }
        QCOMPARE(slot.network()->geometry(), networkFrame);
        QCOMPARE(slot.postedKinds(), posted);
    }

    void unknownKindUnderThePlatformName()
    {
        QWidget host;
        host.resize(320, 460);
        BannerKinds::add(PlatformKind, [](const QRect &frame) {
            auto *notABanner = new QWidget;
            notABanner->setGeometry(frame);
            return notABanner;
        });
        ADControl control;
        control.addAds(&host, 410);
        QVERIFY(!control.adBanner());
        QCOMPARE(host.findChildren<QWidget *>(Qt::FindDirectChildrenOnly).size(), 1);
    }

    void hideAllAds_data()
    {
        QTest::addColumn<bool>("hidden");
        QTest::newRow("hide both") << true;
        QTest::newRow("show both") << false;
    }
    void hideAllAds()
    {
        QFETCH(bool, hidden);
        Slot slot(QStringLiteral("phone"), true);
        slot.control->hideAllAds(!hidden);
        slot.control->hideAllAds(hidden);
        QCOMPARE(slot.platform()->isHidden(), hidden);
        QCOMPARE(slot.network()->isHidden(), hidden);
        QCOMPARE(slot.control->adHide(), hidden);
        // Hiding is not a move.
        QVERIFY(!BannerSlide::running(slot.network()));
        QCOMPARE(slot.network()->geometry(), QRect(0, 460, 320, 50));
    }

    void hostScreenGoesAway()
    {
        Slot slot(QStringLiteral("phone"), true);
        slot.send(QStringLiteral("P+"));
        slot.host.reset();
        QVERIFY(!slot.control->adBanner());
        QVERIFY(!slot.control->adMobBanner());
        // Callbacks and calls after the host is gone touch nothing.
        slot.control->bannerViewDidLoadAd(nullptr);
        slot.control->bannerView(nullptr, QString());
        slot.control->adViewDidReceiveAd(nullptr);
        slot.control->adView(nullptr, GADRequestError{});
        slot.control->hideAdmob(false);
        slot.control->hideAllAds(true);
    }

    void noHostMakesNoBanners()
    {
        BannerKinds::add(PlatformKind, [](const QRect &frame) { return new ADBannerView(frame); });
        ADControl control;
        control.addAds(nullptr, 410);
        QVERIFY(!control.adBanner());
        QVERIFY(!control.adMobBanner());
        QCOMPARE(control.yPoint(), 410.0f);
    }

    void controllerGoesAway()
    {
        Slot slot(QStringLiteral("phone"), true);
        QPointer<GADBannerView> network = slot.network();
        QPointer<ADBannerView> platform = slot.platform();
        slot.control.reset();
        // The host keeps its banners, which no longer call back.
        QVERIFY(network && platform);
        QCOMPARE(network->delegate(), nullptr);
        QCOMPARE(platform->delegate(), nullptr);
    }

    void sharedInstances()
    {
        constexpr int Callers = 8;
        std::array<ADControl *, Callers> phone{};
        std::array<ADControlForiPad *, Callers> tablet{};
        std::vector<std::thread> callers;
        for (int i = 0; i < Callers; ++i) {
            callers.emplace_back([i, &phone, &tablet] {
                phone[i] = ADControl::defaultsAD();
                tablet[i] = ADControlForiPad::defaultsADForiPad();
            });
        }
        for (std::thread &caller : callers)
            caller.join();
        for (int i = 0; i < Callers; ++i) {
            QCOMPARE(phone[i], ADControl::defaultsAD());
            QCOMPARE(tablet[i], ADControlForiPad::defaultsADForiPad());
        }
        QVERIFY(static_cast<QObject *>(phone[0]) != static_cast<QObject *>(tablet[0]));
        // Made on some other thread, but called back on the application's.
        QCOMPARE(phone[0]->thread(), QCoreApplication::instance()->thread());
        QCOMPARE(tablet[0]->thread(), QCoreApplication::instance()->thread());
    }

    void networkFailureFromTheClientParksTheBanner()
    {
        QWidget host;
        host.resize(320, 460);
        ADControl control;
        QSignalSpy posted(&control, &ADControl::ReceiveAd);
        control.addAds(&host, 410);
        GADBannerView *network = control.adMobBanner();
        network->setServerUrl(QUrl());
        control.adViewDidReceiveAd(network);
        finishSlides(&host);
        QCOMPARE(network->geometry(), QRect(0, 410, 320, 50));

        // The client's own failure, delivered through the event loop, takes it back down.
        network->loadRequest(GADRequest::request());
        QTRY_COMPARE_WITH_TIMEOUT(network->geometry(), QRect(0, 460, 320, 50), 2000);
        QVERIFY(!network->isHidden());
        QCOMPARE(posted.size(), 1);
    }
};

QTEST_MAIN(TestADControl)
#include "tst_adcontrol.moc"
