#include "ModemManagerCarrier.h"
#include "NetworkInfoReader.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

// dbusmock's AddObject takes the object's methods as a(ssss).
struct MockMethod {
    QString name;
    QString inSignature;
    QString outSignature;
    QString code;
};
Q_DECLARE_METATYPE(MockMethod)

QDBusArgument &operator<<(QDBusArgument &argument, const MockMethod &method)
{
    argument.beginStructure();
    argument << method.name << method.inSignature << method.outSignature << method.code;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, MockMethod &method)
{
    argument.beginStructure();
    argument >> method.name >> method.inSignature >> method.outSignature >> method.code;
    argument.endStructure();
    return argument;
}

namespace {

const QString kService = QStringLiteral("org.freedesktop.ModemManager1");
const QString kManagerPath = QStringLiteral("/org/freedesktop/ModemManager1");
const QString kMockInterface = QStringLiteral("org.freedesktop.DBus.Mock");

// One modem as the test describes it; an empty simOperator means no SIM object.
struct ModemSpec {
    QString operatorCode;
    QString operatorName;
    QString simOperator;
    QString simName;
};

} // namespace

using ModemList = QList<ModemSpec>;
Q_DECLARE_METATYPE(ModemList)

class TestModemManagerCarrier : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void noBusAtAll();
    void busWithoutModemManager();
    void carrier_data();
    void carrier();
    void carrierRowsFromTheBus();

private:
    bool startModemManagerMock(const ModemList &modems);
    void stopModemManagerMock();
    bool callMock(const QString &path, const QString &method, const QVariantList &arguments);

    QProcess m_bus;
    QProcess m_mock;
    QString m_address;
    QDBusConnection m_connection{QStringLiteral("unset")};
};

void TestModemManagerCarrier::initTestCase()
{
    qDBusRegisterMetaType<MockMethod>();
    qDBusRegisterMetaType<QList<MockMethod>>();

    if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty())
        QSKIP("dbus-daemon is not installed");
    QProcess probe;
    probe.start(QStringLiteral("/usr/bin/python3"), {QStringLiteral("-c"), QStringLiteral("import dbusmock")});
    if (!probe.waitForFinished(20000) || probe.exitStatus() != QProcess::NormalExit || probe.exitCode() != 0)
        QSKIP("python3-dbusmock is not installed");

    // A private bus of our own: the machine's buses are never touched.
    m_bus.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                QStringLiteral("--nopidfile"), QStringLiteral("--print-address")});
    QVERIFY(m_bus.waitForStarted(10000));
    for (int i = 0; i < 100 && !m_bus.canReadLine(); ++i)
        m_bus.waitForReadyRead(100);
    m_address = QString::fromUtf8(m_bus.readLine()).trimmed();
    QVERIFY2(!m_address.isEmpty(), "dbus-daemon printed no address");
    m_connection = QDBusConnection::connectToBus(m_address, QStringLiteral("kovar-test-bus"));
    QVERIFY(m_connection.isConnected());
}

void TestModemManagerCarrier::cleanupTestCase()
{
    stopModemManagerMock();
    QDBusConnection::disconnectFromBus(QStringLiteral("kovar-test-bus"));
    if (m_bus.state() != QProcess::NotRunning) {
        m_bus.terminate();
        if (!m_bus.waitForFinished(5000))
            m_bus.kill();
        m_bus.waitForFinished(5000);
    }
}

