#include "rig/fire/FireWording.h"

#include "base/Text.h"
#include "exposure/ExposureScales.h"

#include <absl/strings/str_format.h>

#include <array>
#include <utility>

namespace zenka::rig {

std::string settingsText(const cameras::Shot& shot) {
    std::string text = shot.iso < 1 ? "ISO auto" : absl::StrFormat("ISO %d", shot.iso);
    text += shot.aperture > 0 ? absl::StrFormat(" f/%g", shot.aperture) : " f/auto";
    if (shot.expComp != 0)
        text += absl::StrFormat(" EC%+g", shot.expComp);
    if (shot.bulb)
        return text + " BULB";
    return text + " " + (shot.shutterSec > 0 ? exposure::shutterLabel(shot.shutterSec) : "auto");
}

std::string friendlyFireNote(const std::string& note) {
    static constexpr std::array<std::pair<const char*, const char*>, 7> phrases{{
        {"could not trigger capture", "camera not in PC mode yet"},
        {"no camera found", "camera not found"},
        {"-53", "another app has the camera"}, // gphoto2: could not claim the USB device
        {"could not claim", "another app has the camera"},
        {"unknown port", "camera moved port, re-detect"},
        {"timed out", "camera busy, no response"},
        {"backing off", "camera recovering, backing off"},
    }};
    for (const auto& [part, phrase] : phrases) {
        if (base::containsIgnoringCase(note, part))
            return phrase;
    }
    return note;
}

std::optional<std::string> fireFailureHint(const cameras::CameraControl& camera, const std::string& label,
                                           const std::string& note) {
    if (camera.backend() == "gphoto2" && base::containsIgnoringCase(note, "could not trigger capture"))
        return label +
               ": the camera has not switched into PC mode yet, so it is refusing the shutter. Nikon bodies "
               "can "
               "take up to a minute to hand control over after they are plugged in or replugged. Leave it "
               "connected and wait for the camera to show PC, then fire. Zenka keeps its connection and will "
               "start firing on its own once the body is ready.";
    return std::nullopt;
}

} // namespace zenka::rig
