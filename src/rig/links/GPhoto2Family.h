#pragma once

#include "cameras/gphoto2/GPhoto2Program.h"
#include "ports/UsbBus.h"
#include "rig/links/CameraFamily.h"

#include <atomic>

namespace zenka::rig {

/// The universal driver: every body that the gphoto2 program knows.
class GPhoto2Family final : public CameraFamily {
public:
    /// Both outlive it and the drivers that it makes.
    GPhoto2Family(cameras::GPhoto2Program& program, ports::UsbBus& bus) : program_(program), bus_(bus) {}

    std::string backend() const override { return "gphoto2"; }
    Turn turn() const override { return Turn::universal; }
    std::vector<FoundBody> enumerate(const std::vector<FoundBody>& listed, const Tell& tell) override;
    MakeDriver connect(const FoundBody& body, const Tell& tell) override;
    std::vector<Rebound> rebind(const std::vector<DownBody>& down, const Tell& tell) override;
    std::vector<std::string> goneFromBus(const std::vector<HeldBody>& held) override;
    std::optional<bool> linkAlive(const std::string& port) override {
        return program_.aliveWithWedgeRecovery(port).alive;
    }
    int pollsBetweenScans() const override { return 3; }
    void holdServicesOff() override { program_.machine().daemons.startDaemonSuppressor(); }
    void letServicesOn() override { program_.machine().daemons.stopDaemonSuppressor(); }

private:
    /// When a driver is made: only at a detection is there time to learn what the body offers.
    enum class When { detection, midRun };
    MakeDriver driverOf(const FoundBody& body, When when);
    bool usable(const Tell& tell);

    cameras::GPhoto2Program& program_;
    ports::UsbBus& bus_;
    std::atomic<int> made_ = 0;
};

} // namespace zenka::rig
