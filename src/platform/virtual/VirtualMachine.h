#pragma once

#include "platform/virtual/VirtualTime.h"
#include "ports/FireTimer.h"
#include "ports/HttpClient.h"
#include "ports/ImageMetadata.h"
#include "ports/KeepAwake.h"
#include "ports/MainLoop.h"
#include "ports/PlaceLookup.h"
#include "ports/Settings.h"
#include "ports/StallSampler.h"
#include "ports/Volumes.h"
#include "ports/WorkQueues.h"

#include <limits>
#include <map>
#include <variant>
#include <vector>

namespace zenka::platform {

/// The main loop in virtual time.
class VirtualLoop final : public ports::MainLoop {
public:
    explicit VirtualLoop(VirtualTime& time) : time_(time) {}

    void post(Function function) override;
    TimerId after(base::Seconds delay, Function function) override;
    TimerId every(base::Seconds period, Function function) override;
    void cancel(TimerId timer) override;
    bool onMainThread() const override { return time_.onMainLane(); }

private:
    void scheduleRepeat(TimerId timer, base::Seconds period, Function function);

    VirtualTime& time_;
    std::uint64_t lastTimer_ = 0;
    std::map<TimerId, VirtualTime::Ticket> timers_;
};

/// Queues whose work takes no time, in order of posting.
class VirtualWorkQueues final : public ports::WorkQueues {
public:
    explicit VirtualWorkQueues(VirtualTime& time) : time_(time) {}

    std::shared_ptr<ports::WorkQueue> serial(const std::string& name) override;
    void background(std::function<void()> function) override;

private:
    VirtualTime& time_;
};

/// The beat in virtual time.
class VirtualFireTimer final : public ports::FireTimer {
public:
    explicit VirtualFireTimer(VirtualTime& time) : time_(time) {}

    void start(base::Seconds period, base::Seconds slack, std::function<void()> beat) override;
    void reschedule(base::Seconds period, base::Seconds slack) override;
    void wakeAt(double continuousSeconds) override;
    void stop() override;

    base::Seconds period() const { return period_; }

private:
    void scheduleBeat();

    VirtualTime& time_;
    std::function<void()> beat_;
    base::Seconds period_{0};
    VirtualTime::Ticket nextBeat_ = 0;
    VirtualTime::Ticket wake_ = 0;
};

/// Settings that live in memory and end with the process.
class MemorySettings final : public ports::Settings {
public:
    std::optional<std::string> text(const std::string& key) const override;
    void setText(const std::string& key, const std::string& value) override { values_[key] = value; }
    std::optional<double> number(const std::string& key) const override;
    void setNumber(const std::string& key, double value) override { values_[key] = value; }
    std::optional<bool> flag(const std::string& key) const override;
    void setFlag(const std::string& key, bool value) override { values_[key] = value; }
    void remove(const std::string& key) override { values_.erase(key); }
    std::vector<std::string> keysBeginningWith(const std::string& prefix) const override;

private:
    std::map<std::string, std::variant<std::string, double, bool>> values_;
};

/// A machine that never sleeps and never stalls needs neither of these.
class NoKeepAwake final : public ports::KeepAwake {
public:
    void hold(const std::string&) override {}
    void release() override {}
};

/// A world of sea: no zone and no place anywhere.
class NoPlaces final : public ports::PlaceLookup {
public:
    std::optional<std::string> zoneAt(double, double) const override { return std::nullopt; }
    std::optional<std::string> placeAt(double, double) const override { return std::nullopt; }
    std::vector<ports::FoundPlace> search(std::string_view, std::size_t) const override { return {}; }
};

/// A machine without a network.
class NoHttp final : public ports::HttpClient {
public:
    explicit NoHttp(ports::MainLoop& loop) : loop_(loop) {}
    RequestId send(ports::HttpRequest request, Done done) override;
    void cancel(RequestId request) override;

private:
    ports::MainLoop& loop_;
};

/// A machine whose files are no images.
class NoImages final : public ports::ImageMetadata {
public:
    std::optional<ports::ImageFields> read(const std::filesystem::path&) override { return std::nullopt; }
};

/// A machine without a card reader.
class NoVolumes final : public ports::Volumes {
public:
    std::vector<std::filesystem::path> mounted() override { return {}; }
    void watch(std::function<void()>) override {}
};

class NoStallSampler final : public ports::StallSampler {
public:
    bool sampleTo(const std::filesystem::path&) override { return false; }
};

} // namespace zenka::platform
