#include "rig/voice/Announcer.h"

#include "rig/shared/SettingsKeys.h"

#include <algorithm>
#include <limits>

namespace zenka::rig {

namespace {

constexpr double speechRate = 0.96; // of the user's usual one

} // namespace

Announcer::Announcer(const ports::Ports& ports, RigLog& log, const ScriptDesk& script,
                     const CommandConsent& consent)
    : ports_(ports), log_(log), script_(script), consent_(consent), voices_(ports), speaker_(ports, log),
      shell_(ports, log), audioEnabled_(ports.settings.flag(settingsKeys::audioEnabled).value_or(true)) {
}

void Announcer::announceDue(double clock) {
    while (firedCueSet_ < script_.audioCues().size() && script_.audioCues()[firedCueSet_].offsetSec <= clock)
        announceCue(script_.audioCues()[firedCueSet_++]);
}

void Announcer::announceCue(const script::AudioCue& cue) {
    if (!cue.shell.empty()) {
        if (!consent_.mayRun(cue.shell))
            return log_.pushLog("⏭ " + cue.refLabel + ": the command “" + cue.text +
                                "” was not run, for it came with a file and has not been allowed.");
        log_.pushLog("⚙︎ " + cue.refLabel + ": " + cue.text);
        shell_.runShell(cue.shell, cue.text);
        return;
    }
    log_.pushLog("🔊 " + cue.refLabel + ": " + cue.text);
    speakIfWanted(cue.text);
}

void Announcer::resetCursor(double clock) {
    const auto& cues = script_.audioCues();
    const auto past = std::ranges::upper_bound(cues, clock, {}, &script::AudioCue::offsetSec) - cues.begin();
    firedCueSet_ = static_cast<std::size_t>(past);
}

double Announcer::nextOffset() const {
    const auto& cues = script_.audioCues();
    return firedCueSet_ < cues.size() ? cues[firedCueSet_].offsetSec
                                      : std::numeric_limits<double>::infinity();
}

void Announcer::setAudioEnabled(bool enabled) {
    ports_.settings.setFlag(settingsKeys::audioEnabled, enabled);
    audioEnabled_.set(enabled);
}

void Announcer::speak(const std::string& text) {
    voices_.learnVoices();
    speaker_.speak({.text = text, .voiceId = voices_.currentVoice(), .rate = speechRate, .volume = 1.0});
}

void Announcer::speakIfWanted(const std::string& text) {
    if (audioEnabled_.get())
        speak(text);
}

void Announcer::testVoice() {
    speak("Remove filters");
}

void Announcer::warmUp() {
    ports_.speech.warmUp();
    voices_.learnVoices();
}

} // namespace zenka::rig
