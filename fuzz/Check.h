#pragma once

#include <cstdlib>

/// Ends the run as a fault where a promise of the code does not hold.
inline void check(bool holds) {
    if (!holds)
        std::abort();
}
