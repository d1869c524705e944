#include "FuzzApp.h"

#include <QCoreApplication>

// The readers log each garbled file they meet; at thousands of inputs a second that
// would be all the fuzzer does.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication app(*argc, *argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    return 0;
}
