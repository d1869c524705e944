#pragma once

#include <cstdio>
#include <cstdlib>

// Every target is linked with FuzzApp.cpp, which runs it inside an application object
// (timers, image plugins) with Qt's log silenced.

// A broken promise of the code under test: abort, so that the fuzzer keeps the input.
#define FUZZ_CHECK(condition)                                                                                          \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            std::fprintf(stderr, "fuzz check failed: %s (%s:%d)\n", #condition, __FILE__, __LINE__);                   \
            std::abort();                                                                                              \
        }                                                                                                              \
    } while (false)
