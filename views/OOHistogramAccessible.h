#pragma once

#include <QAccessibleWidget>

// The CPU history in words, as its name: the span shown, the average user, system and
// idle shares over it, and the busiest sample with how long ago it was ("CPU history,
// last 2 minutes: user 12%, system 3%, idle 85%; peak 64% busy 40 s ago").
class OOHistogramAccessible : public QAccessibleWidget {
public:
    explicit OOHistogramAccessible(QWidget *histogram);

    QString text(QAccessible::Text t) const override;

    // A span of time as the summary says it: "40 s" under a minute and a half, else
    // whole minutes ("2 minutes").
    static QString duration(double seconds);
};
