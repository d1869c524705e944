#include "FileSystemReader.h"

#include "StatsLog.h"

#include <QByteArrayView>
#include <QFile>
#include <QHash>
#include <QSet>

#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <sys/statvfs.h>
#include <thread>

namespace {

// Types that hold no files of their own, or that only mirror others; the same list
// other exporters leave out by default.
bool isPseudo(QByteArrayView type)
{
    static const QSet<QByteArray> pseudo = {
        "autofs",      "binfmt_misc", "bpf",        "cgroup",    "cgroup2",   "configfs", "debugfs",
        "devpts",      "devtmpfs",    "efivarfs",   "fusectl",   "hugetlbfs", "iso9660",  "mqueue",
        "nsfs",        "overlay",     "proc",       "procfs",    "pstore",    "ramfs",    "rpc_pipefs",
        "securityfs",  "selinuxfs",   "squashfs",   "sysfs",     "tracefs",   "nfsd",     "fuse.gvfsd-fuse",
        "fuse.portal", "binder",      "functionfs", "fuse.lxcfs"};
    return pseudo.contains(type.toByteArray());
}

// Mount points of the kernel's own trees and of container storage.
bool isHiddenMountPoint(QByteArrayView point)
{
    static constexpr QByteArrayView trees[] = {"/dev", "/proc", "/sys"};
    for (QByteArrayView tree : trees) {
        if (point == tree || (point.startsWith(tree) && point.at(tree.size()) == '/'))
            return true;
    }
    static constexpr QByteArrayView below[] = {"/run/credentials/", "/var/lib/docker/", "/var/lib/containers/storage/"};
    for (QByteArrayView prefix : below) {
        if (point.startsWith(prefix))
            return true;
    }
    return false;
}

// mountinfo writes space, tab, line feed and backslash as octal escapes.
QByteArray unescape(QByteArrayView field)
{
    QByteArray out;
    out.reserve(field.size());
    for (qsizetype i = 0; i < field.size(); ++i) {
        const auto digit = [&](qsizetype at) { return at < field.size() && field[at] >= '0' && field[at] <= '7'; };
        if (field[i] == '\\' && digit(i + 1) && digit(i + 2) && digit(i + 3)) {
            out += char(((field[i + 1] - '0') << 6) | ((field[i + 2] - '0') << 3) | (field[i + 3] - '0'));
            i += 3;
        } else {
            out += field[i];
        }
    }
    return out;
}

} // namespace

struct FileSystemReader::Shared {
    Query query;
    std::mutex mutex;
    std::condition_variable answered;
    QHash<QByteArray, Usage> last; // by path, from the latest answer
    QSet<QByteArray> hung;         // paths a worker is still waiting on
    QSet<QByteArray> logged;
};

FileSystemReader::FileSystemReader(const QString &rootDir, Query query, int deadlineMs)
    : _shared(std::make_shared<Shared>())
    , _deadlineMs(deadlineMs)
{
    QString dir = rootDir;
    while (dir.endsWith(QLatin1Char('/')))
        dir.chop(1);
    _root = QFile::encodeName(dir);
    _shared->query = query ? std::move(query)
                           : Query([](const char *path, struct statvfs *stats) { return ::statvfs(path, stats); });
}

FileSystemReader::~FileSystemReader() = default;

