#include "MetricsServer.h"

#include "Device.h"
#include "MetricsListener.h"
#include "StatCore.h"

#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QTcpSocket>

namespace {

constexpr qint64 cacheMs = 500;
// The device's names change with a rename at most; reading them is most of a sample's cost.
constexpr qint64 deviceInfoMs = 60'000;

using Status = QHttpServerResponder::StatusCode;

const QByteArray indexPage = QByteArrayLiteral(
    "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>KOVAR metrics</title></head>\n"
    "<body><h1>KOVAR metrics</h1><p>The figures of this device for Prometheus: <a href=\"/metrics\">/metrics</a></p>"
    "</body></html>\n");

MetricsExposition::BatteryState batteryState(Device::BatteryState state)
{
    switch (state) {
    case Device::BatteryStateUnplugged:
        return MetricsExposition::BatteryState::Unplugged;
    case Device::BatteryStateCharging:
        return MetricsExposition::BatteryState::Charging;
    case Device::BatteryStateFull:
        return MetricsExposition::BatteryState::Full;
    case Device::BatteryStateUnknown:
        break;
    }
    return MetricsExposition::BatteryState::Unknown;
}

} // namespace

MetricsServer::MetricsServer(StatCore &core, Device *device, QObject *parent)
    : QAbstractHttpServer(parent)
    , _core(core)
    , _device(device)
{
    if (_device)
        _device->setBatteryMonitoringEnabled(true);
}

MetricsServer::~MetricsServer() = default;

bool MetricsServer::start(const QHostAddress &address, quint16 port, const MetricsListener::Limits &limits)
{
    auto *listener = new MetricsListener(limits, this);
    if (!listener->listen(address, port)) {
        _error = listener->errorString();
        delete listener;
        return false;
    }
    _listener = listener;
    bind(listener);
    return true;
}

QString MetricsServer::target() const
{
    if (!_listener)
        return {};
    const QHostAddress address = _listener->serverAddress();
    const QString host = address.protocol() == QAbstractSocket::IPv6Protocol
        ? QLatin1Char('[') + address.toString() + QLatin1Char(']')
        : address.toString();
    return host + QLatin1Char(':') + QString::number(_listener->serverPort());
}

bool MetricsServer::handleRequest(const QHttpServerRequest &request, QTcpSocket *socket)
{
    QHttpServerResponder responder = makeResponder(request, socket);
    const QHttpServerRequest::Method method = request.method();
    if (method != QHttpServerRequest::Method::Get && method != QHttpServerRequest::Method::Head) {
        responder.write(QByteArrayLiteral("Only GET and HEAD are served here.\n"),
                        {{"Content-Type", "text/plain; charset=utf-8"}, {"Allow", "GET, HEAD"}},
                        Status::MethodNotAllowed);
        return true;
    }

    const QString path = request.url().path();
    QByteArray type = QByteArrayLiteral("text/html; charset=utf-8");
    QByteArray body;
    if (path == QLatin1String("/metrics")) {
        const MetricsExposition::Format format = MetricsExposition::negotiate(request.value("Accept"));
        type = MetricsExposition::contentType(format);
        body = metrics(format);
    } else if (path == QLatin1String("/") || path.isEmpty()) {
        body = indexPage;
    } else {
        responder.write(QByteArrayLiteral("Not found: the figures are at /metrics.\n"), "text/plain; charset=utf-8",
                        Status::NotFound);
        return true;
    }

    if (method == QHttpServerRequest::Method::Head) {
        // The headers of the GET, the body's length included, and no body.
        responder.writeStatusLine(Status::Ok);
        responder.writeHeaders({{"Content-Type", type},
                                {"Cache-Control", "no-store"},
                                {"Content-Length", QByteArray::number(body.size())}});
        responder.writeBody(QByteArray());
        return true;
    }
    responder.write(body, {{"Content-Type", type}, {"Cache-Control", "no-store"}}, Status::Ok);
    return true;
}

// Never called: handleRequest answers every request, unknown paths included.
void MetricsServer::missingHandler(const QHttpServerRequest &request, QTcpSocket *socket)
{
    makeResponder(request, socket).write(Status::NotFound);
}

const QByteArray &MetricsServer::metrics(MetricsExposition::Format format)
{
    CachedBody &cached = _cache[format == MetricsExposition::Format::OpenMetrics ? 1 : 0];
    if (cached.age.isValid() && cached.age.elapsed() < cacheMs)
        return cached.body;
    MetricsExposition::Sample sample = MetricsExposition::sample(_core);
    if (!_deviceInfoAge.isValid() || _deviceInfoAge.elapsed() >= deviceInfoMs) {
        _deviceInfo = MetricsExposition::deviceInfo(_core);
        _deviceInfoAge.start();
    }
    sample.deviceInfo = _deviceInfo;
    if (_device) {
        sample.batteryLevel = _device->batteryLevel();
        sample.batteryState = batteryState(_device->batteryState());
    }
    cached.body = MetricsExposition::render(sample, format);
    cached.age.start();
    return cached.body;
}
