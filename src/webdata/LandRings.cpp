#include "webdata/LandRings.h"

#include "geo/Bundled.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <vector>

namespace zenka::webdata {

namespace {

constexpr double unitsPerDegree = 100;
/// Points nearer to the one before are left out, and rings that are left with too few of them.
constexpr int leastStep = 8;

int units(double degrees) {
    return static_cast<int>(std::lround(degrees * unitsPerDegree));
}

/// Whether a point lies on the rim of the tile, where the pieces of the land have to fit together.
bool isCorner(const geo::Polyline& ring, std::size_t i) {
    if (i == 0 || i + 1 >= ring.size())
        return true;
    const auto along = [&](std::size_t a, std::size_t b) {
        return ring[a].lat == ring[b].lat || ring[a].lon == ring[b].lon;
    };
    return along(i - 1, i) || along(i, i + 1);
}

std::vector<int> stepsOf(const geo::Polyline& ring) {
    std::vector<int> steps;
    int lon = 0;
    int lat = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const int dLon = units(ring[i].lon) - lon;
        const int dLat = units(ring[i].lat) - lat;
        const bool isFar = std::abs(dLon) + std::abs(dLat) >= leastStep;
        if (!isFar && !isCorner(ring, i))
            continue;
        lon += dLon;
        lat += dLat;
        steps.push_back(dLon);
        steps.push_back(dLat);
    }
    return steps;
}

} // namespace

std::string landText() {
    constexpr std::size_t leastNumbers = 8; // three corners and the first again
    nlohmann::json rings = nlohmann::json::array();
    for (const geo::LandArea& area : geo::bundledOutlines().land(geo::Detail::medium, geo::GeoBox{})) {
        for (const geo::Polyline& ring : area.rings) {
            if (auto steps = stepsOf(ring); steps.size() >= leastNumbers)
                rings.push_back(std::move(steps));
        }
    }
    return rings.dump();
}

} // namespace zenka::webdata
