#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QTimer>

class MetricsServer;

// Reads the web configuration again when its file or a file it names changes (a renewed
// certificate, a new user), or when asked to (SIGHUP), and hands it to the server. A
// file that no longer reads leaves the configuration in use, and says why on stderr.
class WebConfigWatch : public QObject {
    Q_OBJECT

public:
    WebConfigWatch(const QString &path, const QStringList &files, MetricsServer &server, QObject *parent = nullptr);

    void reload();

private:
    void watch(const QStringList &files);

    QString _path;
    MetricsServer &_server;
    QFileSystemWatcher _watcher;
    QTimer _settle; // an editor or a renewal writes in steps: read once it is done
};
