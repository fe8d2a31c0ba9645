#pragma once

#include <string_view>

namespace zenka::cli {

/// --usb-holders: the programs that have a device of a vendor open, its id in hexadecimal; Sony's for a text
/// that is none.
void printUsbHolders(std::string_view vendorID);

} // namespace zenka::cli
