#include "MetricsServer.h"

#include "Device.h"
#include "StatCore.h"

#include <QSocketNotifier>
#include <QTimer>

#include <gnutls/gnutls.h>
#include <microhttpd.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

namespace {

constexpr qint64 cacheMs = 500;
// The device's names change with a rename at most; reading them is most of a sample's cost.
constexpr qint64 deviceInfoMs = 60'000;
// The modem's signal comes over the system bus: asked at most this often, and briefly.
constexpr qint64 modemMs = 10'000;
constexpr int modemCallMs = 250;
// libmicrohttpd's own ceiling, far above ours: ours closes the oldest idle one instead of
// turning the newcomer away.
constexpr unsigned acceptLimit = 512;
// The request line and headers together; libmicrohttpd's own buffer (half of a connection's
// memory) is the hard limit behind this one.
constexpr qint64 headerBytes = 16 * 1024;

const char indexPage[] =
    "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>KOVAR metrics</title></head>\n"
    "<body><h1>KOVAR metrics</h1><p>The figures of this device for Prometheus: <a href=\"/metrics\">/metrics</a></p>"
    "</body></html>\n";

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

MHD_Response *textResponse(const char *text, const char *type = "text/plain; charset=utf-8")
{
    MHD_Response *response = MHD_create_response_from_buffer(std::strlen(text), const_cast<char *>(text),
                                                             MHD_RESPMEM_PERSISTENT);
    MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, type);
    return response;
}

bool queue(MHD_Connection *connection, unsigned status, MHD_Response *response, bool close = false)
{
    if (close)
        MHD_add_response_header(response, MHD_HTTP_HEADER_CONNECTION, "close");
    const bool queued = MHD_queue_response(connection, status, response) == MHD_YES;
    MHD_destroy_response(response); // the connection keeps its own reference
    return queued;
}

// What the request's headers hold, as far as the checks below need.
struct HeaderFacts {
    qint64 bytes = 0;
    int contentLengths = 0;
    bool lengthsDisagree = false;
    QByteArray contentLength;
    bool host = false;

    static MHD_Result add(void *facts, MHD_ValueKind, const char *key, const char *value)
    {
        auto *self = static_cast<HeaderFacts *>(facts);
        const QByteArray name(key);
        self->bytes += name.size() + qint64(value ? std::strlen(value) : 0) + 4; // ": " and CRLF
        if (name.compare("Content-Length", Qt::CaseInsensitive) == 0) {
            self->lengthsDisagree |= ++self->contentLengths > 1 && self->contentLength != value;
            self->contentLength = value;
        }
        self->host |= name.compare("Host", Qt::CaseInsensitive) == 0;
        return MHD_YES;
    }
};

// A client certificate was presented and checks out against the configured CA.
bool verifiedClient(MHD_Connection *connection)
{
    const MHD_ConnectionInfo *info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_GNUTLS_SESSION);
    auto session = info ? static_cast<gnutls_session_t>(info->tls_session) : nullptr;
    unsigned count = 0;
    unsigned status = 0;
    return session && gnutls_certificate_get_peers(session, &count) && count > 0
        && gnutls_certificate_verify_peers2(session, &status) == GNUTLS_E_SUCCESS && status == 0;
}

bool authorized(const WebConfig &web, MHD_Connection *connection)
{
    char *password = nullptr;
    char *user = MHD_basic_auth_get_username_password(connection, &password);
    const bool ok = user && password && web.passwordMatches(QByteArray(user), QByteArray(password));
    MHD_free(user);
    MHD_free(password);
    return ok;
}

// A request refused with status and closed: what RFC 9112 asks of a server that will not
// read on in a request it cannot make sense of.
MHD_Result refuse(MHD_Connection *connection, unsigned status, const char *why)
{
    return queue(connection, status, textResponse(why), true) ? MHD_YES : MHD_NO;
}

} // namespace

