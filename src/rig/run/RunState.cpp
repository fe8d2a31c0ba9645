#include "rig/run/RunState.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace zenka::rig {

namespace {

using Json = nlohmann::json;

constexpr double oldestSec = 172'800;
constexpr double afterLastContactSec = 600;

/// Reads the keys of an object; remembers whether one was missing or of another type.
class KeyReader {
public:
    explicit KeyReader(const Json& object) : object_(object) {}

    std::string text(const char* key) {
        const Json* value = find(key, &Json::is_string);
        return value ? value->get<std::string>() : std::string();
    }
    double number(const char* key) {
        const Json* value = find(key, &Json::is_number);
        return value ? value->get<double>() : 0;
    }
    bool flag(const char* key) {
        const Json* value = find(key, &Json::is_boolean);
        return value && value->get<bool>();
    }
    bool complete() const { return complete_; }

private:
    const Json* find(const char* key, bool (Json::*isType)() const noexcept) {
        const auto found = object_.find(key);
        if (found != object_.end() && ((*found).*isType)())
            return &*found;
        complete_ = false;
        return nullptr;
    }

    const Json& object_;
    bool complete_ = true;
};

} // namespace

bool RunState::isResumable(base::Instant now) const {
    if ((now - lastSeen).count() >= oldestSec)
        return false;
    return armKind == ArmKind::simulation || clockAt(now) < tC4 + afterLastContactSec;
}

bool RunState::isComplete(base::Instant now) const {
    return armKind == ArmKind::real && tC4 + afterLastContactSec <= clockAt(now);
}

std::string RunStateWriter::toJson(const RunState& state) {
    constexpr auto replace = Json::error_handler_t::replace;
    if (state.scriptText != script_ || scriptJson_.empty()) {
        script_ = state.scriptText;
        scriptJson_ = Json(script_).dump(-1, ' ', false, replace);
    }
    Json cameras = Json::array();
    for (const RunState::Cam& cam : state.cameras)
        cameras.push_back({{"serial", cam.serial}, {"label", cam.label}, {"model", cam.model}});
    const Json object{{"version", state.version},
                      {"eclipseId", state.eclipseId},
                      {"lat", state.lat},
                      {"lon", state.lon},
                      {"elev", state.elev},
                      {"tzId", state.tzId},
                      {"siteLabel", state.siteLabel},
                      {"armKind", state.armKind == RunState::ArmKind::real ? "real" : "simulation"},
                      {"anchorWall", state.anchorWall.epochSec},
                      {"anchorClock", state.anchorClock},
                      {"tC1", state.tC1},
                      {"tC4", state.tC4},
                      {"armedAt", state.armedAt.epochSec},
                      {"lastSeen", state.lastSeen.epochSec},
                      {"liveCameras", state.liveCameras},
                      {"cameras", std::move(cameras)},
                      {"appVersion", state.appVersion}};
    std::string text = object.dump(1, ' ', false, replace);
    text.resize(text.size() - std::string_view("\n}").size());
    return text + ",\n \"scriptText\": " + scriptJson_ + "\n}\n";
}

std::string toJson(const RunState& state) {
    return RunStateWriter().toJson(state);
}

std::optional<RunState> runStateFromJson(std::string_view json) {
    const Json object = Json::parse(json, nullptr, false);
    if (!object.is_object())
        return std::nullopt;
    KeyReader read(object);
    RunState state{.version = static_cast<int>(read.number("version")),
                   .eclipseId = read.text("eclipseId"),
                   .lat = read.number("lat"),
                   .lon = read.number("lon"),
                   .elev = read.number("elev"),
                   .tzId = read.text("tzId"),
                   .siteLabel = read.text("siteLabel"),
                   .scriptText = read.text("scriptText"),
                   .anchorWall = {read.number("anchorWall")},
                   .anchorClock = read.number("anchorClock"),
                   .tC1 = read.number("tC1"),
                   .tC4 = read.number("tC4"),
                   .armedAt = {read.number("armedAt")},
                   .lastSeen = {read.number("lastSeen")},
                   .liveCameras = read.flag("liveCameras"),
                   .appVersion = read.text("appVersion")};
    const std::string kind = read.text("armKind");
    const auto cameras = object.find("cameras");
    if (!read.complete() || state.version != 1 || (kind != "real" && kind != "simulation") ||
        cameras == object.end() || !cameras->is_array() || !(std::abs(state.lat) <= 90) ||
        !(std::abs(state.lon) <= 180))
        return std::nullopt;
    state.armKind = kind == "real" ? RunState::ArmKind::real : RunState::ArmKind::simulation;
    for (const Json& item : *cameras) {
        if (!item.is_object())
            return std::nullopt;
        KeyReader cam(item);
        state.cameras.push_back(
            {.serial = cam.text("serial"), .label = cam.text("label"), .model = cam.text("model")});
        if (!cam.complete())
            return std::nullopt;
    }
    return state;
}

} // namespace zenka::rig
