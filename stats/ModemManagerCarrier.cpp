#include "ModemManagerCarrier.h"

#include "MobileCountryCodes.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QMap>

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

std::optional<CarrierInfo> ModemManagerCarrier::carrier() const
{
    if (!_connection.isConnected())
        return std::nullopt;

    QDBusMessage call = QDBusMessage::createMethodCall(kService, kManagerPath,
                                                       QStringLiteral("org.freedesktop.DBus.ObjectManager"),
                                                       QStringLiteral("GetManagedObjects"));
    // Do not start ModemManager on demand just to ask it.
    call.setAutoStartService(false);
    const QDBusMessage reply = _connection.call(call, QDBus::Block, _callTimeout);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return std::nullopt;
    const QVariant payload = reply.arguments().constFirst();
    if (payload.userType() != qMetaTypeId<QDBusArgument>())
        return std::nullopt;

    QMap<QString, InterfaceProperties> objects; // sorted by path: the first modem wins
    const QDBusArgument argument = payload.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("a{oa{sa{sv}}}"))
        return std::nullopt;
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
