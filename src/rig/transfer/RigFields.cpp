#include "rig/transfer/RigFields.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace zenka::rig::RigFields {

using Json = nlohmann::json;

namespace {

constexpr std::size_t mostValues = 500'000;
constexpr int deepest = 8;
constexpr std::size_t longestLine = 500;
constexpr double lowestMetres = -500;
constexpr double highestMetres = 20'000;
constexpr double longestSec = 86'400;

/// A number under a key that is a time a body can need; one that is there and is none clears `whole`.
std::optional<double> secondsAt(const Json& object, const char* key, bool& whole) {
    const auto found = object.find(key);
    if (found == object.end())
        return std::nullopt;
    if (found->is_number() && found->get<double>() > 0 && found->get<double>() <= longestSec)
        return found->get<double>();
    whole = false;
    return std::nullopt;
}

/// An object under a key; one that is there and is none clears `whole`.
const Json* objectAt(const Json& object, const char* key, bool& whole) {
    const auto found = object.find(key);
    if (found == object.end())
        return nullptr;
    whole = whole && found->is_object();
    return found->is_object() ? &*found : nullptr;
}

} // namespace

Json parse(std::string_view text) {
    std::size_t values = 0;
    // Copying and printing a value go down into it, so depth costs stack; and each value costs memory.
    const auto keeps = [&values](int depth, Json::parse_event_t, Json&) {
        return ++values <= mostValues && depth <= deepest;
    };
    Json json = Json::parse(text, keeps, false);
    return values > mostValues ? Json(Json::value_t::discarded) : json;
}

bool isLine(std::string_view text) {
    return text.size() <= longestLine && std::ranges::none_of(text, [](char letter) {
               const auto code = static_cast<unsigned char>(letter);
               return code < 0x20 || code == 0x7f;
           });
}

bool isPlace(double lat, double lon, double elev) {
    return std::abs(lat) <= 90 && std::abs(lon) <= 180 && elev >= lowestMetres && elev <= highestMetres;
}

Json floorsJson(const MeasuredFloors::OfModel& floors) {
    Json json = Json::object();
    const auto put = [&json](const char* key, const std::optional<double>& seconds) {
        if (seconds)
            json[key] = *seconds;
    };
    put("floorSec", floors.floorSec);
    put("sameFloorSec", floors.sameFloorSec);
    put("sustainedSec", floors.sustainedSec);
    if (floors.burst)
        json["burst"] = {{"frames", floors.burst->frames}, {"cadenceSec", floors.burst->cadenceSec}};
    if (floors.longFrames)
        json["longFrames"] = {{"shutterSec", floors.longFrames->shutterSec},
                              {"cadenceSec", floors.longFrames->cadenceSec},
                              {"held", floors.longFrames->held}};
    return json;
}

std::optional<MeasuredFloors::OfModel> floorsFrom(const Json& json) {
    bool whole = json.is_object();
    if (!whole)
        return std::nullopt;
    MeasuredFloors::OfModel floors{.floorSec = secondsAt(json, "floorSec", whole),
                                   .sameFloorSec = secondsAt(json, "sameFloorSec", whole),
                                   .sustainedSec = secondsAt(json, "sustainedSec", whole),
                                   .burst = {},
                                   .longFrames = {}};
    if (const Json* burst = objectAt(json, "burst", whole)) {
        const auto frames = secondsAt(*burst, "frames", whole); // a count that is as small
        const auto cadence = secondsAt(*burst, "cadenceSec", whole);
        if (!frames || *frames < 1 || !cadence)
            return std::nullopt;
        floors.burst = {.frames = static_cast<int>(*frames), .cadenceSec = *cadence};
    }
    if (const Json* longFrames = objectAt(json, "longFrames", whole)) {
        const auto shutter = secondsAt(*longFrames, "shutterSec", whole);
        const auto cadence = secondsAt(*longFrames, "cadenceSec", whole);
        const auto held = longFrames->find("held");
        if (!shutter || !cadence || held == longFrames->end() || !held->is_boolean())
            return std::nullopt;
        floors.longFrames = {.shutterSec = *shutter, .cadenceSec = *cadence, .held = held->get<bool>()};
    }
    return whole && floors != MeasuredFloors::OfModel{} ? std::optional(floors) : std::nullopt;
}

} // namespace zenka::rig::RigFields
