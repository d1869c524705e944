#include "ModemManagerCarrier.h"

#include "MobileCountryCodes.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QMap>

#include <algorithm>
#include <utility>

namespace {

const QString kService = QStringLiteral("org.freedesktop.ModemManager1");
const QString kManagerPath = QStringLiteral("/org/freedesktop/ModemManager1");
const QString kModemInterface = QStringLiteral("org.freedesktop.ModemManager1.Modem");
const QString kModem3gppInterface = QStringLiteral("org.freedesktop.ModemManager1.Modem.Modem3gpp");
const QString kSimInterface = QStringLiteral("org.freedesktop.ModemManager1.Sim");

using InterfaceProperties = QMap<QString, QVariantMap>;

QVariant unwrap(const QVariant &value)
{
    if (value.canConvert<QDBusVariant>() && value.userType() == qMetaTypeId<QDBusVariant>())
        return value.value<QDBusVariant>().variant();
    return value;
}

QString stringProperty(const QVariantMap &properties, const QString &name)
{
    const QVariant value = unwrap(properties.value(name));
    return value.userType() == QMetaType::QString ? value.toString().trimmed() : QString();
}

bool isDigits(const QString &text)
{
    for (QChar c : text) {
        if (c < u'0' || c > u'9')
            return false;
    }
    return !text.isEmpty();
}

} // namespace

ModemManagerCarrier::ModemManagerCarrier(QDBusConnection connection)
    : _connection(std::move(connection))
{
}

void ModemManagerCarrier::setCallTimeout(int milliseconds)
{
    _callTimeout = milliseconds;
}

std::optional<CarrierInfo> ModemManagerCarrier::fromSystemBus()
{
    return ModemManagerCarrier(QDBusConnection::systemBus()).carrier();
}

namespace {

// Every object ModemManager exports, with its interfaces' properties, sorted by path.
QMap<QString, InterfaceProperties> managedObjects(const QDBusConnection &connection, int callTimeout)
{
    QMap<QString, InterfaceProperties> objects;
    if (!connection.isConnected())
        return objects;
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kManagerPath,
                                                       QStringLiteral("org.freedesktop.DBus.ObjectManager"),
                                                       QStringLiteral("GetManagedObjects"));
    // Do not start ModemManager on demand just to ask it.
    call.setAutoStartService(false);
    const QDBusMessage reply = connection.call(call, QDBus::Block, callTimeout);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return objects;
    const QVariant payload = reply.arguments().constFirst();
    if (payload.userType() != qMetaTypeId<QDBusArgument>())
        return objects;
    const QDBusArgument argument = payload.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("a{oa{sa{sv}}}"))
        return objects;
    argument.beginMap();
    while (!argument.atEnd()) {
        QDBusObjectPath path;
        InterfaceProperties interfaces;
        argument.beginMapEntry();
        argument >> path >> interfaces;
        argument.endMapEntry();
        objects.insert(path.path(), interfaces);
    }
    argument.endMap();
    return objects;
}

// ModemManager's access technology bits, newest first, by the names mmcli gives them.
QString accessTechnology(uint bits)
{
    static constexpr std::pair<uint, const char *> names[] = {
        {1u << 17, "lte-nb-iot"}, {1u << 16, "lte-cat-m"}, {1u << 15, "5gnr"},  {1u << 14, "lte"},
        {1u << 13, "evdob"},      {1u << 12, "evdoa"},     {1u << 11, "evdo0"}, {1u << 10, "1xrtt"},
        {1u << 9, "hspa-plus"},   {1u << 8, "hspa"},       {1u << 7, "hsupa"},  {1u << 6, "hsdpa"},
        {1u << 5, "umts"},        {1u << 4, "edge"},       {1u << 3, "gprs"},   {1u << 2, "gsm-compact"},
        {1u << 1, "gsm"},         {1u << 0, "pots"}};
    for (const auto &[bit, name] : names) {
        if (bits & bit)
            return QLatin1String(name);
    }
    return QStringLiteral("unknown");
}

} // namespace

std::optional<ModemManagerCarrier::Signal> ModemManagerCarrier::signal() const
{
    const QMap<QString, InterfaceProperties> objects = managedObjects(_connection, _callTimeout);
    for (auto it = objects.cbegin(); it != objects.cend(); ++it) {
        if (!it->contains(kModemInterface))
            continue;
        const QVariantMap modem = it->value(kModemInterface);
        // SignalQuality is (ub): percent, and whether the figure is recent.
        const QVariant quality = unwrap(modem.value(QStringLiteral("SignalQuality")));
        if (quality.userType() != qMetaTypeId<QDBusArgument>())
            return std::nullopt;
        const QDBusArgument argument = quality.value<QDBusArgument>();
        if (argument.currentSignature() != QLatin1String("(ub)"))
            return std::nullopt;
        uint percent = 0;
        bool recent = false;
        argument.beginStructure();
        argument >> percent >> recent;
        argument.endStructure();
        const QVariant technologies = unwrap(modem.value(QStringLiteral("AccessTechnologies")));
        return Signal{double(std::min(percent, 100u)) / 100.0,
                      accessTechnology(technologies.userType() == QMetaType::UInt ? technologies.toUInt() : 0)};
    }
    return std::nullopt;
}

std::optional<CarrierInfo> ModemManagerCarrier::carrier() const
{
    const QMap<QString, InterfaceProperties> objects = managedObjects(_connection,
                                                                      _callTimeout); // the first modem wins
    for (auto it = objects.cbegin(); it != objects.cend(); ++it) {
        const InterfaceProperties &interfaces = it.value();
        if (!interfaces.contains(kModemInterface))
            continue;
        const QVariantMap gpp = interfaces.value(kModem3gppInterface);
        QString code = stringProperty(gpp, QStringLiteral("OperatorCode"));
        QString name = stringProperty(gpp, QStringLiteral("OperatorName"));

        const QVariant simValue = unwrap(interfaces.value(kModemInterface).value(QStringLiteral("Sim")));
        const QString simPath = simValue.value<QDBusObjectPath>().path();
        if ((code.isEmpty() || name.isEmpty()) && !simPath.isEmpty() && simPath != u"/") {
            QDBusMessage getAll = QDBusMessage::createMethodCall(
                kService, simPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"));
            getAll << kSimInterface;
            getAll.setAutoStartService(false);
            const QDBusMessage simReply = _connection.call(getAll, QDBus::Block, _callTimeout);
            if (simReply.type() == QDBusMessage::ReplyMessage && !simReply.arguments().isEmpty()) {
                QVariantMap sim;
                const QVariant simPayload = simReply.arguments().constFirst();
                if (simPayload.userType() == qMetaTypeId<QDBusArgument>()
                    && simPayload.value<QDBusArgument>().currentSignature() == QLatin1String("a{sv}")) {
                    simPayload.value<QDBusArgument>() >> sim;
                }
                if (code.isEmpty())
                    code = stringProperty(sim, QStringLiteral("OperatorIdentifier"));
                if (name.isEmpty())
                    name = stringProperty(sim, QStringLiteral("OperatorName"));
            }
        }
        if (code.isEmpty() && name.isEmpty())
            continue;

        CarrierInfo carrier;
        carrier.carrierName = name;
        // MCC is three digits, MNC the two or three after it.
        if (isDigits(code) && (code.size() == 5 || code.size() == 6)) {
            carrier.mobileCountryCode = code.left(3);
            carrier.mobileNetworkCode = code.mid(3);
            carrier.isoCountryCode = MobileCountryCodes::isoCountryCode(carrier.mobileCountryCode);
        }
        return carrier;
    }
    return std::nullopt;
}
