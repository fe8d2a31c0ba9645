#pragma once

#include "cameras/canon/CanonEDSDKCamera.h"
#include "ports/Settings.h"
#include "rig/links/CameraFamily.h"

#include <atomic>
#include <mutex>
#include <vector>

namespace zenka::rig {

/// Canon bodies through Canon's own SDK. While it holds one nothing else may look at the bus.
class CanonFamily final : public CameraFamily {
public:
    /// Both outlive it and the drivers that it makes.
    CanonFamily(cameras::CanonEDSDK& sdk, ports::Settings& settings) : sdk_(sdk), settings_(settings) {}

    std::string backend() const override { return "CanonEDSDK"; }
    Turn turn() const override { return Turn::alone; }
    std::vector<FoundBody> enumerate(const std::vector<FoundBody>& listed, const Tell& tell) override;
    MakeDriver connect(const FoundBody& body, const Tell& tell) override;
    void release(const Camera& camera) override { camera->suspend(); }
    std::vector<Rebound> rebind(const std::vector<DownBody>& down, const Tell& tell) override;
    /// Those whose session the body has ended, and all when no Canon is on the bus.
    std::vector<std::string> goneFromBus(const std::vector<HeldBody>& held) override;

    std::map<std::string, std::string> reportFacts() const override;

    /// The bridge's words at the last detection, for reports. Any thread.
    std::string lastCanonDiag() const;

private:
    using Found = cameras::CanonEDSDK::Found;

    bool nativeDriverOn();
    /// Woken anew where it sees nothing of a body that is on the bus.
    std::vector<Found> look();
    /// Waits for a body that ends the link a moment after it was connected; true when it stays.
    bool stays(std::int64_t handle);
    void tellUnclaimed(const Tell& tell);
    void report(const std::string& event, cameras::DriverMachine::Fields fields);
    /// A session that is dead keeps the SDK's list of bodies, in which the one that is back does not stand.
    void closeSessionsOf(const std::vector<DownBody>& down);
    /// Those that it made and that live. Main thread.
    std::vector<std::shared_ptr<cameras::CanonEDSDKCamera>> drivers();
    MakeDriver driverOf(const cameras::CanonEDSDK::Session& session, const std::string& model,
                        const std::string& serial);

    cameras::CanonEDSDK& sdk_;
    ports::Settings& settings_; // main thread
    std::atomic<int> made_ = 0;
    mutable std::mutex mutex_;
    std::string lastCanonDiag_;
    std::vector<std::weak_ptr<cameras::CanonEDSDKCamera>> drivers_; // main thread
};

} // namespace zenka::rig
