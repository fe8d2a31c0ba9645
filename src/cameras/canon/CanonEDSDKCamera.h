#pragma once

#include "base/Lifeline.h"
#include "cameras/CameraControl.h"
#include "cameras/canon/CanonEDSDK.h"

#include <memory>
#include <set>
#include <string>

namespace zenka::cameras {

/// A Canon body in a session of Canon's own SDK. Main thread, with the SDK's calls made on it, as the SDK
/// demands; the waits of a body that is busy pass as timers.
class CanonEDSDKCamera final : public CameraControl {
public:
    struct Body {
        std::string id;
        std::string model;
        std::string serial;
        std::int64_t handle = 0; ///< an open session, which is this object's to close
    };
    CanonEDSDKCamera(CanonEDSDK& sdk, Body body);
    ~CanonEDSDKCamera() override;
    CanonEDSDKCamera(const CanonEDSDKCamera&) = delete;
    CanonEDSDKCamera& operator=(const CanonEDSDKCamera&) = delete;

    const std::string& id() const override { return body_.id; }
    const std::string& serial() const override { return body_.serial; }
    const std::string& model() const override { return body_.model; }
    std::string backend() const override { return "CanonEDSDK"; }
    bool connected() const override { return connected_; }
    double minIntervalSec() const override { return minIntervalSec_; }
    int shotCount() const override { return shotCount_; }
    bool busy() const override { return shooting_ != nullptr; }

    void capture(const Shot& shot, CaptureDone done) override;
    void forceFullExposureNextFrame() override { forceFullExposureNextFrame_ = true; }

    /// Takes the SDK's events, so that a body that is about to sleep is kept awake.
    void keepAlive() override { sessionDead(); }
    bool sessionDead();

    /// Only says so: the session stays open until teardownSync() or the object's end.
    void disconnect() override { connected_ = false; }
    void suspend() override { teardownSync(); }
    void shutDown(base::Seconds) override { teardownSync(); }
    /// Closes the session. The camera fires no more.
    void teardownSync();

private:
    struct Shooting;

    void attempt();
    void advance();
    void attempted();
    /// Rebuilds a session that has gone stale; true when the shot is tried once more on the new one.
    bool rebuild();
    void finish(bool ok, std::string note, bool responded);
    void reportFireError(std::uint32_t code);

    CanonEDSDK& sdk_;
    Body body_;
    bool released_ = false;
    bool connected_ = true;
    const double minIntervalSec_;
    int shotCount_ = 0;
    bool forceFullExposureNextFrame_ = false;
    int reopenCount_ = 0;
    std::set<std::uint32_t> reportedFireCodes_;
    std::unique_ptr<Shooting> shooting_; // the shot that is under way
    base::Lifeline lifeline_;
};

} // namespace zenka::cameras
