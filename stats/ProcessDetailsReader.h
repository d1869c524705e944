#pragma once

#include "ProcessDetails.h"

#include <QByteArray>
#include <QString>

#include <optional>

// Reads one process's command line, executable, control group, owner and proportional
// memory under a root directory ("/" live, a fixture tree in tests). Each file is read on
// its own: what cannot be read is left empty, the rest still shown.
class ProcessDetailsReader {
public:
    explicit ProcessDetailsReader(const QString &rootDir = QStringLiteral("/"));

    ProcessDetails details(int pid) const;

    // NUL-separated arguments; a trailing NUL or none at all.
    static QString parseCommandLine(const QByteArray &text);
    // The "0::" line of /proc/[pid]/cgroup; empty without one (cgroup v1 only).
    static QString parseCgroup(const QByteArray &text);
    // The last component of a control group path that names a unit (.service, .scope...).
    static QString unitOf(const QString &cgroup);
    // The real uid of /proc/[pid]/status's "Uid:" line.
    static std::optional<uint> parseUid(const QByteArray &text);
    // "Pss:" of smaps_rollup, in bytes.
    static std::optional<quint64> parseProportional(const QByteArray &text);
    // The name of uid in the passwd file's text.
    static QString userFromPasswd(const QByteArray &text, uint uid);

private:
    QString userName(uint uid) const;

    QString _root;
    QByteArray _procDir;
};
