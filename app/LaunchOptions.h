#pragma once

#include <QString>
#include <QStringList>

// What the command line asked for. Parsed before any application object exists,
// so that --snapshot and --help never need a display.
class LaunchOptions {
public:
    enum class Idiom { Automatic, Phone, Tablet };

    static LaunchOptions parse(const QStringList &arguments);

    bool help = false;
    bool version = false;
    bool snapshot = false;
    QString screenshotDir;        // empty: no screenshot run
    Idiom idiom = Idiom::Automatic;
    QString error;                // non-empty when the arguments made no sense

    static QString helpText();
};
