// A process's own files (cmdline, cgroup, status, smaps_rollup, stat), through to the
// details sheet's figures and the signaller's check of who holds a pid.
#include "FuzzApp.h"
#include "FuzzTree.h"
#include "ProcReader.h"
#include "ProcessDetailsReader.h"
#include "ProcessSignaller.h"
#include "StatCore.h"

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), qsizetype(size));
    ProcessDetailsReader::parseCommandLine(text);
    ProcessDetailsReader::unitOf(ProcessDetailsReader::parseCgroup(text));
    ProcessDetailsReader::parseUid(text);
    ProcessDetailsReader::parseProportional(text);
    ProcReader::parseElapsedTicks(text.constData(), text.size());

    static FuzzTree tree({QByteArrayLiteral("proc/"), QByteArrayLiteral("etc/")});
    if (!tree.load(data, size))
        return 0;
    StatCore core(tree.root(), QString(), 4096);
    core.runningProcesses();
    const ProcessDetailsReader reader(tree.root());
    // Nothing is ever sent: every system call is a stand-in that records a call.
    bool signalled = false;
    ProcessSignaller::Seams seams;
    seams.openPidfd = [](int) { return -ENOSYS; };
    seams.sendByPid = [&signalled](int, int) {
        signalled = true;
        return 0;
    };
    ProcessSignaller signaller(tree.root(), seams);
    for (const ProcessRecord &record : core.runningProcesses().value_or(QList<ProcessRecord>{})) {
        reader.details(record.pid.toInt());
        // Shares are never negative, whatever two reads said.
        FUZZ_CHECK(record.usage.cpuOfMachine.value_or(0.0) >= 0.0 && record.usage.cpuOfOneCore.value_or(0.0) >= 0.0);
        signaller.pin(record.pid.toInt(), record.processName, record.usage.startTicks, record.usage.kernelThread);
        signalled = false;
        const bool sent = signaller.send(SIGTERM).sent;
        FUZZ_CHECK(sent == signalled);
    }
    return 0;
}