struct MetricsServer::Connection {
    enum Phase { Waiting, Answering, Idle };
    int fd = -1;
    qint64 since = 0; // when the request it waits for began: the connection, or its first line
    Phase phase = Waiting;
    bool answeredBefore = false;
    bool headersSeen = false;
    bool ending = false; // cut, and not yet closed by libmicrohttpd
    qint64 bodyBytes = 0;

    // Ends the connection from our side; libmicrohttpd sees it end and cleans up.
    void cut()
    {
        ::shutdown(fd, SHUT_RDWR);
        ending = true;
    }
};

struct MetricsServer::Callbacks {
    static MHD_Result answer(void *server, MHD_Connection *connection, const char *url, const char *method,
                             const char *version, const char *, size_t *uploadSize, void **request)
    {
        auto *self = static_cast<MetricsServer *>(server);
        auto *state = static_cast<Connection *>(*request);
        if (!state->headersSeen) {
            state->headersSeen = true;
            state->phase = Connection::Answering;
            HeaderFacts headers;
            MHD_get_connection_values(connection, MHD_HEADER_KIND, &HeaderFacts::add, &headers);
            if (headers.bytes + qint64(std::strlen(url)) > headerBytes)
                return refuse(connection, MHD_HTTP_REQUEST_HEADER_FIELDS_TOO_LARGE,
                              "The request's headers are too large.\n");
            if (std::strcmp(version, MHD_HTTP_VERSION_1_1) == 0 && !headers.host)
                return refuse(connection, MHD_HTTP_BAD_REQUEST, "An HTTP/1.1 request names its Host.\n");
            if (headers.lengthsDisagree)
                return refuse(connection, MHD_HTTP_BAD_REQUEST, "The request's Content-Lengths disagree.\n");
            if (self->_web.clientAuth == WebConfig::ClientAuth::RequireAndVerifyClientCert
                && !verifiedClient(connection))
                return refuse(connection, MHD_HTTP_FORBIDDEN, "A client certificate signed by our CA is required.\n");
            if (self->_web.hasUsers() && !authorized(self->_web, connection)) {
                MHD_Response *response = textResponse("A user and password are required.\n");
                const MHD_Result queued = MHD_queue_basic_auth_fail_response(connection, "kovar", response);
                MHD_destroy_response(response);
                return queued;
            }
            // A GET or HEAD with a body announced past the limit is refused before it is read.
            if (headers.contentLengths > 0 && headers.contentLength.toLongLong() > self->_limits.bodyBytes)
                return refuse(connection, MHD_HTTP_CONTENT_TOO_LARGE, "The request's body is too large.\n");
            return MHD_YES; // the body, if any, and then the answer
        }
        if (*uploadSize > 0) {
            state->bodyBytes += qint64(*uploadSize);
            *uploadSize = 0;
            if (state->bodyBytes > self->_limits.bodyBytes)
                return refuse(connection, MHD_HTTP_CONTENT_TOO_LARGE, "The request's body is too large.\n");
            return MHD_YES;
        }
        return self->respond(connection, state, url, method) ? MHD_YES : MHD_NO;
    }

    static void *requestLine(void *server, const char *, MHD_Connection *connection)
    {
        auto *self = static_cast<MetricsServer *>(server);
        const MHD_ConnectionInfo *info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT);
        auto *state = static_cast<Connection *>(info->socket_context);
        // The first request's time runs from the connection; a later one's from its first line.
        if (state->answeredBefore)
            state->since = self->_clock.elapsed();
        state->phase = Connection::Waiting;
        state->headersSeen = false;
        state->bodyBytes = 0;
        return state;
    }

    static void requestDone(void *, MHD_Connection *, void **request, MHD_RequestTerminationCode)
    {
        if (auto *state = static_cast<Connection *>(*request)) {
            state->phase = Connection::Idle;
            state->answeredBefore = true;
        }
    }

    static void connectionChanged(void *server, MHD_Connection *connection, void **context,
                                  MHD_ConnectionNotificationCode change)
    {
        auto *self = static_cast<MetricsServer *>(server);
        if (change == MHD_CONNECTION_NOTIFY_STARTED) {
            auto *state = new Connection;
            state->fd = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd;
            state->since = self->_clock.elapsed();
            *context = state;
            self->opened(state);
        } else if (auto *state = static_cast<Connection *>(*context)) {
            self->_connections.removeOne(state);
            delete state;
            *context = nullptr;
        }
    }
};

