#pragma once

#include <QObject>

#include <functional>

class QSocketNotifier;

// SIGTERM and SIGINT end the event loop as a quit does, so the application tears down
// and exits 0 as when its window closes. The handler only writes the signal's number
// to a socket that the event loop watches. A second signal, once the first is on its
// way, ends the process at once: the dispositions are back to the default by then.
// Given onHangup, SIGHUP calls it from the event loop (a daemon's "read your
// configuration again") instead of ending the process.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    explicit TerminationSignals(QObject *parent = nullptr);
    explicit TerminationSignals(std::function<void()> onHangup, QObject *parent = nullptr);
    ~TerminationSignals() override;

private:
    void readSignal();

    QSocketNotifier *_notifier = nullptr;
    std::function<void()> _onHangup;
};
