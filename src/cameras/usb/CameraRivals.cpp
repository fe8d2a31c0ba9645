#include "cameras/usb/CameraRivals.h"

#include "base/Text.h"
#include "cameras/usb/USBHolders.h"

namespace zenka::cameras {

namespace {

std::string listed(const CameraRivals::Names& names) {
    if (!names)
        return "scan-failed";
    return names->empty() ? "none" : base::joined(*names, ",");
}

} // namespace

CameraRivals CameraRivals::of(CameraDaemons& daemons, ports::UsbBus& bus, ports::ProcessTable& processes,
                              int vendorID) {
    return {
        .procs = [&daemons] { return daemons.cameraGrabbingProcesses(); },
        .holders = [&bus, &processes, vendorID] { return USBHolders::holders(bus, processes, vendorID); }};
}

void CameraRivals::tell(std::map<std::string, std::string>& report) const {
    report["procs"] = listed(procs());
    report["holders"] = listed(holders());
}

} // namespace zenka::cameras
