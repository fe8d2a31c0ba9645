#pragma once

#include "cameras/lumix/LumixPTPCamera.h"
#include "cameras/usb/CameraDaemons.h"
#include "ports/UsbBus.h"
#include "rig/links/CameraFamily.h"

#include <atomic>
#include <memory>

namespace zenka::rig {

/// Lumix bodies, each held by a helper process. A body whose helper does not get through to it is left to the
/// universal driver.
class LumixFamily final : public CameraFamily {
public:
    /// All of it outlives the family and the drivers that it makes.
    LumixFamily(const cameras::LumixMachine& machine, ports::UsbBus& bus, cameras::CameraDaemons& daemons)
        : machine_(machine), bus_(bus), daemons_(daemons) {}

    std::string backend() const override { return "LumixPTP"; }
    Turn turn() const override { return Turn::beforeOthers; }
    bool takes(const FoundBody& body) const override;
    std::vector<FoundBody> enumerate(const std::vector<FoundBody>& listed, const Tell&) override {
        return listed;
    }
    MakeDriver connect(const FoundBody& body, const Tell& tell) override;
    std::vector<Rebound> rebind(const std::vector<DownBody>& down, const Tell& tell) override;
    std::vector<std::string> goneFromBus(const std::vector<HeldBody>& held) override;
    void holdServicesOff() override { daemons_.startDaemonSuppressor(); }
    void letServicesOn() override { daemons_.stopDaemonSuppressor(); }

private:
    /// A helper that runs and whose body has answered it; null where there is none, and `fault` says why.
    struct Held {
        std::shared_ptr<cameras::LumixHelper> helper;
        cameras::LumixHelper::Json status;
        std::string fault;
    };
    Held hold(const ports::UsbDevice& device);
    MakeDriver driverOf(const std::string& model, const ports::UsbDevice& device, Held held);

    const cameras::LumixMachine machine_;
    ports::UsbBus& bus_;
    cameras::CameraDaemons& daemons_;
    std::atomic<int> made_ = 0;
};

} // namespace zenka::rig
