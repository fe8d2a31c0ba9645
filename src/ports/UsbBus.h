#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zenka::ports {

struct UsbDevice {
    std::string product; ///< as the device names itself; may be empty
    std::optional<std::string> vendor;
    std::optional<std::string> serial;
    int vid = 0;
    int pid = 0;
    int busNumber = 0;
    int address = 0;
    std::string hub; ///< of the hub that it hangs on, the same for two devices on one hub; may be empty

    bool operator==(const UsbDevice&) const = default;
};

/// What is plugged in.
class UsbBus {
public:
    virtual ~UsbBus() = default;

    /// All devices by bus and address; nothing when the bus cannot be looked at. Any thread but the main.
    virtual std::optional<std::vector<UsbDevice>> devices() = 0;

    /// Calls a function on the main thread after a device was plugged in or out. One at a time, replaced by
    /// the next; an empty one ends it. Main thread.
    virtual void watch(std::function<void()> changed) = 0;
};

} // namespace zenka::ports
