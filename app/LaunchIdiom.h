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
    static constexpr QSize phoneWindow{320, 480};
    static constexpr QSize tabletWindow{768, 1024};
    // What a window manager adds around a window, at most: a title bar (client-side header
    // bars run to about 50 pixels) and borders. The real figure is only known once a window
    // is on screen, too late to choose its layout.
    static constexpr QSize windowFrame{16, 64};

    // --idiom wins. Otherwise the tablet where the tablet window fits: on a handheld's own
    // screen whose smaller side is 768 or more, or on a desktop whose available area holds
    // the whole 768 x 1024 window with its frame. The phone everywhere else.
    static Kind choose(LaunchOptions::Idiom requested, QSize availableScreen);

    // The window stands for the whole device screen, status bar included: 320 x 480 on a
    // phone, 768 x 1024 on a tablet. On a handheld (a portrait screen) whose screen suits
    // the layout, the window is the screen's available size instead.
    static QSize windowSize(Kind kind, QSize availableScreen);

    // The zoom a desktop window shows its screen at: 50 % to 300 % in steps of 25 %.
    static constexpr qreal minimumZoom = 0.5;
    static constexpr qreal maximumZoom = 3.0;
    static constexpr qreal zoomStep = 0.25;
    // The zoom step that many steps up (positive) or down from zoom, within the limits;
    // a zoom between steps goes to the neighbouring step first.
    static qreal steppedZoom(qreal zoom, int steps);
    // The zoom the window opens at: the one asked for (a percentage, 0 for none), or the
    // largest step at which the window with its frame takes at most 90 % of the available
    // height and fits the available width, never below 100 %. A handheld's own screen is
    // shown as it is.
    static qreal firstZoom(Kind kind, QSize availableScreen, int requestedPercent = 0);

    // A portrait screen is taken to be a handheld's own.
    static bool isHandheld(QSize availableScreen);
};
