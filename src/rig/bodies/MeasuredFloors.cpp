#include "rig/bodies/MeasuredFloors.h"

#include "base/Text.h"
#include "rig/shared/SettingsKeys.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cmath>
#include <limits>

namespace zenka::rig {

namespace {

using Json = nlohmann::json;
namespace keys = settingsKeys;

constexpr std::array allPrefixes{keys::measuredFloorPrefix,  keys::measuredSameFloorPrefix,
                                 keys::sustainedFloorPrefix, keys::burstDepthPrefix,
                                 keys::burstCadencePrefix,   keys::longFrameFloorPrefix};

bool isMeasurement(double value) {
    return std::isfinite(value) && value > 0;
}

std::optional<double> positiveIn(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_number() || !isMeasurement(found->get<double>()))
        return std::nullopt;
    return found->get<double>();
}

bool isOlympus(const std::string& model) {
    const std::string name = base::lowered(model);
    for (const char* part : {"olympus", "omsystem", "om system"}) {
        if (name.find(part) != std::string::npos)
            return true;
    }
    return name.starts_with("e-m") || name.starts_with("om-");
}

} // namespace

std::optional<double> MeasuredFloors::positive(const std::string& key) const {
    const auto value = settings_.number(key);
    return value && isMeasurement(*value) ? value : std::nullopt;
}

std::optional<double> MeasuredFloors::measuredFloor(const std::string& model) const {
    return positive(keys::measuredFloorPrefix + model);
}

std::optional<double> MeasuredFloors::measuredSameFloor(const std::string& model) const {
    return positive(keys::measuredSameFloorPrefix + model);
}

std::optional<double> MeasuredFloors::sustainedFloor(const std::string& model) const {
    return positive(keys::sustainedFloorPrefix + model);
}

std::optional<MeasuredFloors::BurstDepth> MeasuredFloors::burstDepth(const std::string& model) const {
    const auto frames = positive(keys::burstDepthPrefix + model);
    const auto cadence = positive(keys::burstCadencePrefix + model);
    if (!frames || !cadence || *frames < 1 || *frames > std::numeric_limits<int>::max())
        return std::nullopt;
    return BurstDepth{.frames = static_cast<int>(*frames), .cadenceSec = *cadence};
}

std::optional<MeasuredFloors::LongFrameFloor> MeasuredFloors::longFrameFloor(const std::string& model) const {
    const Json record =
        Json::parse(settings_.text(keys::longFrameFloorPrefix + model).value_or(""), nullptr, false);
    if (!record.is_object())
        return std::nullopt;
    const auto shutter = positiveIn(record, "shutter");
    const auto cadence = positiveIn(record, "cadence");
    const auto held = record.find("held");
    if (!shutter || !cadence || held == record.end() || !held->is_boolean())
        return std::nullopt;
    return LongFrameFloor{.shutterSec = *shutter, .cadenceSec = *cadence, .held = held->get<bool>()};
}

std::map<std::string, MeasuredFloors::OfModel> MeasuredFloors::all() const {
    std::map<std::string, OfModel> models;
    for (const std::string prefix : allPrefixes) {
        for (const std::string& key : settings_.keysBeginningWith(prefix))
            models.try_emplace(key.substr(prefix.size()));
    }
    for (auto& [model, known] : models)
        known = {.floorSec = measuredFloor(model),
                 .sameFloorSec = measuredSameFloor(model),
                 .sustainedSec = sustainedFloor(model),
                 .burst = burstDepth(model),
                 .longFrames = longFrameFloor(model)};
    std::erase_if(models, [](const auto& each) { return each.second == OfModel{}; });
    return models;
}

