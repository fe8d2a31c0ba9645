#include "cameras/usb/USBHolders.h"

#include <absl/strings/str_format.h>

#include <set>

namespace zenka::cameras::USBHolders {

std::optional<std::vector<std::string>> holders(ports::UsbBus& bus, ports::ProcessTable& processes,
                                                int vendorID) {
    const auto devices = bus.devices();
    if (!devices)
        return std::nullopt;
    std::set<std::string> names;
    for (const ports::UsbDevice& device : *devices) {
        if (device.vid != vendorID)
            continue;
        const auto found =
            processes.holdersOf(absl::StrFormat("/dev/bus/usb/%03d/%03d", device.busNumber, device.address));
        if (!found)
            return std::nullopt;
        for (const ports::RunningProcess& process : *found)
            names.insert(prettify(process.name));
    }
    return std::vector(names.begin(), names.end());
}

std::optional<std::vector<std::string>> sonyHolders(ports::UsbBus& bus, ports::ProcessTable& processes) {
    return holders(bus, processes, sonyVendorID);
}

std::string prettify(std::string_view name) {
    while (name.size() > 1 && name.ends_with('/'))
        name.remove_suffix(1);
    return std::string(name.substr(name.find_last_of('/') + 1));
}

} // namespace zenka::cameras::USBHolders