MetricsServer::MetricsServer(StatCore &core, Device *device, QObject *parent)
    : QObject(parent)
    , _core(core)
    , _fileSystems(core.rootDir())
    , _device(device)
{
    if (_device)
        _device->setBatteryMonitoringEnabled(true);
    _clock.start();
}

MetricsServer::~MetricsServer()
{
    if (_daemon)
        MHD_stop_daemon(_daemon); // closes every connection, each one through connectionChanged
    for (CachedBody &cached : _cache) {
        if (cached.response)
            MHD_destroy_response(cached.response);
    }
}

bool MetricsServer::start(const QHostAddress &address, quint16 port)
{
    return start(address, port, Limits());
}

bool MetricsServer::start(const QHostAddress &address, quint16 port, const Limits &limits, const WebConfig &web)
{
    _limits = limits;
    _web = web;
    sockaddr_storage socketAddress{};
    if (address.protocol() == QAbstractSocket::IPv6Protocol) {
        auto *in6 = reinterpret_cast<sockaddr_in6 *>(&socketAddress);
        in6->sin6_family = AF_INET6;
        in6->sin6_port = htons(port);
        const Q_IPV6ADDR bytes = address.toIPv6Address();
        std::memcpy(&in6->sin6_addr, bytes.c, sizeof bytes.c);
    } else if (address.protocol() == QAbstractSocket::IPv4Protocol) {
        auto *in4 = reinterpret_cast<sockaddr_in *>(&socketAddress);
        in4->sin_family = AF_INET;
        in4->sin_port = htons(port);
        in4->sin_addr.s_addr = htonl(address.toIPv4Address());
    } else {
        _error = QStringLiteral("not an IPv4 or IPv6 address");
        return false;
    }
    _daemon = startDaemon(&socketAddress, -1);
    if (!_daemon) {
        _error = QString::fromLocal8Bit(std::strerror(errno ? errno : EADDRNOTAVAIL));
        return false;
    }
    _address = address;
    _port = MHD_get_daemon_info(_daemon, MHD_DAEMON_INFO_BIND_PORT)->port;
    _listenFd = MHD_get_daemon_info(_daemon, MHD_DAEMON_INFO_LISTEN_FD)->listen_fd;

    _due = new QTimer(this);
    _due->setSingleShot(true);
    connect(_due, &QTimer::timeout, this, &MetricsServer::run);
    _sweep = new QTimer(this);
    connect(_sweep, &QTimer::timeout, this, &MetricsServer::sweep);
    _sweep->start(limits.sweepMs);
    watchDaemon();
    return true;
}

