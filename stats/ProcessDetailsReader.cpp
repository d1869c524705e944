#include "ProcessDetailsReader.h"

#include <QFile>
#include <QList>

#include <climits>
#include <pwd.h>
#include <unistd.h>

namespace {

// The files are small, but a command line may be long and is cut at a page's worth.
constexpr qint64 MaxRead = 64 * 1024;

QByteArray readSmall(const QByteArray &path)
{
    QFile file(QFile::decodeName(path));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    return file.read(MaxRead);
}

// The number after key on its own line, with the rest of the line.
QByteArray lineAfter(const QByteArray &text, const QByteArray &key)
{
    for (const QByteArray &line : text.split('\n'))
        if (line.startsWith(key))
            return line.mid(key.size()).trimmed();
    return {};
}

} // namespace

ProcessDetailsReader::ProcessDetailsReader(const QString &rootDir)
    : _root(rootDir)
{
    QString dir = rootDir;
    while (dir.endsWith(QLatin1Char('/')))
        dir.chop(1);
    _root = dir;
    _procDir = QFile::encodeName(dir) + "/proc/";
}

QString ProcessDetailsReader::parseCommandLine(const QByteArray &text)
{
    QByteArray line = text;
    while (line.endsWith('\0'))
        line.chop(1);
    line.replace('\0', ' ');
    return QString::fromUtf8(line);
}

QString ProcessDetailsReader::parseCgroup(const QByteArray &text)
{
    for (const QByteArray &line : text.split('\n'))
        if (line.startsWith("0::"))
            return QString::fromUtf8(line.mid(3));
    return {};
}

QString ProcessDetailsReader::unitOf(const QString &cgroup)
{
    static const char *const kinds[] = {".service", ".scope", ".slice", ".socket", ".mount"};
    const QList<QStringView> parts = QStringView(cgroup).split(u'/', Qt::SkipEmptyParts);
    // The innermost unit: a service's own sub-groups ("app.service/init") are not units.
    for (qsizetype i = parts.size() - 1; i >= 0; --i)
        for (const char *kind : kinds)
            if (parts[i].endsWith(QLatin1String(kind)) && parts[i].size() > qsizetype(qstrlen(kind)))
                return parts[i].toString();
    return {};
}

std::optional<uint> ProcessDetailsReader::parseUid(const QByteArray &text)
{
    const QByteArray rest = lineAfter(text, "Uid:");
    bool ok = false;
    const qulonglong uid = rest.split('\t').value(0).trimmed().toULongLong(&ok);
    if (!ok || uid > UINT_MAX)
        return std::nullopt;
    return uint(uid);
}

std::optional<quint64> ProcessDetailsReader::parseProportional(const QByteArray &text)
{
    QByteArray rest = lineAfter(text, "Pss:");
    if (!rest.endsWith(" kB"))
        return std::nullopt;
    rest.chop(3);
    bool ok = false;
    const qulonglong kiB = rest.trimmed().toULongLong(&ok);
    if (!ok || kiB > ULLONG_MAX / 1024)
        return std::nullopt;
    return quint64(kiB) * 1024;
}

QString ProcessDetailsReader::userFromPasswd(const QByteArray &text, uint uid)
{
    for (const QByteArray &line : text.split('\n')) {
        const QList<QByteArray> fields = line.split(':');
        bool ok = false;
        if (fields.size() >= 3 && fields[2].toUInt(&ok) == uid && ok && !fields[0].isEmpty())
            return QString::fromUtf8(fields[0]);
    }
    return {};
}

QString ProcessDetailsReader::userName(uint uid) const
{
    QString name;
    if (_root.isEmpty()) {
        // The live system: the name service knows users that no passwd file lists.
        struct passwd entry;
        struct passwd *found = nullptr;
        char buffer[4096];
        if (::getpwuid_r(uid, &entry, buffer, sizeof buffer, &found) == 0 && found)
            name = QString::fromLocal8Bit(found->pw_name);
    } else {
        name = userFromPasswd(readSmall(QFile::encodeName(_root) + "/etc/passwd"), uid);
    }
    return name.isEmpty() ? QString::number(uid) : name;
}

ProcessDetails ProcessDetailsReader::details(int pid) const
{
    const QByteArray dir = _procDir + QByteArray::number(pid) + '/';
    ProcessDetails details;
    details.commandLine = parseCommandLine(readSmall(dir + "cmdline"));
    char target[PATH_MAX];
    const ssize_t length = ::readlink((dir + "exe").constData(), target, sizeof target);
    if (length > 0)
        details.executable = QFile::decodeName(QByteArray(target, length));
    details.cgroup = parseCgroup(readSmall(dir + "cgroup"));
    details.unit = unitOf(details.cgroup);
    details.uid = parseUid(readSmall(dir + "status"));
    if (details.uid)
        details.user = userName(*details.uid);
    details.proportionalBytes = parseProportional(readSmall(dir + "smaps_rollup"));
    return details;
}
