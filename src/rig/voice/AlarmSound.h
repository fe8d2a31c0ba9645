#pragma once

#include "base/Lifeline.h"
#include "ports/Ports.h"
#include "rig/shared/RigLog.h"

#include <string>

namespace zenka::rig {

/// The sound of an alarm: once, or again and again until somebody has seen the alarm. Main thread.
class AlarmSound {
public:
    AlarmSound(const ports::Ports& ports, RigLog& log) : ports_(ports), log_(log) {}

    void playOnce();
    /// Plays it now and every 0.9 s, eight times in all.
    void startAlarmSound();
    void stop();

private:
    void repeat();

    const ports::Ports& ports_;
    RigLog& log_;
    int left_ = 0;
    ports::MainLoop::TimerId alarmTimer_ = ports::MainLoop::TimerId::none;
    bool told_ = false;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
