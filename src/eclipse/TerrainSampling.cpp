#include "eclipse/TerrainSampling.h"

#include "eclipse/TerrainHorizon.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numbers>

namespace zenka::eclipse {

namespace {

using TerrainHorizon::perDegree;
constexpr double nearestPointM = 60;
constexpr double farthestPointM = 35000;
constexpr int tilesAcross = 1 << TerrainSampling::zoom;
constexpr double worldPixels = tilesAcross * TerrainSampling::tilePixels;
constexpr std::size_t points = std::size_t{TerrainHorizon::azimuths} * TerrainSampling::rayPoints;

/// No dry land is lower, no mountain higher: what is beyond stands for "no data".
constexpr double lowestGroundM = -500;
constexpr double highestGroundM = 9000;

struct WorldPixel {
    double x = 0;
    double y = 0;
};

/// Web Mercator. The poles, which it does not reach, come out beyond the edge of the map.
WorldPixel project(double lat, double lon) {
    const double sine = std::clamp(std::sin(lat * perDegree), -0.99999, 0.99999);
    return {.x = (lon + 180) / 360 * worldPixels,
            .y = (std::log((1 + sine) / (1 - sine)) / (-4 * std::numbers::pi) + 0.5) * worldPixels};
}

/// Longitude brought into -180 to 180.
double wrapped(double lon) {
    return std::fmod(lon + 540, 360) - 180;
}

} // namespace

std::optional<double> heightOf(HeightEncoding encoding, std::uint8_t red, std::uint8_t green,
                               std::uint8_t blue) {
    double metres = 0;
    if (encoding == HeightEncoding::terrainRgb)
        metres = (red * 65536.0 + green * 256.0 + blue) * 0.1 - 10000;
    else
        metres = red * 256.0 + green + blue / 256.0 - 32768;
    const bool seaBed = encoding == HeightEncoding::terrarium && metres < 0 && metres > -12000;
    if (seaBed)
        return 0.0;
    if (metres < lowestGroundM || metres > highestGroundM)
        return std::nullopt;
    return metres;
}

TerrainSampling::TerrainSampling(double lat, double lon)
    : heights_(points + 1, std::numeric_limits<double>::quiet_NaN()) {
    std::map<TileKey, std::size_t> known;
    const auto want = [&](double pointLat, double pointLon, std::size_t point) {
        const WorldPixel place = project(pointLat, pointLon);
        const auto onMap = [](double at) { return at >= 0 && at < worldPixels; };
        if (!onMap(place.x) || !onMap(place.y))
            return;
        const auto x = static_cast<int>(place.x);
        const auto y = static_cast<int>(place.y);
        const TileKey key{.zoom = zoom, .x = x / tilePixels, .y = y / tilePixels};
        const auto [entry, fresh] = known.try_emplace(key, tiles_.size());
        if (fresh) {
            tiles_.push_back(key);
            pixels_.emplace_back();
        }
        pixels_[entry->second].push_back(
            {.point = static_cast<std::uint32_t>(point),
             .at = static_cast<std::uint32_t>(y % tilePixels * tilePixels + x % tilePixels)});
    };

    want(lat, wrapped(lon), points);
    struct Arc {
        double sine = 0;
        double cosine = 0;
    };
    std::array<Arc, rayPoints> arcs;
    for (std::size_t k = 0; k < arcs.size(); ++k) {
        distancesM_[k] = nearestPointM *
                         std::pow(farthestPointM / nearestPointM, static_cast<double>(k) / (rayPoints - 1));
        const double arc = distancesM_[k] / TerrainHorizon::earthRadiusM;
        arcs[k] = {.sine = std::sin(arc), .cosine = std::cos(arc)};
    }
    const double sinLat = std::sin(lat * perDegree);
    const double cosLat = std::cos(lat * perDegree);
    std::size_t point = 0;
    for (int azimuth = 0; azimuth < TerrainHorizon::azimuths; ++azimuth) {
        const double sinAz = std::sin(azimuth * perDegree);
        const double cosAz = std::cos(azimuth * perDegree);
        for (const Arc& arc : arcs) {
            const double x = sinLat * arc.cosine + cosAz * cosLat * arc.sine;
            const double east = std::atan2(sinAz * cosLat * arc.sine, arc.cosine - sinLat * x) / perDegree;
            want(std::asin(std::clamp(x, -1.0, 1.0)) / perDegree, wrapped(lon + east), point++);
        }
    }
}

void TerrainSampling::take(std::size_t tile, std::span<const std::uint8_t> rgba, HeightEncoding encoding) {
    constexpr std::size_t channels = 4;
    if (tile >= pixels_.size() || rgba.size() != channels * tilePixels * tilePixels)
        return;
    for (const Pixel& pixel : pixels_[tile]) {
        const auto colour = rgba.subspan(channels * pixel.at, channels);
        if (const auto height = heightOf(encoding, colour[0], colour[1], colour[2]))
            heights_[pixel.point] = *height;
    }
}

std::optional<double> TerrainSampling::observerHeight() const {
    const double height = heights_.back();
    return std::isnan(height) ? std::nullopt : std::optional(height);
}

std::vector<double> TerrainSampling::profile() const {
    const double eye = observerHeight().value_or(0);
    std::vector<double> samples(TerrainHorizon::azimuths, 0.0);
    std::size_t point = 0;
    for (double& sample : samples) {
        for (const double distance : distancesM_) {
            const double height = heights_[point++];
            if (!std::isnan(height))
                sample = std::max(sample, TerrainHorizon::elevationAngle(height - eye, distance));
        }
    }
    return samples;
}

} // namespace zenka::eclipse
