#pragma once

#include <cstdio>
#include <exception>

namespace zenka::platform {

/// Runs a function of someone else's. What it throws ends here, with a line on the error stream: no
/// exception may take a loop or a queue down in a run.
template <typename Function>
void runGuarded(const char* where, const Function& function) noexcept {
    try {
        function();
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "zenka: a function on the %s failed: %s\n", where, fault.what());
    } catch (...) {
        std::fprintf(stderr, "zenka: a function on the %s failed\n", where);
    }
}

} // namespace zenka::platform
