#pragma once

#include "base/Lifeline.h"
#include "cameras/CameraControl.h"
#include "cameras/DriverMachine.h"
#include "cameras/sony/SonyLink.h"
#include "cameras/usb/CameraRivals.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zenka::cameras {

/// A body held through Sony's Camera Remote SDK. It mends its own link: a fire that failed is followed by a
/// new session, or by waiting for the SDK to mend the old one, and meanwhile shots are refused at once.
///
/// Made and used on the main thread. Fires run on a queue of its own, all else that waits on another; both
/// come back through the main loop, also when the camera has gone by then.
class SonyCRSDKCamera final : public CameraControl {
public:
    struct Body {
        std::string id;
        std::string model;
        std::string serial;      ///< the SDK's id
        std::int64_t handle = 0; ///< closed with the driver
        bool driveModeBurst = false;
        bool handshakeOK = false;
        std::string firmwareVersion;
        ExposureChoices choices;
    };
    SonyCRSDKCamera(const DriverMachine& machine, const CameraRivals& rivals, Body body);
    ~SonyCRSDKCamera() override;
    SonyCRSDKCamera(const SonyCRSDKCamera&) = delete;
    SonyCRSDKCamera& operator=(const SonyCRSDKCamera&) = delete;

    const std::string& id() const override { return body_.id; }
    const std::string& serial() const override { return body_.serial; }
    const std::string& model() const override { return body_.model; }
    std::string backend() const override { return "CrSDK"; }
    bool connected() const override { return connected_; }
    double minIntervalSec() const override { return 0.4; }
    int shotCount() const override { return shotCount_; }
    bool driveModeBurst() const override { return body_.driveModeBurst; }
    bool busy() const override { return busy_; }
    std::optional<bool> handshakeOK() const override { return body_.handshakeOK; }
    const std::string& firmwareVersion() const { return body_.firmwareVersion; }
    /// The session that it holds. It may be looked at on any thread.
    std::shared_ptr<const SonyLink> link() const { return link_; }

    void capture(const Shot& shot, CaptureDone done) override;
    void forceFullExposureNextFrame() override { *forceFullExposure_ = true; }

    /// As of the connection.
    ExposureChoices readExposureChoices() override { return body_.choices; }
    /// Asks the body.
    void readExposureChoices(std::function<void(const ExposureChoices&)> done) override;
    void probe(std::function<void(const CameraStatus&)> done) override;

    void disconnect() override { connected_ = false; }
    /// Closes the session, without waiting.
    void suspend() override;
    /// Begins another.
    void resume() override;
    void shutDown(base::Seconds limit) override;

    /// An error code of the SDK in words.
    static std::string crErrorName(std::uint32_t code);
    /// "1/250", "0.5", "2"; empty for 0 and less.
    static std::string shutterLabel(double seconds);
    /// What a dump says of the exposure program.
    static CameraStatus statusIn(const std::string& stateDump);

private:
    struct Fired;

    static Fired fire(std::int64_t handle, const Shot& shot, bool everySetting);
    void refuse(CaptureDone done, const std::string& reason);
    void fired(const Fired& result);
    void handleFireFailure(std::uint32_t code);
    void readFirmwareAndReport(std::uint32_t code);
    void startReopen();
    void reopenAfter(base::Seconds delay);
    void waitForSDKReconnect();
    void mended(bool connected);
    void close(std::int64_t handle);

    const DriverMachine machine_;
    const CameraRivals rivals_;
    Body body_;
    const std::shared_ptr<SonyLink> link_;
    const std::shared_ptr<std::atomic<bool>> forceFullExposure_ = std::make_shared<std::atomic<bool>>(false);
    bool connected_ = true;
    bool busy_ = false;
    bool reopening_ = false;
    int moreReopens_ = 0; ///< tries that are left when the one under way comes to nothing
    bool reportedFireError_ = false;
    int shotCount_ = 0;
    int reopenBurst_ = 0; ///< new sessions since the last frame
    std::uint32_t lastFireErr_ = 0;
    const std::shared_ptr<ports::WorkQueue> fireQueue_;
    const std::shared_ptr<ports::WorkQueue> linkQueue_;
    base::Lifeline lifeline_;
};

} // namespace zenka::cameras
