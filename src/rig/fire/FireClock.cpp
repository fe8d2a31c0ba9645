#include "rig/fire/FireClock.h"

#include "base/CivilTime.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace zenka::rig {

namespace {

constexpr double runHz = 20.0;
constexpr double idleHz = 2.0;
constexpr base::Seconds runSlack{0.005};
constexpr base::Seconds idleSlack{0.2};
constexpr double longestTickSec = 0.25; // a stall must not throw a simulated clock forward
constexpr double stallLimitSec = 5.0;
// A wake-up comes this much behind its instant, so that rounding cannot bring it a hair before it.
constexpr double wakeMarginSec = 2e-6;

} // namespace

FireClock::FireClock(const ports::Ports& ports, RigLog& log, const Transport& transport, Serve serve,
                     NextDue nextDue)
    : ports_(ports), log_(log), transport_(transport), serve_(std::move(serve)), nextDue_(std::move(nextDue)),
      tickGate_(ports.clock.uptimeSeconds()) {
}

FireClock::~FireClock() {
    if (started_)
        ports_.fireTimer.stop();
}

void FireClock::startClock() {
    lastTick_ = ports_.clock.uptimeSeconds();
    tickHz_ = runHz;
    started_ = true;
    ports_.fireTimer.start(base::Seconds{1 / runHz}, runSlack, [this] { beat(); });
    retuneTickRate();
}

void FireClock::beat() {
    if (tickGate_.take()) {
        ports_.loop.post(lifeline_.guard([this] {
            tick();
            tickGate_.finish(ports_.clock.uptimeSeconds());
        }));
        return;
    }
    if (const auto stall = tickGate_.stallToWarnOf(ports_.clock.uptimeSeconds(), stallLimitSec))
        warnOfStall(*stall);
}

void FireClock::tick() {
    const double now = ports_.clock.uptimeSeconds();
    const double dt = lastTick_ ? now - *lastTick_ : 0;
    lastTick_ = now;
    serve_(std::min(dt, longestTickSec));
    retuneTickRate();
    wakeForNextDue();
}

void FireClock::retuneTickRate() {
    const bool active = transport_.runActive();
    tickGate_.police(active);
    const double target = active ? runHz : idleHz;
    if (target == tickHz_ || !started_)
        return;
    tickHz_ = target;
    ports_.fireTimer.reschedule(base::Seconds{1 / target}, active ? runSlack : idleSlack);
    wakeForNextDue();
}

void FireClock::wakeForNextDue() {
    if (!started_)
        return;
    double wait = std::numeric_limits<double>::infinity();
    if (transport_.runActive())
        wait = std::max(nextDue_() - transport_.clockNow(), 0.0) + wakeMarginSec;
    // The regular beat comes sooner, and looks again.
    if (wait > 1 / tickHz_)
        wait = std::numeric_limits<double>::infinity();
    ports_.fireTimer.wakeAt(ports_.clock.continuousSeconds() + wait);
}

void FireClock::warnOfStall(double stallSec) {
    const std::string summary = stallContext_.summary();
    const auto sample = captureStallSample();
    log_.pushLog(absl::StrFormat(
        "⚠︎ Fire loop blocked: main thread hasn't serviced a tick for %ds (%s). Frames "
        "due in this window are at risk.%s",
        static_cast<int>(stallSec), summary, sample ? " Diagnostic sample → " + *sample : std::string()));
}

std::optional<std::string> FireClock::captureStallSample() {
    const auto file =
        ports_.folders.runLogs() /
        ("Zenka stall sample " +
         base::formatTime("%Y-%m-%d %H%M%S", ports_.clock.now(), base::machineTimeZone()) + ".txt");
    if (!ports_.stallSampler.sampleTo(file))
        return std::nullopt;
    return file.string();
}

} // namespace zenka::rig
