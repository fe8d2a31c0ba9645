#pragma once

#include "cameras/usb/CameraDaemons.h"
#include "ports/ProcessTable.h"
#include "ports/UsbBus.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zenka::cameras {

/// Who else may have their hands on the bodies of a maker, for reports. Both scans wait, so they do not
/// belong on the main thread; nothing when one failed.
struct CameraRivals {
    using Names = std::optional<std::vector<std::string>>;
    /// Programs that run and are known to grab cameras.
    std::function<Names()> procs = [] { return Names(std::in_place); };
    /// Programs that have a device of the maker open.
    std::function<Names()> holders = [] { return Names(std::in_place); };

    /// All of it outlives the functions.
    static CameraRivals of(CameraDaemons& daemons, ports::UsbBus& bus, ports::ProcessTable& processes,
                           int vendorID);

    /// Adds both to a report, as "procs" and "holders".
    void tell(std::map<std::string, std::string>& report) const;
};

} // namespace zenka::cameras