QList<FileSystemReader::Mount> FileSystemReader::parseMountInfo(const char *text, qsizetype length)
{
    QList<Mount> mounts;
    QSet<QByteArray> seenDevices;
    QSet<QByteArray> seenPoints;
    const QByteArrayView all(text, length);
    qsizetype start = 0;
    while (start < all.size()) {
        qsizetype end = all.indexOf('\n', start);
        if (end < 0)
            end = all.size();
        const QByteArrayView line = all.sliced(start, end - start);
        start = end + 1;
        // ID PARENT MAJOR:MINOR ROOT MOUNTPOINT OPTIONS [OPTIONAL...] - TYPE SOURCE SUPEROPTIONS
        QList<QByteArrayView> fields;
        qsizetype at = 0;
        while (at < line.size()) {
            qsizetype space = line.indexOf(' ', at);
            if (space < 0)
                space = line.size();
            if (space > at)
                fields.append(line.sliced(at, space - at));
            at = space + 1;
        }
        qsizetype dash = -1;
        for (qsizetype i = 6; i < fields.size(); ++i) {
            if (fields[i] == "-") {
                dash = i;
                break;
            }
        }
        if (dash < 0 || dash + 2 >= fields.size() || !fields[2].contains(':'))
            continue;
        Mount mount;
        mount.mountPoint = unescape(fields[4]);
        mount.fsType = fields[dash + 1].toByteArray();
        mount.device = unescape(fields[dash + 2]);
        if (!mount.mountPoint.startsWith('/') || isPseudo(mount.fsType) || isHiddenMountPoint(mount.mountPoint))
            continue;
        // A bind mount shows the same file system again; a mount over another hides it.
        const QByteArray device = fields[2].toByteArray();
        if (seenDevices.contains(device) || seenPoints.contains(mount.mountPoint)) {
            if (seenPoints.contains(mount.mountPoint) && !seenDevices.contains(device)) {
                for (Mount &earlier : mounts) {
                    if (earlier.mountPoint == mount.mountPoint)
                        earlier = mount;
                }
                seenDevices.insert(device);
            }
            continue;
        }
        seenDevices.insert(device);
        seenPoints.insert(mount.mountPoint);
        mounts.append(std::move(mount));
    }
    return mounts;
}

QList<FileSystemReader::Mount> FileSystemReader::mounts() const
{
    QFile file(QFile::decodeName(_root + "/proc/self/mountinfo"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray data = file.readAll();
    return parseMountInfo(data.constData(), data.size());
}

QList<FileSystemReader::FileSystem> FileSystemReader::fileSystems()
{
    const QList<Mount> found = mounts();
    QList<QByteArray> paths;
    paths.reserve(found.size());
    for (const Mount &mount : found)
        paths.append(_root + mount.mountPoint);

    // A worker asks each file system in turn. One that does not answer by the deadline
    // is left to the worker, which ends after it; the next worker takes the rest.
    struct Job {
        QList<QByteArray> paths;
        qsizetype done = 0;
        bool abandoned = false;
    };
    QList<QByteArray> pending;
    {
        std::lock_guard lock(_shared->mutex);
        for (const QByteArray &path : paths) {
            if (!_shared->hung.contains(path))
                pending.append(path);
        }
    }
    while (!pending.isEmpty()) {
        auto job = std::make_shared<Job>();
        job->paths = pending;
        std::thread worker([shared = _shared, job] {
            for (const QByteArray &path : job->paths) {
                struct statvfs stats {};
                const int result = shared->query(path.constData(), &stats);
                std::lock_guard lock(shared->mutex);
                if (result == 0 && stats.f_frsize > 0) {
                    const quint64 unit = stats.f_frsize;
                    shared->last.insert(path,
                                        Usage{unit * stats.f_blocks, unit * stats.f_bfree, unit * stats.f_bavail,
                                              stats.f_files, stats.f_ffree});
                } else {
                    shared->last.remove(path);
                }
                shared->hung.remove(path);
                ++job->done;
                shared->answered.notify_all();
                if (job->abandoned)
                    break;
            }
        });
        // Each file system gets the deadline to itself: only the first scrape after a share
        // dies waits for it, the later ones skip it until it answers.
        std::unique_lock lock(_shared->mutex);
        qsizetype seen = -1;
        while (job->done != job->paths.size() && job->done != seen) {
            seen = job->done;
            _shared->answered.wait_for(lock, std::chrono::milliseconds(_deadlineMs), [&] { return job->done != seen; });
        }
        if (job->done == job->paths.size()) {
            lock.unlock();
            worker.join();
            break;
        }
        job->abandoned = true;
        worker.detach();
        const QByteArray stuck = job->paths.at(job->done);
        _shared->hung.insert(stuck);
        if (!_shared->logged.contains(stuck)) {
            _shared->logged.insert(stuck);
            qCWarning(lcStats).noquote() << "The file system at" << QString::fromLocal8Bit(stuck)
                                         << "does not answer; its last figures stand until it does.";
        }
        pending = job->paths.mid(job->done + 1);
    }

    QList<FileSystem> result;
    std::lock_guard lock(_shared->mutex);
    for (qsizetype i = 0; i < found.size(); ++i) {
        const auto usage = _shared->last.constFind(paths[i]);
        if (usage != _shared->last.constEnd())
            result.append({found[i], *usage});
    }
    return result;
}
