#include "cli/UsbNames.h"

#include "cameras/usb/USBCameraNames.h"
#include "cli/Print.h"
#include "platform/LinuxUsbBus.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <string_view>

namespace zenka::cli {

namespace {

constexpr int appleVendorID = 0x05AC;

/// A text with blanks behind it up to a number of letters.
std::string padded(std::string text, std::ptrdiff_t width) {
    const auto letters = std::ranges::count_if(
        text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; });
    text.append(static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, width - letters)), ' ');
    return text;
}

} // namespace

void printUsbNames() {
    namespace names = cameras::USBCameraNames;
    platform::LinuxUsbBus bus;
    printLine("USB devices with a product string (Apple-internal hidden):");
    for (const names::Device& device : names::all(bus)) {
        if (device.vid == appleVendorID)
            continue;
        const std::string port = names::gphotoPort(device);
        printLine(absl::StrFormat("  %s  vendor=%s  vid=%d pid=%d  -> %s  serial=%s",
                                  padded(device.product, 26), padded(device.vendor.value_or("?"), 12),
                                  device.vid, device.pid, port, device.serial.value_or("-")));
        printLine("      display name -> " + names::displayName(bus, "PTP camera", port));
    }
}

} // namespace zenka::cli
