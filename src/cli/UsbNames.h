#pragma once

namespace zenka::cli {

/// --usb-names: the devices on the USB bus, and what each would be called as a camera.
void printUsbNames();

} // namespace zenka::cli
