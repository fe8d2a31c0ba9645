#pragma once

#include "platform/virtual/VirtualTime.h"
#include "ports/SerialPorts.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zenka::test {

/// Serial devices in virtual time. Time passes where the code under test waits for bytes, and whatever else
/// is due happens meanwhile, at its instant; so a runFor() may end late by what one read waits. What comes
/// while nobody has the device open is lost.
class ScriptedSerial final : public ports::SerialPorts {
public:
    explicit ScriptedSerial(platform::VirtualTime& time) : state_(std::make_shared<State>(time)) {}

    /// What a device sends at an instant of the wall clock.
    using Sentences = std::function<std::string(base::Instant wall)>;

    /// A device comes; it is silent until it is told to send.
    void plug(const std::string& path) { state_->devices[path] = std::make_shared<Device>(); }
    void unplug(const std::string& path) {
        if (const auto found = state_->devices.extract(path))
            found.mapped()->gone = true;
    }

    /// A device that cannot be opened, for a reason.
    void refuse(const std::string& path, std::string fault) {
        plug(path);
        state_->devices[path]->fault = std::move(fault);
    }

    /// Sends once in every period, first after one. The device is plugged in if it is not.
    void stream(const std::string& path, Sentences sentences, double periodSec = 1) {
        if (!state_->devices.contains(path))
            plug(path);
        Device& device = *state_->devices[path];
        device.sentences = std::move(sentences);
        device.periodSec = periodSec;
        device.streamStart = state_->time.continuousSeconds();
    }
    void silence(const std::string& path) { state_->devices.at(path)->sentences = {}; }

    /// Sends now.
    void send(const std::string& path, std::string_view bytes) {
        Device& device = *state_->devices.at(path);
        if (device.open)
            device.waiting += bytes;
    }

    bool isOpen(const std::string& path) const {
        const auto found = state_->devices.find(path);
        return found != state_->devices.end() && found->second->open;
    }

    /// Each attempt to open a device: its path and the continuous clock.
    struct Attempt {
        std::string path;
        double at = 0;
    };
    std::vector<Attempt> attempts;
    int listings = 0; ///< how often the candidates were asked for

    std::vector<std::string> candidates() override {
        ++listings;
        std::vector<std::string> paths;
        for (const auto& [path, device] : state_->devices)
            paths.push_back(path);
        return paths;
    }

    Opened open(const std::string& path, int) override {
        attempts.push_back({.path = path, .at = state_->time.continuousSeconds()});
        const auto found = state_->devices.find(path);
        if (found == state_->devices.end())
            return {.line = nullptr, .fault = "it is not there"};
        if (found->second->open || !found->second->fault.empty())
            return {.line = nullptr,
                    .fault = found->second->open ? "it is open already" : found->second->fault};
        return {.line = std::make_unique<Line>(state_, found->second), .fault = {}};
    }

private:
    struct Device {
        bool gone = false;
        bool open = false;
        std::string fault;
        std::string waiting;
        Sentences sentences;
        double periodSec = 1;
        double streamStart = 0;
        double lastBurst = 0;

        double nextBurst() const {
            if (!sentences)
                return std::numeric_limits<double>::infinity();
            constexpr double hair = 1e-9;
            const double passed = std::max(lastBurst - streamStart, 0.0);
            return streamStart + (std::floor(passed / periodSec + hair) + 1) * periodSec;
        }

        /// Has all come in that was sent up to now, as far as a line's buffer holds it.
        void receive(const platform::VirtualTime& time) {
            constexpr std::size_t buffer = 4096;
            const double now = time.continuousSeconds();
            for (double burst = nextBurst(); burst <= now; burst = nextBurst()) {
                lastBurst = burst;
                if (waiting.size() < buffer)
                    waiting += sentences(time.now() - base::Seconds{now - burst});
            }
        }
    };

    // lives as long as the lines, which may outlive the test's own end of them
    struct State {
        explicit State(platform::VirtualTime& given) : time(given) {}
        platform::VirtualTime& time;
        std::map<std::string, std::shared_ptr<Device>> devices;
    };

    class Line final : public ports::SerialLine {
    public:
        Line(std::shared_ptr<State> state, std::shared_ptr<Device> device)
            : state_(std::move(state)), device_(std::move(device)) {
            device_->open = true;
            device_->waiting.clear();
            device_->lastBurst = state_->time.continuousSeconds();
        }
        Line(const Line&) = delete;
        Line& operator=(const Line&) = delete;
        ~Line() override { device_->open = false; }

        Reading read(base::Seconds limit) override {
            platform::VirtualTime& time = state_->time;
            const double end = time.continuousSeconds() + limit.count();
            // Another lane's work may send, unplug or silence meanwhile, so time passes in small pieces.
            for (;;) {
                device_->receive(time);
                const double now = time.continuousSeconds();
                if (!device_->waiting.empty() || device_->gone)
                    break;
                if (now >= end)
                    return {};
                const double until = std::min(end, device_->nextBurst());
                const auto heard = [this] { return !device_->waiting.empty() || device_->gone; };
                if (!time.runUntil(heard, base::Seconds{until - now}))
                    time.runFor(base::Seconds{until - time.continuousSeconds()});
            }
            constexpr std::size_t most = 512;
            Reading reading{.bytes = device_->waiting.substr(0, most), .gone = device_->gone};
            device_->waiting.erase(0, most);
            return reading;
        }

    private:
        std::shared_ptr<State> state_;
        std::shared_ptr<Device> device_;
    };

    std::shared_ptr<State> state_;
};

} // namespace zenka::test
