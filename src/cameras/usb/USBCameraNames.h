#pragma once

#include "ports/UsbBus.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::cameras {

/// What the USB devices call themselves, for telling cameras apart and giving them their proper names. A bus
/// that cannot be looked at is an empty one.
namespace USBCameraNames {

using Device = ports::UsbDevice;

/// The devices that have a product string.
std::vector<Device> all(ports::UsbBus& bus);

/// The device at a port as gphoto2 names it: "usb:020,007" is bus 20, address 7.
std::optional<Device> lookup(ports::UsbBus& bus, std::string_view gphotoPort);

/// The port of a device as gphoto2 names it.
std::string gphotoPort(const Device& device);

/// The maker of cameras that a text names, in its usual spelling.
std::optional<std::string_view> canonicalBrand(std::string_view text);

/// The name of a body for the operator: gphoto2's, unless that is a placeholder such as "PTP camera" and
/// the device tells a better one.
std::string displayName(ports::UsbBus& bus, const std::string& gphotoModel, std::string_view port);

/// True of a product that gphoto2 may list or a USB tree shows and that takes no pictures for us: phones,
/// players, readers, and what else hangs on a hub.
bool isNonCameraProduct(std::string_view name);

} // namespace USBCameraNames

} // namespace zenka::cameras
