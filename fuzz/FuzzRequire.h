// The fuzz targets' check: a broken property names itself on stderr (seen
// when an input is replayed; the runs mute stderr) and stops the run like a
// crash, so libFuzzer keeps the input.
#pragma once

#include <cstdio>

#define REQUIRE(condition)                                                                                             \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            std::fprintf(stderr, "%s:%d: %s does not hold\n", __FILE__, __LINE__, #condition);                         \
            __builtin_trap();                                                                                          \
        }                                                                                                              \
    } while (false)