bool TestModemManagerCarrier::callMock(const QString &path, const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(kService, path, kMockInterface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = m_connection.call(message, QDBus::Block, 10000);
    if (reply.type() != QDBusMessage::ReplyMessage)
        qWarning("mock call %s failed: %s", qPrintable(method), qPrintable(reply.errorMessage()));
    return reply.type() == QDBusMessage::ReplyMessage;
}

bool TestModemManagerCarrier::startModemManagerMock(const ModemList &modems)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_address);
    m_mock.setProcessEnvironment(environment);
    m_mock.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_mock.start(QStringLiteral("/usr/bin/python3"),
                 {QStringLiteral("-m"), QStringLiteral("dbusmock"), QStringLiteral("--session"),
                  QStringLiteral("--is-object-manager"), kService, kManagerPath, kService});
    if (!m_mock.waitForStarted(10000))
        return false;
    bool registered = false;
    for (int i = 0; i < 200 && !registered; ++i) {
        registered = m_connection.interface()->isServiceRegistered(kService);
        if (!registered)
            QTest::qWait(50);
    }
    if (!registered)
        return false;

    const QVariant noMethods = QVariant::fromValue(QList<MockMethod>{});
    for (int i = 0; i < modems.size(); ++i) {
        const ModemSpec &modem = modems.at(i);
        const QString modemPath = kManagerPath + QStringLiteral("/Modem/") + QString::number(i);
        const QString simPath = kManagerPath + QStringLiteral("/SIM/") + QString::number(i);
        const bool hasSim = !modem.simOperator.isNull();
        const QVariantMap modemProperties{
            {QStringLiteral("Sim"), QVariant::fromValue(QDBusObjectPath(hasSim ? simPath : QStringLiteral("/")))},
            {QStringLiteral("Manufacturer"), QStringLiteral("Quectel")}};
        if (!callMock(kManagerPath, QStringLiteral("AddObject"),
                      {modemPath, QStringLiteral("org.freedesktop.ModemManager1.Modem"), modemProperties, noMethods})) {
            return false;
        }
        const QVariantMap gpp{{QStringLiteral("OperatorCode"), modem.operatorCode},
                              {QStringLiteral("OperatorName"), modem.operatorName}};
        if (!callMock(modemPath, QStringLiteral("AddProperties"),
                      {QStringLiteral("org.freedesktop.ModemManager1.Modem.Modem3gpp"), gpp})) {
            return false;
        }
        if (hasSim) {
            const QVariantMap sim{{QStringLiteral("OperatorIdentifier"), modem.simOperator},
                                  {QStringLiteral("OperatorName"), modem.simName}};
            if (!callMock(kManagerPath, QStringLiteral("AddObject"),
                          {simPath, QStringLiteral("org.freedesktop.ModemManager1.Sim"), sim, noMethods})) {
                return false;
            }
        }
    }
    return true;
}

void TestModemManagerCarrier::stopModemManagerMock()
{
    if (m_mock.state() == QProcess::NotRunning)
        return;
    m_mock.terminate();
    if (!m_mock.waitForFinished(5000))
        m_mock.kill();
    m_mock.waitForFinished(5000);
    // Wait for the bus to notice, so the next row starts from a bus without the name.
    for (int i = 0; i < 100 && m_connection.interface()->isServiceRegistered(kService); ++i)
        QTest::qWait(50);
}

void TestModemManagerCarrier::noBusAtAll()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString address = QStringLiteral("unix:path=") + dir.filePath(QStringLiteral("no-bus-here"));
    const QDBusConnection missing = QDBusConnection::connectToBus(address, QStringLiteral("kovar-no-bus"));
    QVERIFY(!missing.isConnected());
    QVERIFY(!ModemManagerCarrier(missing).carrier().has_value());
    QDBusConnection::disconnectFromBus(QStringLiteral("kovar-no-bus"));
}

void TestModemManagerCarrier::busWithoutModemManager()
{
    QVERIFY(!m_connection.interface()->isServiceRegistered(kService));
    ModemManagerCarrier carrier(m_connection);
    carrier.setCallTimeout(3000);
    QElapsedTimer clock;
    clock.start();
    QVERIFY(!carrier.carrier().has_value());
    // Not started on demand and not waited for.
    QVERIFY(clock.elapsed() < 3000);
}

