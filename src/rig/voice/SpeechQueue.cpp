#include "rig/voice/SpeechQueue.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

/// A slow voice takes this much longer than the estimate, and an engine that has to be started some seconds.
constexpr double slowness = 3.0;
constexpr base::Seconds startOfEngine{8};

} // namespace

base::Seconds SpeechQueue::durationOf(const std::string& text) {
    // espeak-ng at its usual speed takes 70 to 100 ms for a character
    constexpr base::Seconds start{0.5};
    constexpr base::Seconds perByte{0.07};
    return start + perByte * static_cast<double>(text.size());
}

void SpeechQueue::speak(ports::Utterance utterance) {
    if (utterance.text.empty())
        return;
    if (waiting_.size() == mostWaiting) {
        log_.pushLog("🔇 Too much to say at once; left out: " + waiting_.front().text);
        waiting_.pop_front();
    }
    waiting_.push_back(std::move(utterance));
    if (!busy_)
        begin();
}

void SpeechQueue::begin() {
    busy_ = true;
    const ports::Utterance utterance = std::move(waiting_.front());
    waiting_.pop_front();
    begunAt_ = ports_.clock.uptimeSeconds();
    saying_.set(utterance.text);
    timer_ = ports_.loop.after(startOfEngine + durationOf(utterance.text) * slowness,
                               lifeline_.guard([this] { overdue(); }));
    ports_.speech.speak(utterance, lifeline_.guard([this](const auto& result) { ended(result); }));
}

void SpeechQueue::ended(const ports::SpeechOutput::Result& result) {
    ports_.loop.cancel(timer_);
    if (result.spoken) {
        told_.clear();
        return next();
    }
    tellOnce(result.fault);
    // Who has no voice reads it.
    const double shown = ports_.clock.uptimeSeconds() - begunAt_;
    timer_ = ports_.loop.after(std::max(base::Seconds{0}, durationOf(saying_.get()) - base::Seconds{shown}),
                               lifeline_.guard([this] { next(); }));
}

void SpeechQueue::overdue() {
    ports_.speech.abandon();
    tellOnce("the speech engine did not come to the end of a sentence");
    next();
}

void SpeechQueue::next() {
    busy_ = false;
    saying_.set({});
    if (!waiting_.empty())
        begin();
}

void SpeechQueue::tellOnce(const std::string& fault) {
    if (std::exchange(told_, fault) != fault)
        log_.pushLog("🔇 Not spoken: " + fault + ". What would be said stands on the screen.");
}

} // namespace zenka::rig
