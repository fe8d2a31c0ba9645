#pragma once

#include "cameras/CameraControl.h"
#include "cameras/CameraProfiles.h"
#include "cameras/lumix/LumixHelper.h"

#include <memory>
#include <optional>
#include <string>

namespace zenka::cameras {

/// A Lumix body driven through a helper process, which also counts the frames that the body confirms.
///
/// Made and used on the main thread. All work is done on the helper's queue and comes back through the main
/// loop, also when the camera has gone by then.
class LumixPTPCamera final : public CameraControl {
public:
    struct Body {
        std::string id;
        std::string model;
        std::string port; ///< "usb:001,004"
        std::string serial;
    };
    /// Takes over a helper that runs and has answered, and its answer to {"cmd":"status"}.
    LumixPTPCamera(const LumixMachine& machine, Body body, std::shared_ptr<LumixHelper> helper,
                   const LumixHelper::Json& status);
    ~LumixPTPCamera() override;
    LumixPTPCamera(const LumixPTPCamera&) = delete;
    LumixPTPCamera& operator=(const LumixPTPCamera&) = delete;

    const std::string& id() const override { return body_.id; }
    const std::string& serial() const override { return body_.serial; }
    const std::string& model() const override { return body_.model; }
    std::string port() const override { return body_.port; }
    std::string backend() const override { return "LumixPTP"; }
    bool connected() const override { return connected_; }
    double minIntervalSec() const override { return profile_.safeIntervalSec; }
    std::optional<double> measuredFloorSec() const { return profile_.measuredFloorSec; }
    int shotCount() const override { return shotCount_; }
    std::optional<int> confirmedFrames() const override { return confirmedTotal_; }
    std::optional<int> usbBus() const override { return helper_->bus(); }
    int usbAddr() const { return helper_->address(); }
    bool driveModeBurst() const override { return driveModeBurst_; }
    bool singleShotImmuneToDrive() const override { return singleShotImmuneToDrive_; }

    void capture(const Shot& shot, CaptureDone done) override;
    void forceFullExposureNextFrame() override { forceFullExposure_ = true; }
    void disconnect() override;
    /// The body is free for another driver at once after it; resume() starts the helper anew.
    void suspend() override;
    void resume() override;
    void shutDown(base::Seconds limit) override;

    void keepAlive() override;
    void probe(std::function<void(const CameraStatus&)> done) override;
    void probeAutoISO(std::function<void(const AutoIsoStatus&)> done) override;
    bool polled() const override { return true; }
    bool busy() const override { return busy_; }
    void poll(std::function<void(const PollReply&)> done) override;

private:
    struct Asked {
        std::optional<LumixHelper::Json> reply; ///< absent too where the body itself did not answer
        bool linkEnded = false;
    };
    /// Puts a question on the queue and its answer's receiver on the main thread.
    void ask(const char* command, std::function<void(const Asked&)> done);
    void note(const LumixHelper::Json& reply);
    void finish(const CaptureOutcome& outcome, const std::optional<LumixHelper::Json>& reply);

    const LumixMachine machine_;
    Body body_;
    ShotProfile profile_;
    std::shared_ptr<LumixHelper> helper_;
    bool connected_ = true;
    bool busy_ = false;
    bool forceFullExposure_ = true;
    int shotCount_ = 0;
    std::optional<int> confirmedTotal_; // absent until the helper has told of any
    int confirmedBefore_ = 0;           // of helpers that have ended, each of which counts anew
    bool driveModeBurst_ = false;
    bool singleShotImmuneToDrive_ = false;
    std::shared_ptr<const int> living_ = std::make_shared<const int>(0); // gone with the camera
};

/// What the helper's answers say.
namespace LumixReplies {

using Json = LumixHelper::Json;

/// What a frame is asked for with.
Json fireRequest(const Shot& shot, bool full);
CaptureOutcome outcomeOf(const std::optional<Json>& reply, const Shot& shot, double elapsedMs);
CameraStatus statusOf(const Json& reply);
AutoIsoStatus autoIsoOf(const Json& reply);
PollReply pollReplyOf(const Json& reply);

/// False when the helper says that the body was asked and kept silent.
bool bodyAnswered(const Json& reply);

} // namespace LumixReplies

} // namespace zenka::cameras
