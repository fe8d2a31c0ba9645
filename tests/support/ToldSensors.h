#pragma once

#include "ports/MachineSensors.h"

#include <functional>

namespace zenka::test {

/// A machine that is as a test says: a laptop on mains that has enough of all.
struct ToldSensors final : ports::MachineSensors {
    ports::MachineReading now{.thermal = ports::ThermalState::nominal,
                              .lowPowerMode = false,
                              .onACPower = true,
                              .hasInternalBattery = true,
                              .batteryPercent = 90,
                              .freeDiskGB = 100};
    std::function<void()> onRead = [] {};

    ports::MachineReading read() override {
        onRead();
        return now;
    }
};

} // namespace zenka::test
