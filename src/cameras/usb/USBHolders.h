#pragma once

#include "ports/ProcessTable.h"
#include "ports/UsbBus.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::cameras {

/// Which programs have a camera open, which explains most failures to claim one.
namespace USBHolders {

inline constexpr int sonyVendorID = 0x054C;
inline constexpr int canonVendorID = 0x04A9;

/// The names of the programs, besides this process, that have a device of a vendor open: sorted, each once.
/// Nothing when the devices or the processes cannot be looked at.
std::optional<std::vector<std::string>> holders(ports::UsbBus& bus, ports::ProcessTable& processes,
                                                int vendorID);

std::optional<std::vector<std::string>> sonyHolders(ports::UsbBus& bus, ports::ProcessTable& processes);

/// A program's name without its folder.
std::string prettify(std::string_view name);

} // namespace USBHolders

} // namespace zenka::cameras
