#pragma once

#include "rig/RigLog.h"
#include "rig/ScriptDesk.h"

#include <functional>
#include <string>

namespace zenka::rig {

/// Tells the script's cues at their instants. Main thread.
class Announcer {
public:
    /// Runs the command line of a cue, detached.
    using RunShell = std::function<void(const std::string& command)>;

    Announcer(RigLog& log, const ScriptDesk& script) : log_(log), script_(script) {}

    /// Announces all cues at or before the clock that have not been announced.
    void announceDue(double clock);

    /// Counts everything at or behind the clock as past: a jump passes cues over in silence.
    void resetCursor(double clock);

    /// Clock value of the next cue, infinite if there is none.
    double nextOffset() const;

    /// Until it is set, commands are logged and not run.
    void setRunShell(RunShell runShell) { runShell_ = std::move(runShell); }

private:
    void announceCue(const script::AudioCue& cue);

    RigLog& log_;
    const ScriptDesk& script_;
    std::size_t cursor_ = 0; // cues below it have been announced
    RunShell runShell_;
};

} // namespace zenka::rig
