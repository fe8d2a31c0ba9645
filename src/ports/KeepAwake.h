#pragma once

#include <string>

namespace zenka::ports {

/// Holds off the sleep of machine and display. Main thread; never waits for the desktop's answer, and a
/// desktop that gives none is no error.
class KeepAwake {
public:
    virtual ~KeepAwake() = default;

    /// Holds idle sleep and display sleep off until release(). Holding again replaces the reason.
    virtual void hold(const std::string& reason) = 0;
    virtual void release() = 0;
};

} // namespace zenka::ports