MHD_Daemon *MetricsServer::startDaemon(void *socketAddress, int listenFd)
{
    // ITC: a daemon that can hand its listening socket on to the next (reconfigure).
    unsigned flags = MHD_USE_EPOLL | MHD_USE_ITC;
    if (_address.protocol() == QAbstractSocket::IPv6Protocol
        || (socketAddress && static_cast<sockaddr_storage *>(socketAddress)->ss_family == AF_INET6))
        flags |= MHD_USE_IPv6;
    const auto pointer = [](auto *value) { return intptr_t(reinterpret_cast<void *>(value)); };
    QList<MHD_OptionItem> options{
        {MHD_OPTION_CONNECTION_LIMIT, acceptLimit, nullptr},
        {MHD_OPTION_CONNECTION_TIMEOUT, intptr_t(_limits.idleSeconds), nullptr},
        {MHD_OPTION_CONNECTION_MEMORY_LIMIT, intptr_t(_limits.connectionBytes), nullptr},
        {MHD_OPTION_URI_LOG_CALLBACK, pointer(&Callbacks::requestLine), this},
        {MHD_OPTION_NOTIFY_COMPLETED, pointer(&Callbacks::requestDone), this},
        {MHD_OPTION_NOTIFY_CONNECTION, pointer(&Callbacks::connectionChanged), this},
    };
    if (listenFd >= 0)
        options.append({MHD_OPTION_LISTEN_SOCKET, listenFd, nullptr});
    else
        options.append({MHD_OPTION_SOCK_ADDR, 0, socketAddress});
    if (_web.hasTls()) {
        flags |= MHD_USE_TLS;
        options.append({MHD_OPTION_HTTPS_MEM_CERT, 0, const_cast<char *>(_web.certificatePem.constData())});
        options.append({MHD_OPTION_HTTPS_MEM_KEY, 0, const_cast<char *>(_web.keyPem.constData())});
        options.append({MHD_OPTION_HTTPS_PRIORITIES, 0, const_cast<char *>(_web.tlsPriorities.constData())});
        if (!_web.clientCaPem.isEmpty())
            options.append({MHD_OPTION_HTTPS_MEM_TRUST, 0, const_cast<char *>(_web.clientCaPem.constData())});
    }
    options.append({MHD_OPTION_END, 0, nullptr});
    return MHD_start_daemon(flags, 0, nullptr, nullptr, &Callbacks::answer, this, MHD_OPTION_ARRAY, options.data(),
                            MHD_OPTION_END);
}

void MetricsServer::watchDaemon()
{
    delete _events;
    _events = new QSocketNotifier(MHD_get_daemon_info(_daemon, MHD_DAEMON_INFO_EPOLL_FD)->epoll_fd,
                                  QSocketNotifier::Read, this);
    connect(_events, &QSocketNotifier::activated, this, &MetricsServer::run);
    run();
}

bool MetricsServer::reconfigure(const WebConfig &web)
{
    if (!_daemon)
        return false;
    // The listening socket goes on to a daemon with the new configuration; the connections of
    // the old one end with it, and their scrapers come back at the next scrape.
    const WebConfig previous = _web;
    const MHD_socket listening = MHD_quiesce_daemon(_daemon);
    if (listening == MHD_INVALID_SOCKET)
        return false;
    _web = web;
    MHD_Daemon *next = startDaemon(nullptr, listening);
    const bool taken = next != nullptr;
    if (!taken) {
        _web = previous;
        next = startDaemon(nullptr, listening);
    }
    delete _events; // before its epoll descriptor closes with the old daemon
    _events = nullptr;
    MHD_stop_daemon(_daemon);
    _daemon = next;
    if (_daemon)
        watchDaemon();
    return taken;
}

QString MetricsServer::target() const
{
    const QString host = _address.protocol() == QAbstractSocket::IPv6Protocol
        ? QLatin1Char('[') + _address.toString() + QLatin1Char(']')
        : _address.toString();
    return host + QLatin1Char(':') + QString::number(_port);
}

void MetricsServer::run()
{
    MHD_run(_daemon);
    // It accepts a few connections a turn, and hears of a crowd waiting to be accepted only
    // once: while one waits, run again at once.
    pollfd listening{_listenFd, POLLIN, 0};
    if (::poll(&listening, 1, 0) > 0) {
        _due->start(0);
        return;
    }
    // Data it holds already (a pipelined request) or a connection's time-out: run again then.
    MHD_UNSIGNED_LONG_LONG due = 0;
    if (MHD_get_timeout(_daemon, &due) == MHD_YES)
        _due->start(int(std::min<MHD_UNSIGNED_LONG_LONG>(due, INT_MAX)));
    else
        _due->stop();
}

