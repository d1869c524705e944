#include "WebConfigWatch.h"

#include "MetricsServer.h"
#include "WebConfig.h"

#include <cstdio>

WebConfigWatch::WebConfigWatch(const QString &path, const QStringList &files, MetricsServer &server, QObject *parent)
    : QObject(parent)
    , _path(path)
    , _server(server)
{
    _settle.setSingleShot(true);
    _settle.setInterval(200);
    connect(&_settle, &QTimer::timeout, this, &WebConfigWatch::reload);
    connect(&_watcher, &QFileSystemWatcher::fileChanged, &_settle, qOverload<>(&QTimer::start));
    watch(files);
}

void WebConfigWatch::reload()
{
    QString problem;
    const std::optional<WebConfig> web = WebConfig::load(_path, &problem);
    if (!web) {
        std::fprintf(stderr, "kovar: --web-config %s: %s; the configuration in use stays\n", qPrintable(_path),
                     qPrintable(problem));
    } else if (!_server.reconfigure(*web)) {
        std::fprintf(stderr,
                     "kovar: --web-config %s: its certificate or key does not load; the configuration in "
                     "use stays\n",
                     qPrintable(_path));
    } else {
        std::fprintf(stderr, "kovar: --web-config %s read again\n", qPrintable(_path));
    }
    watch(web ? web->files : QStringList());
}

void WebConfigWatch::watch(const QStringList &files)
{
    // A file replaced by a rename (as renewals and editors do) is no longer watched: watch anew.
    if (!_watcher.files().isEmpty())
        _watcher.removePaths(_watcher.files());
    _watcher.addPath(_path);
    for (const QString &file : files)
        _watcher.addPath(file);
}
