#pragma once

#include "cameras/DriverMachine.h"
#include "cameras/sony/SonyCRSDK.h"
#include "cameras/sony/SonyCRSDKCamera.h"
#include "cameras/sony/SonyWaits.h"
#include "cameras/usb/CameraDaemons.h"
#include "cameras/usb/CameraRivals.h"
#include "ports/SharedLibraries.h"
#include "rig/links/CameraFamily.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace zenka::rig {

/// Sony bodies through the maker's SDK. There is one such family at a time; it ends the SDK with itself.
class SonyFamily final : public CameraFamily {
public:
    /// What it stands on outlives it, and its drivers with their queues.
    struct Machine {
        cameras::DriverMachine driver;
        ports::SharedLibraries& libraries;
        cameras::CameraDaemons& daemons;
        cameras::CameraRivals rivals;
        std::shared_ptr<const cameras::SonyWaits> waits = std::make_shared<const cameras::SonyWaits>();
    };
    explicit SonyFamily(Machine machine);
    SonyFamily(const SonyFamily&) = delete;
    SonyFamily& operator=(const SonyFamily&) = delete;
    ~SonyFamily() override;

    std::string backend() const override { return "CrSDK"; }
    Turn turn() const override { return Turn::beforeOthers; }
    bool takes(const FoundBody& body) const override { return body.isSony; }
    std::vector<FoundBody> enumerate(const std::vector<FoundBody>& listed, const Tell& tell) override;
    MakeDriver connect(const FoundBody& body, const Tell& tell) override;
    std::string explainFallback() const override;
    void release(const Camera& camera) override;
    std::vector<Rebound> rebind(const std::vector<DownBody>& down, const Tell& tell) override;
    /// Those whose link has ended and is not being taken up again.
    std::vector<std::string> goneFromBus(const std::vector<HeldBody>& held) override;
    std::string stuckAdvice() const override;
    void holdServicesOff() override { machine_.daemons.startDaemonSuppressor(); }
    /// With the codes of the last fault of a fire and of the link, where there was one.
    std::map<std::string, std::string> reportFacts() const override;
    void letServicesOn() override { machine_.daemons.stopDaemonSuppressor(); }

    /// What the last look at the bus came to, in the SDK's own words, for reports. Any thread.
    std::string lastSonyDiag() const;

private:
    using Found = cameras::SonyCRSDK::Found;

    std::vector<Found> lookTwice();
    void noteDiag(std::string diag);
    MakeDriver driverOf(std::int64_t handle, const std::string& model, const std::string& serial);

    const Machine machine_;
    std::vector<std::pair<FoundBody, Found>> matched_; ///< by the enumeration of this pass
    std::string sonyFallbackReason_;
    mutable std::mutex mutex_;
    std::string lastSonyDiag_;
    std::map<std::string, std::weak_ptr<const cameras::SonyLink>> links_; ///< of its drivers, by id
    std::atomic<int> made_ = 0;
};

} // namespace zenka::rig