void MeasuredFloors::merge(const std::map<std::string, OfModel>& models) {
    const auto keep = [this](const std::string& key, double seconds) {
        if (isMeasurement(seconds))
            settings_.setNumber(key, seconds);
    };
    constexpr double none = 0; // no measurement
    for (const auto& each : models) {
        const std::string& model = each.first;
        const OfModel& known = each.second;
        keep(keys::measuredFloorPrefix + model, known.floorSec.value_or(none));
        keep(keys::measuredSameFloorPrefix + model, known.sameFloorSec.value_or(none));
        keep(keys::sustainedFloorPrefix + model, known.sustainedSec.value_or(none));
        keepBurstDepth(model, known.burst.value_or(BurstDepth{}));
        keepLongFrameFloor(model, known.longFrames.value_or(LongFrameFloor{}));
    }
}

bool MeasuredFloors::keepBurstDepth(const std::string& model, const BurstDepth& depth) {
    if (depth.frames < 1 || !isMeasurement(depth.cadenceSec))
        return false;
    settings_.setNumber(keys::burstDepthPrefix + model, depth.frames);
    settings_.setNumber(keys::burstCadencePrefix + model, depth.cadenceSec);
    return true;
}

bool MeasuredFloors::keepLongFrameFloor(const std::string& model, const LongFrameFloor& floor) {
    if (!isMeasurement(floor.shutterSec) || !isMeasurement(floor.cadenceSec))
        return false;
    settings_.setText(
        keys::longFrameFloorPrefix + model,
        Json{{"shutter", floor.shutterSec}, {"cadence", floor.cadenceSec}, {"held", floor.held}}.dump());
    return true;
}

void MeasuredFloors::saveFloor(const char* prefix, const std::string& model, double floorSec,
                               const char* settings) {
    if (!isMeasurement(floorSec))
        return;
    settings_.setNumber(prefix + model, floorSec);
    report("profile", {{"model", model},
                       {"floor_ms", static_cast<std::int64_t>(std::llround(floorSec * 1000))},
                       {"settings", settings}});
}

void MeasuredFloors::saveMeasuredFloor(const std::string& model, double floorSec, bool same) {
    saveFloor(same ? keys::measuredSameFloorPrefix : keys::measuredFloorPrefix, model, floorSec,
              same ? "same" : "changing");
}

void MeasuredFloors::saveSustainedFloor(const std::string& model, double cadenceSec) {
    saveFloor(keys::sustainedFloorPrefix, model, cadenceSec, "sustained");
}

void MeasuredFloors::saveBurstDepth(const std::string& model, int cleanFrames, double cadenceSec) {
    if (!keepBurstDepth(model, {.frames = cleanFrames, .cadenceSec = cadenceSec}))
        return;
    report("profile",
           {{"model", model}, {"burst_frames", std::int64_t{cleanFrames}}, {"burst_cadence", cadenceSec}});
}

void MeasuredFloors::saveLongFrameFloor(const std::string& model, double shutterSec, double cadenceSec,
                                        bool held) {
    if (!keepLongFrameFloor(model, {.shutterSec = shutterSec, .cadenceSec = cadenceSec, .held = held}))
        return;
    report("profile", {{"model", model},
                       {"long_shutter_s", shutterSec},
                       {"long_cadence", cadenceSec},
                       {"long_held", held}});
}

void MeasuredFloors::discard(const std::function<bool(const std::string& model)>& wanted) {
    for (const std::string prefix : allPrefixes) {
        for (const std::string& key : settings_.keysBeginningWith(prefix)) {
            if (wanted(key.substr(prefix.size())))
                settings_.remove(key);
        }
    }
}

void MeasuredFloors::discardFabricatedCadenceMeasurements() {
    if (settings_.flag(keys::cadenceRevalidated).value_or(false))
        return;
    discard([](const std::string&) { return true; });
    settings_.setFlag(keys::cadenceRevalidated, true);
}

void MeasuredFloors::discardOlympusTriggerEraMeasurements() {
    if (settings_.flag(keys::olympusRevalidated).value_or(false))
        return;
    discard(isOlympus);
    settings_.setFlag(keys::olympusRevalidated, true);
}

} // namespace zenka::rig
