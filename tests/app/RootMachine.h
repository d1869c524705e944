#pragma once

#include "Device.h"
#include "FixtureTree.h"
#include "StatCore.h"

#include <QLoggingCategory>
#include <QTemporaryDir>

#include <sys/statvfs.h>

// The machine a root screen samples in its tests: a copy of a laptop's proc tree whose CPU
// ticks a test sets, a home file system of 100 GiB of which freeGiB are free, the laptop's
// battery, and network queries that all fail, quietly.
struct RootMachine {
    QTemporaryDir tree;
    StatCore core{tree.path(), tree.path(), 4096, SystemInfoReader::SystemCalls{}, NetworkInfoReader::Seams{}};
    Device device{FixtureTree::path(QStringLiteral("power_supply/laptop-discharging"))};
    quint64 freeGiB = 60;

    // The tree in place, with 1,000 ticks of each class counted so far.
    bool prepare()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("kovar.stats*.warning=false"));
        core.setFileSystemQuery([this](const char *, struct statvfs *stats) {
            *stats = {};
            stats->f_frsize = 4096;
            stats->f_blocks = 100ull << 18;
            stats->f_bavail = freeGiB << 18;
            return 0;
        });
        return FixtureTree::copy(FixtureTree::path(QStringLiteral("proc-x86-laptop")), tree.path())
            && setCpuTicks(1000, 1000, 1000);
    }

    bool setCpuTicks(quint64 user, quint64 system, quint64 idle)
    {
        return FixtureTree::writeCpuTicks(tree.path(), user, system, idle);
    }
};
