#pragma once

#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/run/SleepGuard.h"
#include "rig/runlog/RunLogbook.h"
#include "rig/script/ScriptDesk.h"
#include "rig/shared/RigLog.h"
#include "rig/site/SiteDesk.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zenka::rig {

enum class TimingMode {
    simulated, ///< the clock runs while playing and may be moved by hand
    live,      ///< the clock follows real time from its anchor and cannot be moved
};

/// The eclipse clock and what moves it: play, pause, jumps, arming. The clock counts seconds on the time
/// scale of the eclipse's elements, the same as Capture::offsetSec.
class Transport {
public:
    Transport(const ports::Ports& ports, RigLog& log, const SiteDesk& site, const ScriptDesk& script,
              RunLogbook& logbook, SleepGuard& sleepGuard);

    /// The clock at the last tick. What is due is decided on this value.
    double clock() const { return clock_; }
    /// The clock at this moment, between ticks.
    double clockNow() const;

    const base::Published<TimingMode>& timingMode() const { return timingMode_; }
    const base::Published<bool>& playing() const { return playing_; }
    const base::Published<std::string>& timingStatus() const { return timingStatus_; }
    bool live() const { return timingMode_.get() == TimingMode::live; }
    /// Whether a run is on: firing, a high tick rate, stall policing and keep-awake all follow this.
    bool runActive() const { return live() || playing_.get(); }

    /// Moves the clock on by one tick; dt in seconds counts in simulated timing only. False when the
    /// clock stands and nothing is to be scanned.
    bool advance(double dt);

    void togglePlay();
    /// Jumps to a contact by its key.
    void jump(std::string_view contactKey);
    /// Jumps to a time of day at the site, "HH:MM" or "HH:MM:SS"; false for any other text and in live.
    bool jumpToLocalTime(std::string_view text);
    void scrubTo(double clock);
    void useSimulatedTiming();
    /// Without force it may be held up by a check, which then has told the user why.
    void armRealEclipseTiming(bool force);
    /// True holds the arming up.
    void setArmCheck(std::function<bool()> holdsArming) { holdsArming_ = std::move(holdsArming); }

    /// How far the computer's clock is ahead of satellite time, in seconds, where that is known: arming
    /// corrects for it.
    using ClockOffset = std::function<std::optional<double>()>;
    void setClockOffset(ClockOffset clockOffset) { clockOffset_ = std::move(clockOffset); }

    /// Where a live run took its clock: the computer's time then, and the eclipse clock, which may be
    /// corrected to a better time source.
    struct LiveAnchor {
        base::Instant wall;
        double clock = 0;
    };
    LiveAnchor liveAnchor() const;

    /// For a run that is picked up again: the simulated clock, held to the timeline, or the live one, which
    /// a live run then begins on.
    void resumeSimulated(double clock);
    void takeLiveClock(double clock);
    void beginLiveRun();

    /// Puts a simulated clock at the start of the window of a site that has just been computed. A live
    /// clock stays with real time.
    void followSite();

    void saveSimClock(bool force);
    void restoreSimClock();

    /// The range in which a simulated clock may stand: 30 s around the captures, else 600 s around the
    /// contacts.
    struct Range {
        double first = 0;
        double last = 0;
    };
    Range timeline() const;

    /// The clock was moved by hand, or a run began or ended: what lies behind the clock is past.
    sigc::signal<void()>& moved() { return moved_; }
    /// A run of which something could be lost: it has begun, it goes on (on each tick), it is over.
    sigc::signal<void(TimingMode)>& runBegan() { return runBegan_; }
    sigc::signal<void()>& runTicked() { return runTicked_; }
    sigc::signal<void()>& runOver() { return runOver_; }
    /// Run active or not may have changed.
    sigc::signal<void()>& activityChanged() { return activityChanged_; }
    /// The clock was moved by hand to a place that views should show at once.
    sigc::signal<void()>& shown() { return shown_; }

private:
    void setMode(TimingMode mode);
    void setPlaying(bool playing);
    void moveTo(double clock);
    void anchorLive(base::Instant trueTime);
    double liveClock() const;

    const ports::Ports& ports_;
    RigLog& log_;
    const SiteDesk& site_;
    const ScriptDesk& script_;
    RunLogbook& logbook_;
    SleepGuard& sleepGuard_;

    std::function<bool()> holdsArming_;
    ClockOffset clockOffset_;
    double clock_ = 0;
    double clockReadAt_ = 0; // uptime seconds
    base::Published<TimingMode> timingMode_{TimingMode::simulated};
    base::Published<bool> playing_{false};
    base::Published<std::string> timingStatus_{"simulated clock"};
    base::Instant liveAnchorWall_;        // by the computer's clock
    base::Instant liveAnchorTrue_;        // by the best time source
    double liveAnchorUp_ = 0;             // continuous seconds
    std::optional<double> lastClockSave_; // uptime seconds
    sigc::signal<void()> moved_;
    sigc::signal<void(TimingMode)> runBegan_;
    sigc::signal<void()> runTicked_;
    sigc::signal<void()> runOver_;
    sigc::signal<void()> activityChanged_;
    sigc::signal<void()> shown_;
};

} // namespace zenka::rig
