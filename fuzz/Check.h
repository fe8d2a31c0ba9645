#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the run as a fault where a promise of the code does not hold, and says where.
inline void check(bool holds, int line = __builtin_LINE()) {
    if (holds)
        return;
    std::fprintf(stderr, "the check in line %d of the fuzzer does not hold\n", line);
    std::abort();
}
