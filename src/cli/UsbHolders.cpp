#include "cli/UsbHolders.h"

#include "cameras/usb/USBHolders.h"
#include "cli/Print.h"
#include "platform/LinuxProcessTable.h"
#include "platform/LinuxUsbBus.h"

#include <absl/strings/str_format.h>

#include <charconv>

namespace zenka::cli {

namespace {

int vendorOf(std::string_view text) {
    if (text.starts_with("0x") || text.starts_with("0X"))
        text.remove_prefix(2);
    unsigned short vendorID = 0; // all that the bus has room for
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), vendorID, 16);
    const bool whole = fault == std::errc() && end == text.data() + text.size();
    return whole ? vendorID : cameras::USBHolders::sonyVendorID;
}

} // namespace

void printUsbHolders(std::string_view vendorID) {
    const int vendor = vendorOf(vendorID);
    platform::LinuxUsbBus bus;
    platform::LinuxProcessTable processes;
    printLine(absl::StrFormat("User clients on USB devices with vid=0x%04X:", vendor));
    const auto holders = cameras::USBHolders::holders(bus, processes, vendor);
    if (!holders)
        printLine("  registry walk failed");
    else if (holders->empty())
        printLine("  (no devices of that vendor, or no holders besides this process)");
    else
        for (const std::string& holder : *holders)
            printLine("  " + holder);
}

} // namespace zenka::cli
