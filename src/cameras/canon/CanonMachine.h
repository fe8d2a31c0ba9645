#pragma once

#include "cameras/DriverMachine.h"
#include "cameras/usb/CameraRivals.h"
#include "ports/SharedLibraries.h"
#include "ports/UsbBus.h"

#include <functional>

namespace zenka::cameras {

/// What the Canon drivers stand on. All of it outlives them.
struct CanonMachine {
    DriverMachine& driver;
    ports::SharedLibraries& libraries;
    ports::UsbBus& bus;
    CameraRivals rivals;

    /// Runs a function on the main thread and waits for its end; false when it was not run, as the program
    /// ends. From the main thread it runs at once.
    std::function<bool(const std::function<void()>&)> onMain;
};

} // namespace zenka::cameras