void TestModemManagerCarrier::carrier_data()
{
    QTest::addColumn<ModemList>("modems");
    QTest::addColumn<bool>("expectCarrier");
    QTest::addColumn<QStringList>("expected");   // name, MCC, MNC, ISO

    QTest::newRow("registered: 3GPP operator code and name")
        << ModemList{{"310260", "T-Mobile", QString(), QString()}} << true
        << QStringList{"T-Mobile", "310", "260", "us"};
    QTest::newRow("three-digit MNC") << ModemList{{"310410", "AT&T", QString(), QString()}} << true
                                     << QStringList{"AT&T", "310", "410", "us"};
    QTest::newRow("not registered: the SIM's operator")
        << ModemList{{"", "", "23415", "Vodafone UK"}} << true << QStringList{"Vodafone UK", "234", "15", "gb"};
    QTest::newRow("registration wins over the SIM")
        << ModemList{{"26201", "Telekom.de", "26202", "Vodafone.de"}} << true
        << QStringList{"Telekom.de", "262", "01", "de"};
    QTest::newRow("test network: no country") << ModemList{{"00101", "Test", QString(), QString()}} << true
                                              << QStringList{"Test", "001", "01", ""};
    QTest::newRow("name without a usable code") << ModemList{{"12", "Odd", QString(), QString()}} << true
                                                << QStringList{"Odd", "", "", ""};
    QTest::newRow("modem without SIM or operator") << ModemList{{"", "", QString(), QString()}} << false
                                                   << QStringList{};
    QTest::newRow("manager without modems") << ModemList{} << false << QStringList{};
    QTest::newRow("first modem idle, second registered")
        << ModemList{{"", "", QString(), QString()}, {"20801", "Orange F", QString(), QString()}} << true
        << QStringList{"Orange F", "208", "01", "fr"};
}

void TestModemManagerCarrier::carrier()
{
    QFETCH(ModemList, modems);
    QFETCH(bool, expectCarrier);
    QFETCH(QStringList, expected);

    if (!m_connection.isConnected())
        QSKIP("no private bus");
    QVERIFY(startModemManagerMock(modems));
    const std::optional<CarrierInfo> carrier = ModemManagerCarrier(m_connection).carrier();
    stopModemManagerMock();

    QCOMPARE(carrier.has_value(), expectCarrier);
    if (!carrier)
        return;
    QCOMPARE(carrier->carrierName, expected.at(0));
    QCOMPARE(carrier->mobileCountryCode, expected.at(1));
    QCOMPARE(carrier->mobileNetworkCode, expected.at(2));
    QCOMPARE(carrier->isoCountryCode, expected.at(3));
    QVERIFY(!carrier->allowsVOIP);
}

void TestModemManagerCarrier::carrierRowsFromTheBus()
{
    if (!m_connection.isConnected())
        QSKIP("no private bus");
    QVERIFY(startModemManagerMock({{"310260", "T-Mobile", QString(), QString()}}));
    NetworkInfoReader::Seams seams = NetworkInfoReader::hostSeams();
    seams.carrier = [this] { return ModemManagerCarrier(m_connection).carrier(); };
    seams.hostName = [] { return std::optional<QString>(QStringLiteral("kovar-test")); };
    seams.resolveIPv4 = [](const QString &) { return NetworkInfoReader::Resolution{QStringLiteral("10.0.0.5"), {}}; };
    QTemporaryDir emptyRoot;
    QVERIFY(emptyRoot.isValid());
    NetworkInfoReader reader(emptyRoot.path(), seams);
    QTest::ignoreMessage(QtWarningMsg, "Error: if_nametoindex error");
    const InfoSection cell = reader.networkInfo().section(QStringLiteral("CellInfo"));
    stopModemManagerMock();

    QCOMPARE(cell.size(), 7);
    QCOMPARE(cell.at(2), (InfoRow{QStringLiteral("Carrier Name"), QStringLiteral("T-Mobile")}));
    QCOMPARE(cell.at(3), (InfoRow{QStringLiteral("MCC"), QStringLiteral("310")}));
    QCOMPARE(cell.at(4), (InfoRow{QStringLiteral("MNC"), QStringLiteral("260")}));
    QCOMPARE(cell.at(5), (InfoRow{QStringLiteral("Country Code"), QStringLiteral("us")}));
    QCOMPARE(cell.at(6), (InfoRow{QStringLiteral("Allows VOIP"), QStringLiteral("NO")}));
}

QTEST_GUILESS_MAIN(TestModemManagerCarrier)
#include "tst_modemmanagercarrier.moc"
