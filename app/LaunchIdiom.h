#pragma once

#include "LaunchOptions.h"

#include <QSize>

// Which layout to start and how big its window is, decided from the command line and
// the primary screen's available size alone, so that it can be checked without a screen.
class LaunchIdiom {
public:
    enum class Kind { Phone, Tablet };

    static constexpr int statusBarHeight = 20;
    static constexpr int tabletMinimumSide = 768;

    // --idiom wins; otherwise a screen whose smaller side is under 768 is a phone.
    static Kind choose(LaunchOptions::Idiom requested, QSize availableScreen);

    // The window stands for the whole device screen, status bar included: 320 x 480 on a
    // phone, 768 x 1024 on a tablet. A portrait screen is taken to be a handheld's own,
    // and then the window is the screen's available size instead.
    static QSize windowSize(Kind kind, QSize availableScreen);
};
