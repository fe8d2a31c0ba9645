#include "platform/BundledPlaceLookup.h"

#include "geo/Bundled.h"

namespace zenka::platform {
namespace {

// Farther off, the name of a place would mislead more than help.
constexpr double nearKm = 30;

} // namespace

std::optional<std::string> BundledPlaceLookup::zoneAt(double lat, double lon) const {
    return geo::bundledZones().zoneAt(lat, lon);
}

std::optional<std::string> BundledPlaceLookup::placeAt(double lat, double lon) const {
    const auto place = geo::bundledPlaces().nearest(lat, lon, nearKm);
    return place ? std::optional(place->label()) : std::nullopt;
}

std::vector<ports::FoundPlace> BundledPlaceLookup::search(std::string_view text, std::size_t limit) const {
    std::vector<ports::FoundPlace> found;
    for (const geo::Place& place : geo::bundledPlaces().search(text, limit)) {
        found.push_back({place.label(), place.at.lat, place.at.lon});
    }
    return found;
}

} // namespace zenka::platform
