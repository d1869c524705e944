#pragma once

// The four ways a handheld can be held, as the screens are asked whether they turn
// with it. The window itself keeps its portrait shape.
enum class InterfaceOrientation {
    Portrait = 1,
    PortraitUpsideDown = 2,
    LandscapeRight = 3,
    LandscapeLeft = 4,
};
