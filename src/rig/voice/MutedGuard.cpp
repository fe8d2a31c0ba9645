#include "rig/voice/MutedGuard.h"

namespace zenka::rig {

namespace {

constexpr base::Seconds watchPeriod{1.0};

} // namespace

void MutedGuard::refreshAudioOutput() {
    const ports::AudioState state = ports_.audio.state();
    if (!state.fault.empty() && std::exchange(told_, state.fault) != state.fault)
        log_.pushLog("🔇 Whether the sound is on cannot be told: " + state.fault + ".");
    systemMuted_.set(state.muted.value_or(false));
    systemVolume_.set(state.volume);
    if (!systemMuted_.get()) {
        mutedModalDismissed_ = false;
        showModal(false);
    } else if (!mutedModalDismissed_) {
        showModal(voiceWanted_());
    }
}

void MutedGuard::dismiss() {
    mutedModalDismissed_ = true;
    showModal(false);
}

void MutedGuard::showModal(bool show) {
    if (show == showMutedModal_.get())
        return;
    if (show)
        startMutedModalWatch();
    else
        ports_.loop.cancel(std::exchange(mutedModalWatch_, ports::MainLoop::TimerId::none));
    showMutedModal_.set(show);
}

void MutedGuard::startMutedModalWatch() {
    mutedModalWatch_ = ports_.loop.every(watchPeriod, lifeline_.guard([this] { refreshAudioOutput(); }));
}

} // namespace zenka::rig
