#include "rig/site/TerrainSource.h"

#include "base/Text.h"
#include "geo/GeoPoint.h"
#include "rig/shared/SettingsKeys.h"

#include <absl/strings/str_format.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <utility>

namespace zenka::rig {

namespace {

using Building = eclipse::TerrainHorizon::Building;
using Json = nlohmann::json;

constexpr char defaultTokenHost[] = "https://api.mapbox.com";
/// The Terrain Tiles of the registry of open data, "terrarium" encoding.
constexpr char defaultOpenHost[] = "https://s3.amazonaws.com/elevation-tiles-prod";
constexpr int buildingsWithinM = 1200;
constexpr double usualBuildingM = 8;
constexpr double tallestBuildingM = 1000; ///< with room

std::string addressIn(const ports::Settings& settings, const char* key, const char* otherwise) {
    std::string address(base::trimmed(settings.text(key).value_or("")));
    while (address.ends_with('/'))
        address.pop_back();
    return address.empty() ? otherwise : address;
}

/// What of a token may stand in an address as it is; the rest is written as %XX.
std::string inAddress(const std::string& token) {
    std::string written;
    for (const char c : token) {
        const bool plain = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                           c == '.' || c == '_' || c == '-' || c == '~';
        written += plain ? std::string(1, c) : absl::StrFormat("%%%02X", static_cast<unsigned char>(c));
    }
    return written;
}

std::optional<double> numberIn(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_number() || !std::isfinite(found->get<double>()))
        return std::nullopt;
    return found->get<double>();
}

const Json* objectIn(const Json& object, const char* key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_object() ? &*found : nullptr;
}

double heightIn(const Json& properties) {
    for (const char* key : {"height", "render_height"}) {
        const auto height = numberIn(properties, key);
        if (height && *height >= 0 && *height <= tallestBuildingM)
            return *height;
    }
    return usualBuildingM;
}

std::optional<Building> buildingIn(const Json& feature, double lat, double lon) {
    const Json* properties = feature.is_object() ? objectIn(feature, "properties") : nullptr;
    const Json* geometry = properties ? objectIn(feature, "geometry") : nullptr;
    if (!geometry || geometry->value("type", Json()) != "Point")
        return std::nullopt;
    const Json underground = properties->value("underground", Json());
    const Json place = geometry->value("coordinates", Json());
    if (underground == "true" || underground == true || !place.is_array() || place.size() < 2 ||
        !place[0].is_number() || !place[1].is_number())
        return std::nullopt;
    const double toLon = place[0].get<double>();
    const double toLat = place[1].get<double>();
    if (!(std::abs(toLat) <= 90) || !(std::abs(toLon) <= 360))
        return std::nullopt;
    const Json* query = objectIn(*properties, "tilequery");
    const auto told = query ? numberIn(*query, "distance") : std::nullopt;
    const geo::GeoPoint from{.lat = lat, .lon = lon};
    const geo::GeoPoint to{.lat = toLat, .lon = toLon};
    return Building{.distanceM = told.value_or(geo::distanceKm(from, to) * 1000),
                    .bearingDeg = geo::bearingDeg(from, to),
                    .heightM = heightIn(*properties)};
}

} // namespace

TerrainSource::TerrainSource(const ports::Settings& settings)
    : open_(settings.text(settingsKeys::terrainTiles).value_or("") == openTiles),
      host_(addressIn(settings, settingsKeys::terrainHost, defaultTokenHost)),
      openHost_(addressIn(settings, settingsKeys::openTerrainHost, defaultOpenHost)),
      token_(inAddress(std::string(base::trimmed(settings.text(settingsKeys::terrainToken).value_or(""))))) {
}

std::string TerrainSource::obstacle() const {
    if (open_ || !token_.empty())
        return {};
    return "No token for the terrain tiles is set: give one in Settings, or choose the open tiles there.";
}

std::string TerrainSource::tileAddress(const eclipse::TileKey& tile) const {
    const std::string place = absl::StrFormat("%d/%d/%d", tile.zoom, tile.x, tile.y);
    if (open_)
        return openHost_ + "/terrarium/" + place + ".png";
    return host_ + "/v4/mapbox.terrain-rgb/" + place + ".pngraw?access_token=" + token_;
}

eclipse::HeightEncoding TerrainSource::encoding(double elev) const {
    if (!open_)
        return eclipse::HeightEncoding::terrainRgb;
    return elev < 0 ? eclipse::HeightEncoding::terrariumBelowSea : eclipse::HeightEncoding::terrarium;
}

std::string TerrainSource::buildingsAddress(double lat, double lon) const {
    if (token_.empty())
        return {};
    return absl::StrFormat("%s/v4/mapbox.mapbox-streets-v8/tilequery/%.6f,%.6f.json?radius=%d&limit=50&"
                           "dedupe=true&layers=building&access_token=%s",
                           host_, lon, lat, buildingsWithinM, token_);
}

std::optional<std::vector<Building>> buildingsIn(const std::string& answer, double lat, double lon) {
    const Json json = Json::parse(answer, nullptr, false);
    if (!json.is_object() || !json.contains("features") || !json["features"].is_array())
        return std::nullopt;
    std::vector<Building> buildings;
    for (const Json& feature : json["features"]) {
        if (const auto building = buildingIn(feature, lat, lon))
            buildings.push_back(*building);
    }
    return buildings;
}

} // namespace zenka::rig
