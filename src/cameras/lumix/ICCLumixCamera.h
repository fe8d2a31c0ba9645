#pragma once

#include "cameras/CameraControl.h"
#include "cameras/CameraProfiles.h"
#include "cameras/DriverMachine.h"
#include "cameras/lumix/ICCManager.h"

#include <memory>
#include <string>

namespace zenka::cameras {

/// A Lumix body driven through a PTP service of the system: the alternative to the helper process, for a
/// system that has such a service. It sees no events, so it cannot tell which frames were stored.
class ICCLumixCamera final : public CameraControl {
public:
    struct Body {
        std::string id;
        std::string model;
        std::string serial; ///< as the manager keys it
    };
    /// The manager has been started.
    ICCLumixCamera(const DriverMachine& machine, std::shared_ptr<ICCManager> manager, Body body);
    ~ICCLumixCamera() override;
    ICCLumixCamera(const ICCLumixCamera&) = delete;
    ICCLumixCamera& operator=(const ICCLumixCamera&) = delete;

    const std::string& id() const override { return body_.id; }
    const std::string& serial() const override { return body_.serial; }
    const std::string& model() const override { return body_.model; }
    std::string backend() const override { return "LumixICC"; }
    bool connected() const override { return connected_; }
    double minIntervalSec() const override { return profile_.safeIntervalSec; }
    int shotCount() const override { return shotCount_; }
    bool busy() const override { return busy_; }

    void capture(const Shot& shot, CaptureDone done) override;
    void disconnect() override;

private:
    struct Firing;
    void finish(const CaptureOutcome& outcome);

    const DriverMachine machine_;
    const std::shared_ptr<ICCManager> manager_;
    Body body_;
    ShotProfile profile_;
    bool connected_ = true;
    bool busy_ = false;
    int shotCount_ = 0;
    base::Lifeline lifeline_;
};

} // namespace zenka::cameras
