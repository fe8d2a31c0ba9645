#include "platform/virtual/VirtualMachine.h"

#include "base/Text.h"

#include <cmath>
#include <deque>
#include <utility>

namespace zenka::platform {

void VirtualLoop::post(Function function) {
    time_.at(time_.continuousSeconds(), VirtualTime::Lane::main, std::move(function));
}

ports::MainLoop::TimerId VirtualLoop::after(base::Seconds delay, Function function) {
    const TimerId timer{++lastTimer_};
    timers_[timer] = time_.at(time_.continuousSeconds() + delay.count(), VirtualTime::Lane::main,
                              [this, timer, function = std::move(function)] {
                                  timers_.erase(timer);
                                  function();
                              });
    return timer;
}

ports::MainLoop::TimerId VirtualLoop::every(base::Seconds period, Function function) {
    const TimerId timer{++lastTimer_};
    scheduleRepeat(timer, period, std::move(function));
    return timer;
}

void VirtualLoop::scheduleRepeat(TimerId timer, base::Seconds period, Function function) {
    timers_[timer] = time_.at(time_.continuousSeconds() + period.count(), VirtualTime::Lane::main,
                              [this, timer, period, function = std::move(function)] {
                                  scheduleRepeat(timer, period, function);
                                  function();
                              });
}

void VirtualLoop::cancel(TimerId timer) {
    if (const auto found = timers_.find(timer); found != timers_.end()) {
        time_.cancel(found->second);
        timers_.erase(found);
    }
}

namespace {

class VirtualWorkQueue final : public ports::WorkQueue {
public:
    explicit VirtualWorkQueue(VirtualTime& time) : time_(time) {}

    void post(Function function) override {
        posted_->push_back(std::move(function));
        time_.at(time_.continuousSeconds(), VirtualTime::Lane::other,
                 [posted = posted_] { runNext(*posted); });
    }

    void postAfter(base::Seconds delay, Function function) override {
        time_.at(time_.continuousSeconds() + delay.count(), VirtualTime::Lane::other, std::move(function));
    }

    bool drain(base::Seconds) override {
        while (runNext(*posted_)) {
        }
        return true;
    }

private:
    static bool runNext(std::deque<Function>& posted) {
        if (posted.empty())
            return false;
        const Function function = std::move(posted.front());
        posted.pop_front();
        function();
        return true;
    }

    VirtualTime& time_;
    std::shared_ptr<std::deque<Function>> posted_ = std::make_shared<std::deque<Function>>();
};

} // namespace

std::shared_ptr<ports::WorkQueue> VirtualWorkQueues::serial(const std::string&) {
    return std::make_shared<VirtualWorkQueue>(time_);
}

void VirtualWorkQueues::background(std::function<void()> function) {
    time_.at(time_.continuousSeconds(), VirtualTime::Lane::other, std::move(function));
}

void VirtualFireTimer::start(base::Seconds period, base::Seconds, std::function<void()> beat) {
    stop();
    beat_ = std::move(beat);
    period_ = period;
    scheduleBeat();
}

void VirtualFireTimer::reschedule(base::Seconds period, base::Seconds) {
    period_ = period;
    time_.cancel(nextBeat_);
    scheduleBeat();
}

void VirtualFireTimer::scheduleBeat() {
    nextBeat_ = time_.at(time_.continuousSeconds() + period_.count(), VirtualTime::Lane::other, [this] {
        scheduleBeat();
        beat_();
    });
}

void VirtualFireTimer::wakeAt(double continuousSeconds) {
    time_.cancel(wake_);
    if (std::isfinite(continuousSeconds))
        wake_ = time_.at(continuousSeconds, VirtualTime::Lane::other, [this] { beat_(); });
}

void VirtualFireTimer::stop() {
    time_.cancel(nextBeat_);
    time_.cancel(wake_);
}

ports::HttpClient::RequestId NoHttp::send(ports::HttpRequest, Done done) {
    const auto timer = loop_.after(base::Seconds{0}, [done = std::move(done)] {
        ports::HttpReply reply;
        reply.fault = "there is no network";
        done(reply);
    });
    return RequestId{static_cast<std::uint64_t>(timer)};
}

void NoHttp::cancel(RequestId request) {
    loop_.cancel(ports::MainLoop::TimerId{static_cast<std::uint64_t>(request)});
}

namespace {

template <typename T, typename Values>
std::optional<T> valueOf(const Values& values, const std::string& key) {
    const auto found = values.find(key);
    if (found == values.end())
        return std::nullopt;
    const T* value = std::get_if<T>(&found->second);
    return value ? std::optional<T>(*value) : std::nullopt;
}

} // namespace

std::optional<std::string> MemorySettings::text(const std::string& key) const {
    return valueOf<std::string>(values_, key);
}

std::optional<double> MemorySettings::number(const std::string& key) const {
    return valueOf<double>(values_, key);
}

std::optional<bool> MemorySettings::flag(const std::string& key) const {
    return valueOf<bool>(values_, key);
}

std::vector<std::string> MemorySettings::keysBeginningWith(const std::string& prefix) const {
    return base::keysBeginningWith(values_, prefix);
}

} // namespace zenka::platform
