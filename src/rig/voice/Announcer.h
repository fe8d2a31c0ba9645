#pragma once

#include "ports/Ports.h"
#include "rig/script/CommandConsent.h"
#include "rig/script/ScriptDesk.h"
#include "rig/shared/RigLog.h"
#include "rig/voice/ShellCues.h"
#include "rig/voice/SpeechQueue.h"
#include "rig/voice/VoiceChoice.h"

#include <cstddef>
#include <string>

namespace zenka::rig {

/// Tells the script's cues at their instants, and speaks what else is to be heard. Main thread.
class Announcer {
public:
    Announcer(const ports::Ports& ports, RigLog& log, const ScriptDesk& script,
              const CommandConsent& consent);

    /// Announces all cues at or before the clock that have not been announced.
    void announceDue(double clock);

    /// Counts everything at or behind the clock as past: a jump passes cues over in silence.
    void resetCursor(double clock);

    /// Clock value of the next cue, infinite if there is none.
    double nextOffset() const;

    /// Whether cues are spoken; they are logged in any case. The user's setting.
    const base::Published<bool>& audioEnabled() const { return audioEnabled_; }
    void setAudioEnabled(bool enabled);

    /// Speaks when all that was said before has been spoken.
    void speak(const std::string& text);
    /// Speaks if the user wants to hear cues.
    void speakIfWanted(const std::string& text);
    void testVoice();

    /// A run begins: its first cue is not to wait for the engine.
    void warmUp();

    VoiceChoice& voices() { return voices_; }
    /// What is being spoken, for the screen; empty between utterances.
    const base::Published<std::string>& saying() const { return speaker_.saying(); }

    /// Ends the commands of cues that still run.
    void endCommands() { shell_.endAll(); }

private:
    void announceCue(const script::AudioCue& cue);

    const ports::Ports& ports_;
    RigLog& log_;
    const ScriptDesk& script_;
    const CommandConsent& consent_;
    VoiceChoice voices_;
    SpeechQueue speaker_;
    ShellCues shell_;
    base::Published<bool> audioEnabled_;
    std::size_t firedCueSet_ = 0; // cues below it have been announced
};

} // namespace zenka::rig
