#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/shared/RigLog.h"

#include <deque>
#include <string>

namespace zenka::rig {

/// What is to be spoken, one utterance after another, none of them cut off. An engine that never ends one
/// is given up on after a while. Each stands on the screen for as long as it is spoken, or would be where
/// there is no voice. Main thread.
class SpeechQueue {
public:
    /// More than this wait for their turn only where something is wrong; the oldest of them is then left out.
    static constexpr std::size_t mostWaiting = 32;

    SpeechQueue(const ports::Ports& ports, RigLog& log) : ports_(ports), log_(log) {}

    void speak(ports::Utterance utterance);

    /// What is being spoken; empty between utterances.
    const base::Published<std::string>& saying() const { return saying_; }

    /// How long a text takes, about.
    static base::Seconds durationOf(const std::string& text);

private:
    void begin();
    void ended(const ports::SpeechOutput::Result& result);
    void overdue();
    void next();
    void tellOnce(const std::string& fault);

    const ports::Ports& ports_;
    RigLog& log_;
    std::deque<ports::Utterance> waiting_;
    base::Published<std::string> saying_;
    bool busy_ = false;
    double begunAt_ = 0; // uptime seconds
    ports::MainLoop::TimerId timer_ = ports::MainLoop::TimerId::none;
    std::string told_; // the fault that the log has told last
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
