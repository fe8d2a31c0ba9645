#include "cameras/sony/SonyCRSDK.h"

#include "base/Text.h"
#include "cameras/sony/SonyBridgeState.h"
#include "cameras/sony/sony_bridge.h"

#include <absl/strings/str_format.h>

#include <array>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace zenka::cameras {

namespace {

constexpr base::Seconds enumerateLimit{20};
constexpr double wedgedAfterSec = 30;
constexpr int mostCameras = 16;
constexpr int cameraStride = 128;
constexpr int mostLadder = 4096;

constexpr std::array<std::pair<std::uint32_t, std::string_view>, 14> callbackErrors{
    {{33281, "Connect"},
     {33282, "ConnectIP"},
     {33283, "Release"},
     {33284, "GetProperty"},
     {33285, "SendCommand"},
     {33286, "HandlePlugin"},
     {33287, "Disconnected"},
     {33288, "TimeOut"},
     {33289, "ReconnectTimeOut"},
     {33290, "FailRejected"},
     {33291, "FailBusy"},
     {33292, "FailUnspecified"},
     {33293, "Cancel"},
     {0, "none"}}};

/// The enumeration that is under way. Never destroyed, as it may never come back.
struct EnumerationsUnderWay {
    std::mutex enumLock;
    std::optional<double> enumInFlightSince;

    static EnumerationsUnderWay& shared() {
        static auto& one = *new EnumerationsUnderWay;
        return one;
    }

    bool begin(double now) {
        const std::lock_guard lock(enumLock);
        if (enumInFlightSince)
            return false;
        enumInFlightSince = now;
        return true;
    }
    void end() {
        const std::lock_guard lock(enumLock);
        enumInFlightSince.reset();
    }
};

/// Ends the enumeration when the last who works on it lets go, also when its work could not be begun.
struct EnumerationEnd {
    EnumerationEnd() = default;
    EnumerationEnd(const EnumerationEnd&) = delete;
    EnumerationEnd& operator=(const EnumerationEnd&) = delete;
    ~EnumerationEnd() { EnumerationsUnderWay::shared().end(); }
};

std::vector<SonyCRSDK::Found> listBodies() {
    std::vector<SonyCRSDK::Found> bodies;
    if (zenka_sony_init() == 0)
        return bodies;
    std::array<char, std::size_t{mostCameras} * cameraStride> names{};
    std::array<char, std::size_t{mostCameras} * cameraStride> ids{};
    const int count = zenka_sony_enumerate(names.data(), ids.data(), mostCameras, cameraStride);
    for (int index = 0; index < count; ++index) {
        const auto offset = static_cast<std::size_t>(index) * cameraStride;
        std::string model = names.data() + offset;
        bodies.push_back({.model = model.empty() ? "Sony" : std::move(model),
                          .serial = ids.data() + offset,
                          .index = index});
    }
    return bodies;
}

} // namespace

std::vector<SonyCRSDK::Found> SonyCRSDK::enumerate() {
    const auto waits = SonyBridgeState::shared().waits();
    if (!EnumerationsUnderWay::shared().begin(waits->now()))
        return {};
    const auto bodies = std::make_shared<std::vector<Found>>();
    const bool done = waits->within(
        enumerateLimit, [bodies, end = std::make_shared<EnumerationEnd>()] { *bodies = listBodies(); });
    return done ? *bodies : std::vector<Found>();
}

bool SonyCRSDK::enumerateWedged() {
    const auto waits = SonyBridgeState::shared().waits();
    EnumerationsUnderWay& underWay = EnumerationsUnderWay::shared();
    const std::lock_guard lock(underWay.enumLock);
    return underWay.enumInFlightSince && waits->now() - *underWay.enumInFlightSince > wedgedAfterSec;
}

std::string SonyCRSDK::firmware(std::int64_t handle) {
    std::array<char, 256> text{};
    return zenka_sony_firmware(handle, text.data(), static_cast<int>(text.size())) ? text.data() : "";
}

std::string SonyCRSDK::stateDump(std::int64_t handle) {
    std::array<char, 256> text{};
    return zenka_sony_state_dump(handle, text.data(), static_cast<int>(text.size())) ? text.data() : "";
}

ExposureChoices SonyCRSDK::exposureChoices(std::int64_t handle) {
    ExposureChoices choices;
    std::array<char, mostLadder> text{};
    if (zenka_sony_shutter_ladder(handle, text.data(), mostLadder) == 0)
        return choices;
    for (const std::string_view shutter : base::splitPieces(text.data(), ','))
        choices.shutter.emplace_back(shutter);
    return choices;
}

std::string SonyCRSDK::callbackErrorName(std::uint32_t code) {
    for (const auto& [known, name] : callbackErrors)
        if (known == code)
            return std::string(name);
    return absl::StrFormat("0x%04x", code);
}

} // namespace zenka::cameras
