#pragma once

#include <QString>

#include <optional>

// What a process's details sheet shows beyond its stat record: read for the one process
// shown, never during the scan of every process. Empty texts and unset figures are what
// the kernel would not tell (another user's executable, a process gone meanwhile).
struct ProcessDetails {
    QString commandLine; // the arguments, separated by spaces
    QString executable;
    QString cgroup; // the unified (v2) hierarchy's path
    QString unit;   // the systemd unit that path ends in, if any
    std::optional<uint> uid;
    QString user;                             // the uid's name, or its number
    std::optional<quint64> proportionalBytes; // PSS

    friend bool operator==(const ProcessDetails &, const ProcessDetails &) = default;
};
