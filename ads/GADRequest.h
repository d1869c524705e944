#pragma once

// A banner request with no targeting and no test devices: the only kind this
// application makes.
class GADRequest {
public:
    static GADRequest request() { return GADRequest(); }
};
