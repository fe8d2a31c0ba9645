#pragma once

#include "cameras/sony/SonyCRSDK.h"
#include "cameras/sony/SonyCRSDKCamera.h"
#include "cameras/sony/sony_bridge.h"
#include "platform/virtual/VirtualPorts.h"
#include "support/Drivers.h"
#include "support/FakeCrSDK.h"
#include "support/MemoryFiles.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace zenka::test {

/// 1/250 in the SDK's words.
inline constexpr std::uint32_t code250 = 0x100FA;

inline FakeCrSDK::Body offeringBody() {
    FakeCrSDK::Body body;
    body.offers = {{0x100, {400, 560, 800, 1100}},
                   {0x103, {0, 0x10001, code250, 0x101F4, 0x1000A, 0xFFFFFFFF}},
                   {0x104, {0xFFFFFF, 100, 200, 400}},
                   {0x101, {0xFED4, 0, 300, 700, 1000}}}; // the first is -300
    return body;
}

/// The bridge on a fake SDK in virtual time.
struct SonyBench {
    MemoryFiles files;
    MemoryFolders folders;
    platform::VirtualPorts ports{base::Instant{1786557600}, folders, files};
    FakeCrSDK sdk;
    std::shared_ptr<VirtualSonyWaits> waits = std::make_shared<VirtualSonyWaits>(ports.time);
    std::vector<std::pair<std::string, cameras::DriverMachine::Fields>> reports;
    cameras::CameraRivals rivals;

    SonyBench() {
        sdk.bodies.push_back(offeringBody());
        cameras::zenka_sony_set_up(&sdk, waits);
    }
    SonyBench(const SonyBench&) = delete;
    SonyBench& operator=(const SonyBench&) = delete;
    ~SonyBench() {
        settle();
        waits->stuckWork = nullptr;
        cameras::zenka_sony_release();
        cameras::zenka_sony_set_up(nullptr);
    }

    /// A session with a body, its first words left out.
    std::int64_t connected(int index = 0) {
        cameras::SonyCRSDK::enumerate();
        const std::int64_t handle = cameras::zenka_sony_connect(index);
        EXPECT_NE(handle, 0);
        sdk.takeCalls();
        return handle;
    }

    std::unique_ptr<cameras::SonyCRSDKCamera> body() {
        cameras::DriverMachine machine = driversOn(ports);
        machine.report = [this](const std::string& event, const auto& fields) {
            reports.emplace_back(event, fields);
        };
        return std::make_unique<cameras::SonyCRSDKCamera>(
            machine, rivals,
            cameras::SonyCRSDKCamera::Body{.id = "crsdk-1",
                                           .model = "ILCE-7M4",
                                           .serial = "ab01",
                                           .handle = connected(),
                                           .handshakeOK = true,
                                           .firmwareVersion = {},
                                           .choices = {}});
    }

    double now() const { return ports.time.continuousSeconds(); }
    void settle() {
        for (int round = 0; round < 6; ++round)
            ports.time.runFor(base::Seconds{0});
    }

    cameras::CaptureOutcome shoot(cameras::SonyCRSDKCamera& camera, const cameras::Shot& shot = {}) {
        return shotOn(ports, camera, shot);
    }
};

} // namespace zenka::test
