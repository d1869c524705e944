#include "FixtureTree.h"
#include "ModemManagerCarrier.h"
#include "PrivateBus.h"

#include <QDBusObjectPath>

namespace {

const QString kService = QStringLiteral("org.freedesktop.ModemManager1");
const QString kManagerPath = QStringLiteral("/org/freedesktop/ModemManager1");

} // namespace

class TestModemManagerCarrier : public QObject {
    Q_OBJECT

    PrivateBus bus;
    QStringList objects; // what the current row added to the mock

private Q_SLOTS:
    void withoutModemManager()
    {
        QVERIFY(!ModemManagerCarrier(QDBusConnection(QStringLiteral("never connected"))).carrier());
        QVERIFY(!ModemManagerCarrier(bus.connection()).carrier()); // not started on demand either
        QVERIFY(bus.startMock(kService, {"--system", "--is-object-manager", kService, kManagerPath, kService}));
    }

    void carrier_data() { FixtureTree::addRows("carrier.tsv", {"modems", "expected"}); }
    void carrier()
    {
        QFETCH(QString, modems);
        QFETCH(QString, expected);
        for (const QString &path : std::as_const(objects))
            QVERIFY(bus.callMock(kManagerPath, QStringLiteral("RemoveObject"), {path}));
        objects.clear();
        const auto add = [this](const QString &path, const QString &interface, const QVariantMap &properties) {
            objects << path;
            return bus.callMock(kManagerPath, QStringLiteral("AddObject"),
                                {path, kService + interface, properties, QVariantList()});
        };
        const QStringList list = modems.split(u';', Qt::SkipEmptyParts);
        for (qsizetype i = 0; i < list.size(); ++i) {
            const QStringList f = list[i].split(u'|');
            const QString modem = kManagerPath + QStringLiteral("/Modem/%1").arg(i);
            const QString sim = f.size() > 2 ? kManagerPath + QStringLiteral("/SIM/%1").arg(i) : QStringLiteral("/");
            QVERIFY(add(modem, QStringLiteral(".Modem"), {{"Sim", QVariant::fromValue(QDBusObjectPath(sim))}}));
            QVERIFY(bus.callMock(
                modem, QStringLiteral("AddProperties"),
                {kService + ".Modem.Modem3gpp", QVariantMap{{"OperatorCode", f[0]}, {"OperatorName", f[1]}}}));
            QVERIFY(f.size() < 3
                    || add(sim, QStringLiteral(".Sim"), {{"OperatorIdentifier", f[2]}, {"OperatorName", f[3]}}));
        }
        const std::optional<CarrierInfo> carrier = ModemManagerCarrier(bus.connection()).carrier();
        QCOMPARE(carrier ? QStringList({carrier->carrierName, carrier->mobileCountryCode, carrier->mobileNetworkCode,
                                        carrier->isoCountryCode})
                               .join(u'|')
                         : QString(),
                 expected);
        QVERIFY(!carrier || !carrier->allowsVOIP);
    }

    void signal_data() { FixtureTree::addRows("modem-signal.tsv", {"quality", "technologies", "expected"}); }
    void signal()
    {
        QFETCH(QString, quality);
        QFETCH(QString, technologies);
        QFETCH(QString, expected);
        for (const QString &path : std::as_const(objects))
            QVERIFY(bus.callMock(kManagerPath, QStringLiteral("RemoveObject"), {path}));
        objects.clear();
        if (quality != u"-") {
            QDBusArgument pair;
            pair.beginStructure();
            pair << quality.toUInt() << true;
            pair.endStructure();
            objects << kManagerPath + QStringLiteral("/Modem/0");
            QVERIFY(bus.callMock(kManagerPath, QStringLiteral("AddObject"),
                                 {objects.last(), kService + QStringLiteral(".Modem"),
                                  QVariantMap{{"SignalQuality", QVariant::fromValue(pair)},
                                              {"AccessTechnologies", technologies.toUInt()}},
                                  QVariantList()}));
        }
        const auto signal = ModemManagerCarrier(bus.connection()).signal();
        QCOMPARE(signal ? QStringLiteral("%1 %2").arg(signal->quality).arg(signal->accessTechnology) : QString(),
                 expected);
    }
};

QTEST_GUILESS_MAIN(TestModemManagerCarrier)
#include "tst_modemmanagercarrier.moc"
