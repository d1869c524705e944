#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

struct statvfs;

// Every real mounted file system with its size, from mountinfo and statvfs(2). Pseudo
// file systems (proc, cgroup, devpts...) and second mounts of the same file system (bind
// mounts) are left out. statvfs runs off the caller's thread with a deadline, so that a
// mount that hangs (a dead network share) never blocks the caller: such a mount is
// answered from its last figures, or left out, and asked again only once it has answered.
class FileSystemReader {
public:
    struct Mount {
        QByteArray device;
        QByteArray mountPoint;
        QByteArray fsType;
    };
    struct Usage {
        quint64 size = 0;
        quint64 free = 0;
        quint64 avail = 0; // what an unprivileged user may still write
        quint64 files = 0;
        quint64 filesFree = 0;
    };
    struct FileSystem {
        Mount mount;
        Usage usage;
    };
    using Query = std::function<int(const char *path, struct statvfs *stats)>;

    // query replaces statvfs(2) (tests stand in file systems, some of which hang).
    explicit FileSystemReader(const QString &rootDir = QStringLiteral("/"), Query query = {}, int deadlineMs = 200);
    ~FileSystemReader();
    FileSystemReader(const FileSystemReader &) = delete;
    FileSystemReader &operator=(const FileSystemReader &) = delete;

    QList<Mount> mounts() const;
    QList<FileSystem> fileSystems();

    static QList<Mount> parseMountInfo(const char *text, qsizetype length);

private:
    struct Shared;
    QByteArray _root; // encoded, without a trailing "/"
    std::shared_ptr<Shared> _shared;
    int _deadlineMs;
};
