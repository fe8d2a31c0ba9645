#include "rig/Announcer.h"

#include <algorithm>
#include <limits>

namespace zenka::rig {

void Announcer::announceDue(double clock) {
    while (cursor_ < script_.audioCues().size() && script_.audioCues()[cursor_].offsetSec <= clock)
        announceCue(script_.audioCues()[cursor_++]);
}

void Announcer::announceCue(const script::AudioCue& cue) {
    if (cue.shell.empty()) {
        log_.pushLog("🔊 " + cue.refLabel + ": " + cue.text);
        return;
    }
    log_.pushLog("⚙︎ " + cue.refLabel + ": " + cue.text);
    if (runShell_)
        runShell_(cue.shell);
}

void Announcer::resetCursor(double clock) {
    const auto& cues = script_.audioCues();
    const auto past = std::ranges::upper_bound(cues, clock, {}, &script::AudioCue::offsetSec) - cues.begin();
    cursor_ = static_cast<std::size_t>(past);
}

double Announcer::nextOffset() const {
    const auto& cues = script_.audioCues();
    return cursor_ < cues.size() ? cues[cursor_].offsetSec : std::numeric_limits<double>::infinity();
}

} // namespace zenka::rig
