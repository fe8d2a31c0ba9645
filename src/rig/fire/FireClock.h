#pragma once

#include "base/Lifeline.h"
#include "ports/Ports.h"
#include "rig/fire/TickGate.h"
#include "rig/run/Transport.h"
#include "rig/shared/RigLog.h"

#include <functional>
#include <optional>
#include <string>

namespace zenka::rig {

/// The beat of the run: 20 a second in a run, 2 when idle, and in a run one more at the next due
/// instant. It comes on the fire thread, which only gates it, and is served on the main thread.
class FireClock {
public:
    /// Serves one tick of dt seconds on the main thread.
    using Serve = std::function<void(double dt)>;
    /// Clock value of what is due next, infinite if nothing is.
    using NextDue = std::function<double()>;

    FireClock(const ports::Ports& ports, RigLog& log, const Transport& transport, Serve serve,
              NextDue nextDue);
    ~FireClock();
    FireClock(const FireClock&) = delete;
    FireClock& operator=(const FireClock&) = delete;

    void startClock();

    /// Follows the run's activity: beat rate and stall policing.
    void retuneTickRate();

    /// Asks for a beat at the next due instant; to be called when that may have changed.
    void wakeForNextDue();

    double tickHz() const { return tickHz_; }
    StallContext& stallContext() { return stallContext_; }

private:
    void beat();                       // fire thread
    void tick();                       // main thread
    void warnOfStall(double stallSec); // fire thread
    std::optional<std::string> captureStallSample();

    const ports::Ports& ports_;
    RigLog& log_;
    const Transport& transport_;
    Serve serve_;
    NextDue nextDue_;
    double tickHz_ = 20.0;
    bool started_ = false;
    std::optional<double> lastTick_; // uptime seconds
    TickGate tickGate_;
    StallContext stallContext_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
