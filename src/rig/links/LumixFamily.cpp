#include "rig/links/LumixFamily.h"

#include "base/Text.h"
#include "cameras/usb/USBCameraNames.h"
#include "rig/shared/PlatformWords.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

namespace USBCameraNames = cameras::USBCameraNames;

/// A body that does not answer costs the helper two tries and a reset between them.
constexpr base::Seconds firstAnswerLimit{10};

bool inPcMode(const cameras::LumixHelper::Json& status) {
    const auto mode = status.find("pc_mode");
    return mode == status.end() || *mode != false; // a helper that does not tell is believed
}

} // namespace

bool LumixFamily::takes(const FoundBody& body) const {
    return base::containsIgnoringCase(body.model, "LUMIX");
}

LumixFamily::Held LumixFamily::hold(const ports::UsbDevice& device) {
    Held held{.helper = std::make_shared<cameras::LumixHelper>(machine_, device.busNumber, device.address)};
    if (held.helper->start()) {
        if (auto status = held.helper->request({{"cmd", "status"}}, firstAnswerLimit);
            status && cameras::LumixReplies::bodyAnswered(*status)) {
            held.status = std::move(*status);
            return held;
        }
    }
    held.fault = held.helper->fault();
    held.helper.reset();
    return held;
}

CameraFamily::MakeDriver LumixFamily::connect(const FoundBody& body, const Tell& tell) {
    const auto device = USBCameraNames::lookup(bus_, body.port);
    Held held = device ? hold(*device) : Held{};
    if (!device || !held.helper) {
        tell("LUMIX detect — " + body.model +
             " on USB wouldn't connect (stuck). Quit any vendor tether app, set the camera's USB mode to "
             "PC(Tether) / 'select on connection', then unplug + replug it (or restart the " +
             std::string(platformWords::computer) + ") and Detect again.");
        if (!held.fault.empty())
            tell(body.model + ": " + held.fault + ". The universal driver tries it meanwhile.");
        return {};
    }
    if (!inPcMode(held.status))
        tell(body.model +
             ": could not switch the camera into PC mode, so it may refuse the shutter. Leave it connected; "
             "Zenka keeps trying. If it persists, power-cycle the camera.");
    return driverOf(body.model, *device, std::move(held));
}

CameraFamily::MakeDriver LumixFamily::driverOf(const std::string& model, const ports::UsbDevice& device,
                                               Held held) {
    const std::string port = USBCameraNames::gphotoPort(device);
    const std::string serial = device.serial.value_or("");
    cameras::LumixPTPCamera::Body body{.id = "lumix-" + (serial.empty() ? port : serial) + "-" +
                                             std::to_string(++made_),
                                       .model = model,
                                       .port = port,
                                       .serial = serial};
    return [machine = machine_, body = std::move(body), held = std::move(held)] {
        return std::make_shared<cameras::LumixPTPCamera>(machine, body, held.helper, held.status);
    };
}

std::vector<CameraFamily::Rebound> LumixFamily::rebind(const std::vector<DownBody>& down, const Tell&) {
    std::vector<Rebound> back;
    const auto devices = bus_.devices();
    if (!devices)
        return back;
    for (const DownBody& body : down) {
        const auto device = std::ranges::find_if(*devices, [&](const ports::UsbDevice& one) {
            return !body.serial.empty() && one.serial == body.serial;
        });
        if (device == devices->end())
            continue;
        if (Held held = hold(*device); held.helper)
            back.push_back({.id = body.id, .make = driverOf(body.model, *device, std::move(held))});
    }
    return back;
}

std::vector<std::string> LumixFamily::goneFromBus(const std::vector<HeldBody>& held) {
    return goneFromPorts(bus_, held);
}

} // namespace zenka::rig
