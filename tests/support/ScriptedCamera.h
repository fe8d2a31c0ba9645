#pragma once

#include "cameras/CameraControl.h"

#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace zenka::test {

/// A real body, as far as the engine can see, that plays what a test wrote for it. A shot beyond the
/// script comes back ok at once.
class ScriptedCamera final : public cameras::CameraControl {
public:
    explicit ScriptedCamera(std::string id, std::string model = "Z8")
        : serialNumber("SN-" + id), id_(std::move(id)), model_(std::move(model)) {}

    std::deque<cameras::CaptureOutcome> outcomes; ///< of the next shots
    std::vector<cameras::Shot> shots;             ///< as they came
    bool holdCompletions = false;                 ///< keep them until complete()
    std::optional<int> bus;
    std::optional<int> confirmed;
    std::string family = "gphoto2";
    std::string serialNumber;
    std::string portName;

    const std::string& id() const override { return id_; }
    const std::string& serial() const override { return serialNumber; }
    const std::string& model() const override { return model_; }
    std::string backend() const override { return family; }
    std::string port() const override { return portName; }
    bool connected() const override { return connected_; }
    double minIntervalSec() const override { return 0.5; }
    void disconnect() override { connected_ = false; }
    bool suspended = false;
    void suspend() override { suspended = true; }
    void resume() override { suspended = false; }
    int pings = 0;
    void keepAlive() override { ++pings; }
    std::optional<int> usbBus() const override { return bus; }
    int shotCount() const override { return static_cast<int>(shots.size()); }
    std::optional<int> confirmedFrames() const override { return confirmed; }

    cameras::CameraStatus status; ///< what a probe tells; an empty one is no answer
    int probes = 0;
    std::function<void(const ScriptedCamera&)> onCapture;
    int fullExposures = 0; ///< frames that were asked to send every setting

    cameras::ExposureChoices choices;
    cameras::ExposureChoices readExposureChoices() override { return choices; }
    void readExposureChoices(std::function<void(const cameras::ExposureChoices&)> done) override {
        done(choices);
    }
    cameras::AutoIsoStatus autoIso;
    void probeAutoISO(std::function<void(const cameras::AutoIsoStatus&)> done) override { done(autoIso); }
    void probe(std::function<void(const cameras::CameraStatus&)> done) override {
        ++probes;
        done(status);
    }
    void forceFullExposureNextFrame() override { ++fullExposures; }

    bool isPolled = false;
    bool isBusy = false;
    std::optional<cameras::PollReply> reply; ///< none comes without
    int polls = 0;
    bool polled() const override { return isPolled; }
    bool busy() const override { return isBusy; }
    void poll(std::function<void(const cameras::PollReply&)> done) override {
        ++polls;
        if (reply)
            done(*reply);
    }

    bool burst = false;
    bool noSingleMode = false;
    std::optional<bool> manualFocus;
    std::optional<bool> handshake;
    bool driveModeBurst() const override { return burst; }
    bool lacksSingleMode() const override { return noSingleMode; }
    std::optional<bool> focusIsMF() const override { return manualFocus; }
    std::optional<bool> handshakeOK() const override { return handshake; }
    void capture(const cameras::Shot& shot, CaptureDone done) override {
        shots.push_back(shot);
        if (onCapture)
            onCapture(*this);
        cameras::CaptureOutcome outcome{.ok = true, .latencyMs = 212, .responded = true};
        if (!outcomes.empty()) {
            outcome = outcomes.front();
            outcomes.pop_front();
        }
        if (holdCompletions)
            held_.emplace_back(std::move(done), outcome);
        else
            done(outcome);
    }

    void complete() {
        const auto held = std::exchange(held_, {});
        for (const auto& [done, outcome] : held)
            done(outcome);
    }

private:
    std::string id_;
    std::string model_;
    bool connected_ = true;
    std::vector<std::pair<CaptureDone, cameras::CaptureOutcome>> held_;
};

/// Outcomes to write into a script.
inline cameras::CaptureOutcome silence() {
    return {.ok = false, .note = "no answer"};
}
inline cameras::CaptureOutcome refusal() {
    return {.ok = false, .note = "dropped, camera busy", .responded = true};
}

} // namespace zenka::test
