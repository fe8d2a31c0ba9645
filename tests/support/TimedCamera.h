#pragma once

#include "cameras/CameraControl.h"
#include "ports/Clock.h"
#include "ports/MainLoop.h"

#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace zenka::test {

/// A real body, as far as the engine can see, that takes its time on a test's clock: it answers a frame
/// after so long, or never. A frame that comes while it still has one is refused, as drivers do.
class TimedCamera final : public cameras::CameraControl {
public:
    static constexpr double never = std::numeric_limits<double>::infinity();

    struct Reply {
        double afterSec = 0;
        bool ok = true;
        bool responded = true;
    };
    /// By the spacing of the frame to the one before (infinite for the first), and its number from 1.
    using Behave = std::function<Reply(double spacingSec, int number)>;

    TimedCamera(ports::MainLoop& loop, const ports::Clock& clock, Behave behave)
        : loop_(loop), clock_(clock), behave_(std::move(behave)) {}

    std::string family = "gphoto2";
    std::string modelName = "Z8";
    std::vector<cameras::Shot> shots;
    std::vector<double> times; ///< of the shots, continuous seconds
    int suspends = 0;
    int resumes = 0;
    cameras::ExposureChoices choices;
    double readingSec = 0.1; ///< what reading them takes
    std::string profileError;

    const std::string& id() const override { return id_; }
    const std::string& serial() const override { return serial_; }
    const std::string& model() const override { return modelName; }
    std::string backend() const override { return family; }
    bool connected() const override { return connected_; }
    double minIntervalSec() const override { return 0.5; }
    void disconnect() override { connected_ = false; }
    void suspend() override { ++suspends; }
    void resume() override { ++resumes; }
    int shotCount() const override { return static_cast<int>(shots.size()); }

    void capture(const cameras::Shot& shot, CaptureDone done) override {
        if (busy_) {
            done({.note = "dropped, camera busy", .responded = true});
            return;
        }
        const double now = clock_.continuousSeconds();
        const Reply reply = behave_(times.empty() ? never : now - times.back(), shotCount() + 1);
        shots.push_back(shot);
        times.push_back(now);
        busy_ = true;
        if (reply.afterSec == never)
            return;
        loop_.after(base::Seconds{reply.afterSec}, [this, reply, done = std::move(done)] {
            busy_ = false;
            done({.ok = reply.ok, .latencyMs = reply.afterSec * 1000, .responded = reply.responded});
        });
    }

    using CameraControl::readExposureChoices;
    void readExposureChoices(std::function<void(const cameras::ExposureChoices&)> done) override {
        loop_.after(base::Seconds{readingSec}, [read = choices, done = std::move(done)] { done(read); });
    }
    std::string lastProfileError() const override { return profileError; }

private:
    ports::MainLoop& loop_;
    const ports::Clock& clock_;
    Behave behave_;
    const std::string id_ = "timed";
    const std::string serial_ = "SN-timed";
    bool connected_ = true;
    bool busy_ = false;
};

} // namespace zenka::test
