#include "rig/voice/AlarmSound.h"

#include "rig/shared/PlatformWords.h"

#include <utility>

namespace zenka::rig {

namespace {

constexpr base::Seconds alarmPeriod{0.9};
constexpr int plays = 8;

} // namespace

void AlarmSound::playOnce() {
    ports_.sounds.play(std::string(platformWords::alertSound),
                       lifeline_.guard([this](const std::string& fault) {
                           if (!std::exchange(told_, true))
                               log_.pushLog("🔇 The alarm sound cannot be played: " + fault + ".");
                       }));
}

void AlarmSound::startAlarmSound() {
    stop();
    left_ = plays;
    repeat();
    alarmTimer_ = ports_.loop.every(alarmPeriod, lifeline_.guard([this] { repeat(); }));
}

void AlarmSound::repeat() {
    playOnce();
    if (--left_ == 0)
        stop();
}

void AlarmSound::stop() {
    ports_.loop.cancel(std::exchange(alarmTimer_, ports::MainLoop::TimerId::none));
}

} // namespace zenka::rig
