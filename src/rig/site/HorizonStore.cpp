#include "rig/site/HorizonStore.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace zenka::rig {

using Json = nlohmann::json;

namespace {

bool hasNumber(const Json& object, const char* key) {
    return object.contains(key) && object[key].is_number();
}

} // namespace

std::optional<KnownHorizon> horizonFrom(const Json& item) {
    const std::size_t wanted = eclipse::TerrainHorizon::azimuths;
    if (!item.is_object() || !hasNumber(item, "lat") || !hasNumber(item, "lon") ||
        !item.contains("samples") || !item["samples"].is_array() || item["samples"].size() != wanted)
        return std::nullopt;
    KnownHorizon horizon{.lat = item["lat"].get<double>(), .lon = item["lon"].get<double>(), .result = {}};
    for (std::size_t i = 0; i < wanted; ++i) {
        const Json& sample = item["samples"][i];
        if (!sample.is_number() || sample.get<double>() < 0 || sample.get<double>() > 90)
            return std::nullopt; // JSON has no NaN
        horizon.result.samples[i] = sample.get<double>();
    }
    if (hasNumber(item, "height"))
        horizon.result.observerHeightM = item["height"].get<double>();
    if (item.contains("source") && item["source"].is_string())
        horizon.result.source = item["source"].get<std::string>();
    return horizon;
}

Json toJson(const KnownHorizon& horizon) {
    constexpr double steps = 1000; // of a degree
    Json item{{"lat", horizon.lat}, {"lon", horizon.lon}, {"source", horizon.result.source}};
    if (horizon.result.observerHeightM)
        item["height"] = *horizon.result.observerHeightM;
    Json& samples = item["samples"] = Json::array();
    for (const double sample : horizon.result.samples)
        samples.push_back(std::round(sample * steps) / steps);
    return item;
}

std::string toJson(const std::vector<KnownHorizon>& horizons) {
    Json list = Json::array();
    for (const KnownHorizon& horizon : horizons)
        list.push_back(toJson(horizon));
    return list.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::optional<std::vector<KnownHorizon>> horizonsFromJson(std::string_view json) {
    const Json list = Json::parse(json, nullptr, false);
    if (!list.is_array())
        return std::nullopt;
    std::vector<KnownHorizon> horizons;
    for (const Json& item : list) {
        if (auto horizon = horizonFrom(item))
            horizons.push_back(*std::move(horizon));
    }
    return horizons;
}

HorizonStore::HorizonStore(const ports::Ports& ports, Tell tell)
    : file_({.files = ports.files, .loop = ports.loop, .queues = ports.queues, .tell = std::move(tell)},
            ports.folders.applicationSupport() / "horizons.json", "The horizons", "zenka.horizons") {
}

std::vector<KnownHorizon> HorizonStore::load() {
    const auto text = file_.load();
    if (!text)
        return {};
    if (auto horizons = horizonsFromJson(*text))
        return *std::move(horizons);
    file_.keepDamaged(*text);
    return {};
}

void HorizonStore::save(const std::vector<KnownHorizon>& horizons) {
    file_.save(toJson(horizons));
}

} // namespace zenka::rig
