#include "rig/links/CameraFamily.h"

#include "cameras/usb/USBCameraNames.h"

#include <algorithm>

namespace zenka::rig {

std::vector<std::string> goneFromPorts(ports::UsbBus& bus, const std::vector<HeldBody>& held) {
    std::vector<std::string> gone;
    const auto devices = bus.devices();
    if (!devices)
        return gone;
    for (const HeldBody& body : held) {
        const bool there = std::ranges::any_of(*devices, [&](const ports::UsbDevice& device) {
            return cameras::USBCameraNames::gphotoPort(device) == body.port &&
                   (body.serial.empty() || device.serial == body.serial);
        });
        if (!there)
            gone.push_back(body.id);
    }
    return gone;
}

} // namespace zenka::rig
