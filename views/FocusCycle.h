#pragma once

class QWidget;

// Tab and Shift+Tab round a screen's own widgets, wrapping at either end. A screen drawn
// through a graphics scene (the zooming window) would otherwise trap the focus on its last
// widget: the scene's proxy stops at the screen's edge and has nowhere else to go.
class FocusCycle {
public:
    // Moves the focus to the next (or previous) widget inside screen that takes focus by
    // Tab, from the one that has it now; false when there is none to move to.
    static bool step(QWidget *screen, bool next);
};
