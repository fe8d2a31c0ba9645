#pragma once

#include "ports/Clock.h"
#include "ports/MainLoop.h"

#include <cstdint>
#include <functional>
#include <map>
#include <unordered_map>
#include <utility>

namespace zenka::platform {

/// Time that passes only as fast as the work in it: a clock and an agenda of functions, each of which
/// runs at its instant on one thread. Two lanes stand for the main thread and for all other threads, so
/// that a stalled main thread can be played.
class VirtualTime final : public ports::Clock {
public:
    enum class Lane { main, other };
    using Function = std::function<void()>;
    using Ticket = std::uint64_t;

    /// The wall clock starts at the given instant, the other clocks at a thousand seconds.
    explicit VirtualTime(base::Instant wallStart) : wall_(wallStart) {}

    base::Instant now() const override { return wall_; }
    double continuousSeconds() const override { return continuous_; }
    double uptimeSeconds() const override { return uptime_; }

    /// Puts a function on the agenda at an instant of the continuous clock, or now if that is past.
    Ticket at(double continuousSeconds, Lane lane, Function function);
    void cancel(Ticket ticket);

    /// Runs all that is due within a span, and lets the span pass.
    void runFor(base::Seconds span);

    /// Runs until a condition holds; false when the agenda is empty or the limit is reached before.
    bool runUntil(const std::function<bool()>& done, base::Seconds limit);

    /// Sets the wall clock, as a time service would.
    void setWall(base::Instant instant) { wall_ = instant; }

    /// The machine sleeps: wall and continuous clock run on, nothing else happens.
    void sleepFor(base::Seconds span);

    /// The main thread does nothing for a span from now; what is due on it waits.
    void stallMainFor(base::Seconds span) { mainStalledUntil_ = continuous_ + span.count(); }

    /// Whether a function of the main lane, or none, runs now.
    bool onMainLane() const { return lane_ == Lane::main; }

private:
    using Key = std::pair<double, Ticket>; // instant, then order of entry

    struct Entry {
        Lane lane;
        Function function;
    };

    bool runNext(double until);
    void passTo(double continuousSeconds);

    base::Instant wall_;
    double continuous_ = 1000;
    double uptime_ = 1000;
    double mainStalledUntil_ = 0;
    Lane lane_ = Lane::main;
    Ticket lastTicket_ = 0;
    std::map<Key, Entry> agenda_;
    std::unordered_map<Ticket, double> instants_;
};

} // namespace zenka::platform
