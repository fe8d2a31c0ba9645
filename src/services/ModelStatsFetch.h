#pragma once

#include "base/Lifeline.h"
#include "cameras/gphoto2/GPhoto2Program.h"
#include "ports/Ports.h"

namespace zenka::services {

/// Gets what bodies of each model have offered elsewhere, so that a body whose list of shutter speeds is
/// nearly empty is told from one that has few. Main thread.
class ModelStatsFetch {
public:
    /// Both outlive it.
    ModelStatsFetch(const ports::Ports& ports, cameras::GPhoto2ModelStats& modelStats)
        : ports_(ports), modelStats_(modelStats) {}

    /// Asks the server, where one is set, and does not wait. Without an answer, or with one that makes no
    /// sense, nothing is known. The answer is
    /// {"models": [{"model": "Nikon Z 8", "shutterMax": 55}]}.
    void primeModelStats();

private:
    const ports::Ports& ports_;
    cameras::GPhoto2ModelStats& modelStats_;
    base::Lifeline lifeline_;
};

} // namespace zenka::services
