#pragma once

#include "cameras/CameraControl.h"
#include "cameras/DriverMachine.h"
#include "cameras/canon/CanonMachine.h"
#include "cameras/usb/USBHolders.h"
#include "platform/virtual/VirtualPorts.h"

#include <gtest/gtest.h>

#include <functional>

namespace zenka::test {

/// What drivers stand on in virtual time, which passes where they pause.
inline cameras::DriverMachine driversOn(platform::VirtualPorts& machine) {
    return {.queues = machine.queues,
            .loop = machine.loop,
            .clock = machine.time,
            .pause = [&time = machine.time](base::Seconds span) { time.sleepFor(span); }};
}

/// What Canon's drivers stand on. All threads of virtual time are one, so calls on the main one are made at
/// once.
inline cameras::CanonMachine canonOn(cameras::DriverMachine& driver, ports::SharedLibraries& libraries,
                                     ports::UsbBus& bus, ports::ProcessTable& processes,
                                     cameras::CameraDaemons& daemons) {
    return {.driver = driver,
            .libraries = libraries,
            .bus = bus,
            .rivals = cameras::CameraRivals::of(daemons, bus, processes, cameras::USBHolders::canonVendorID),
            .onMain = [](const std::function<void()>& call) {
                call();
                return true;
            }};
}

/// One shot, until it completes: once, on the main thread, and not before capture() has come back.
inline cameras::CaptureOutcome shotOn(platform::VirtualPorts& machine, cameras::CameraControl& camera,
                                      const cameras::Shot& shot) {
    int completions = 0;
    cameras::CaptureOutcome last;
    camera.capture(shot, [&](const cameras::CaptureOutcome& outcome) {
        EXPECT_TRUE(machine.loop.onMainThread());
        last = outcome;
        ++completions;
    });
    EXPECT_EQ(completions, 0) << "completed before capture came back";
    for (int round = 0; round < 20; ++round)
        machine.time.runFor(base::Seconds{0});
    EXPECT_EQ(completions, 1);
    return last;
}

} // namespace zenka::test
