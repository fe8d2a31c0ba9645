#pragma once

#include "platform/virtual/VirtualTime.h"
#include "ports/AlertSounds.h"
#include "ports/AudioOutput.h"
#include "ports/ChildProcess.h"
#include "ports/FireTimer.h"
#include "ports/HttpClient.h"
#include "ports/ImageMetadata.h"
#include "ports/KeepAwake.h"
#include "ports/MachineSensors.h"
#include "ports/MainLoop.h"
#include "ports/PixelDecoder.h"
#include "ports/PlaceLookup.h"
#include "ports/SerialPorts.h"
#include "ports/Settings.h"
#include "ports/SpeechOutput.h"
#include "ports/StallSampler.h"
#include "ports/Volumes.h"
#include "ports/WorkQueues.h"

#include <limits>
#include <map>
#include <utility>
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

/// A machine whose pictures have no pixels.
class NoPixels final : public ports::PixelDecoder {
public:
    std::optional<ports::Pixels> decodePng(std::string_view, int, int) const override { return std::nullopt; }
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

/// A machine that starts no other programs.
class NoChildren final : public ports::ChildProcesses {
public:
    Started start(const ports::ChildStart&) override {
        return {.child = nullptr, .fault = "no program is started here"};
    }
};

class NoSerialPorts final : public ports::SerialPorts {
public:
    std::vector<std::string> candidates() override { return {}; }
    Opened open(const std::string&, int) override { return {.line = nullptr, .fault = "it is not there"}; }
};

/// A machine without sensors.
class NoSensors final : public ports::MachineSensors {
public:
    ports::MachineReading read() override { return {}; }
};

/// Says nothing, in no time.
class SilentSpeech final : public ports::SpeechOutput {
public:
    explicit SilentSpeech(ports::MainLoop& loop) : loop_(loop) {}
    void speak(ports::Utterance, Done done) override {
        loop_.post([done = std::move(done)] { done({.spoken = true, .fault = {}}); });
    }
    void abandon() override {}
    void warmUp() override {}
    void listVoices(TakeVoices take) override {
        loop_.post([take = std::move(take)] { take({}); });
    }
    std::string userLanguage() const override { return {}; }

private:
    ports::MainLoop& loop_;
};

class NoAlertSounds final : public ports::AlertSounds {
public:
    void play(const std::string&, Failed) override {}
};

/// An output of which nothing is known.
class UnknownAudio final : public ports::AudioOutput {
public:
    ports::AudioState state() const override { return {}; }
};

} // namespace zenka::platform
