#include "rig/links/GPhoto2Family.h"

#include "base/Text.h"
#include "cameras/gphoto2/GPhoto2Camera.h"
#include "cameras/usb/SonyNames.h"
#include "cameras/usb/USBCameraNames.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

namespace SonyNames = cameras::SonyNames;
namespace USBCameraNames = cameras::USBCameraNames;

constexpr base::Seconds versionTimeout{5};

/// "2.5.28" of a first line "gphoto2 2.5.28"; empty for any other.
std::string versionIn(std::string_view output) {
    const auto words = base::splitPieces(output.substr(0, output.find('\n')), ' ');
    return words.size() >= 2 && words[0] == "gphoto2" ? std::string(base::trimmed(words[1])) : std::string();
}

/// The shell with its prompt, and setting by value, came with 2.5.
bool newEnough(std::string_view version) {
    const auto numbers = base::split(version, '.');
    const int major = base::readInteger(numbers[0]).value_or(0);
    const int minor = numbers.size() > 1 ? base::readInteger(numbers[1]).value_or(0) : 0;
    return major > 2 || (major == 2 && minor >= 5);
}

} // namespace

bool GPhoto2Family::usable(const Tell& tell) {
    const auto asked = program_.runOnce("", {"--version"}, versionTimeout);
    const std::string version = asked.ok() ? versionIn(asked.output) : std::string();
    if (!version.empty() && newEnough(version))
        return true;
    if (asked.code == -1)
        tell("⚠️ The program gphoto2 is not installed, so Nikon, Fujifilm and other bodies cannot be "
             "driven. "
             "Install it (on Debian: sudo apt install gphoto2), then Detect again.");
    else if (version.empty())
        tell("⚠️ The program gphoto2 does not answer as it should (" +
             (asked.errorText.empty() ? "no version in its answer" : asked.errorText) +
             "). Install it anew (on Debian: sudo apt install --reinstall gphoto2), then Detect again.");
    else
        tell("⚠️ The program gphoto2 " + version +
             " is too old: 2.5 or later is needed. Install a later one, then Detect again.");
    return false;
}

std::vector<FoundBody> GPhoto2Family::enumerate(const std::vector<FoundBody>& listed, const Tell& tell) {
    if (!listed.empty())
        return listed;
    if (!usable(tell))
        return {};
    std::vector<FoundBody> bodies;
    for (const auto& detected : program_.autodetect()) {
        const auto device = USBCameraNames::lookup(bus_, detected.port);
        if (device && USBCameraNames::isNonCameraProduct(device->product))
            continue;
        FoundBody body{.model = USBCameraNames::displayName(bus_, detected.model, detected.port),
                       .port = detected.port,
                       .serial = {},
                       .hub = {},
                       .isSony = SonyNames::gphotoBodyIsSony(bus_, detected.model, detected.port)};
        if (device) {
            body.serial = device->serial.value_or("");
            body.hub = device->hub;
        }
        bodies.push_back(std::move(body));
    }
    return bodies;
}

CameraFamily::MakeDriver GPhoto2Family::connect(const FoundBody& body, const Tell&) {
    return driverOf(body, When::detection);
}

CameraFamily::MakeDriver GPhoto2Family::driverOf(const FoundBody& body, When when) {
    const std::string id =
        "gphoto2-" + (body.serial.empty() ? body.port : body.serial) + "-" + std::to_string(++made_);
    return [&program = program_, body, id, when] {
        auto camera = std::make_shared<cameras::GPhoto2Camera>(
            program, cameras::GPhoto2Camera::Body{
                         .id = id, .model = body.model, .port = body.port, .serial = body.serial});
        if (camera->usePersistent())
            camera->warmUp();
        else if (when == When::detection)
            camera->learnChoices();
        return camera;
    };
}

std::vector<CameraFamily::Rebound> GPhoto2Family::rebind(const std::vector<DownBody>& down,
                                                         const Tell& tell) {
    std::vector<Rebound> back;
    std::vector<DownBody> missing = down;
    for (const auto& detected : program_.autodetect()) {
        const auto device = USBCameraNames::lookup(bus_, detected.port);
        if (!device)
            continue;
        const std::string serial = device->serial.value_or("");
        if (serial.empty())
            continue;
        const auto wanted = std::ranges::find(missing, serial, &DownBody::serial);
        if (wanted == missing.end())
            continue;
        // A body on the bus need not be one that talks.
        const auto alive = program_.aliveWithWedgeRecovery(detected.port);
        if (!alive.alive)
            continue;
        if (alive.resetRevived)
            tell(wanted->label + ": its USB link was stuck and has been reset.");
        back.push_back(
            {.id = wanted->id,
             .make = driverOf(
                 {.model = wanted->model, .port = detected.port, .serial = serial, .hub = device->hub},
                 When::midRun)});
        missing.erase(wanted);
    }
    return back;
}

std::vector<std::string> GPhoto2Family::goneFromBus(const std::vector<HeldBody>& held) {
    return goneFromPorts(bus_, held);
}

} // namespace zenka::rig