void MetricsServer::opened(Connection *connection)
{
    _connections.append(connection);
    const auto open = std::count_if(_connections.cbegin(), _connections.cend(),
                                    [](const Connection *candidate) { return !candidate->ending; });
    if (open <= _limits.maxConnections)
        return;
    // One too many: the one that has waited longest for a request to come whole goes, else
    // the longest idle. A connection whose request has come is being answered and stays.
    const auto oldest = [this](Connection::Phase phase) {
        Connection *found = nullptr;
        for (Connection *candidate : std::as_const(_connections)) {
            if (!candidate->ending && candidate->phase == phase && (!found || candidate->since < found->since))
                found = candidate;
        }
        return found;
    };
    Connection *victim = oldest(Connection::Waiting);
    if (!victim)
        victim = oldest(Connection::Idle);
    (victim ? victim : connection)->cut();
}

void MetricsServer::sweep()
{
    const qint64 now = _clock.elapsed();
    for (Connection *connection : std::as_const(_connections)) {
        if (!connection->ending && connection->phase == Connection::Waiting
            && now - connection->since > _limits.requestMs)
            connection->cut();
    }
    run();
}

bool MetricsServer::respond(MHD_Connection *connection, Connection *, const char *url, const char *method)
{
    const bool get = std::strcmp(method, MHD_HTTP_METHOD_GET) == 0;
    if (!get && std::strcmp(method, MHD_HTTP_METHOD_HEAD) != 0) {
        MHD_Response *response = textResponse("Only GET and HEAD are served here.\n");
        MHD_add_response_header(response, MHD_HTTP_HEADER_ALLOW, "GET, HEAD");
        return queue(connection, MHD_HTTP_METHOD_NOT_ALLOWED, response);
    }
    // HEAD gets the GET's headers, its length included, and no body: libmicrohttpd leaves it out.
    if (std::strcmp(url, "/metrics") == 0) {
        const char *accept = MHD_lookup_connection_value(connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_ACCEPT);
        MHD_Response *response = metrics(MetricsExposition::negotiate(QByteArray(accept)));
        return MHD_queue_response(connection, MHD_HTTP_OK, response) == MHD_YES;
    }
    if (std::strcmp(url, "/") == 0) {
        MHD_Response *response = textResponse(indexPage, "text/html; charset=utf-8");
        MHD_add_response_header(response, MHD_HTTP_HEADER_CACHE_CONTROL, "no-store");
        return queue(connection, MHD_HTTP_OK, response);
    }
    return queue(connection, MHD_HTTP_NOT_FOUND, textResponse("Not found: the figures are at /metrics.\n"));
}

MHD_Response *MetricsServer::metrics(MetricsExposition::Format format)
{
    CachedBody &cached = _cache[format == MetricsExposition::Format::OpenMetrics ? 1 : 0];
    if (cached.response && cached.age.isValid() && cached.age.elapsed() < cacheMs)
        return cached.response;
    MetricsExposition::Sample sample = MetricsExposition::sample(_core, &_fileSystems);
    if (!_deviceInfoAge.isValid() || _deviceInfoAge.elapsed() >= deviceInfoMs) {
        _deviceInfo = MetricsExposition::deviceInfo(_core);
        _deviceInfoAge.start();
    }
    sample.deviceInfo = _deviceInfo;
    if (!_modemAge.isValid() || _modemAge.elapsed() >= modemMs) {
        ModemManagerCarrier modem(QDBusConnection::systemBus());
        modem.setCallTimeout(modemCallMs);
        _modem = modem.signal();
        _modemAge.start();
    }
    sample.modem = _modem;
    if (_device) {
        sample.batteryLevel = _device->batteryLevel();
        sample.batteryState = batteryState(_device->batteryState());
    }
    const QByteArray body = MetricsExposition::render(sample, format);
    if (cached.response)
        MHD_destroy_response(cached.response); // answers still being sent keep theirs
    cached.response = MHD_create_response_from_buffer(size_t(body.size()), const_cast<char *>(body.constData()),
                                                      MHD_RESPMEM_MUST_COPY);
    MHD_add_response_header(cached.response, MHD_HTTP_HEADER_CONTENT_TYPE,
                            MetricsExposition::contentType(format).constData());
    MHD_add_response_header(cached.response, MHD_HTTP_HEADER_CACHE_CONTROL, "no-store");
    cached.age.start();
    return cached.response;
}
