#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace zenka::eclipse {

/// A square of the Web Mercator map, 256 by 256 pixels.
struct TileKey {
    int zoom = 0;
    int x = 0; ///< from 180° west
    int y = 0; ///< from the north

    friend auto operator<=>(const TileKey&, const TileKey&) = default;
};

/// How the colours of a terrain tile tell the height of the ground.
enum class HeightEncoding {
    terrainRgb,        ///< (R × 65536 + G × 256 + B) × 0.1 − 10000 m
    terrarium,         ///< R × 256 + G + B / 256 − 32768 m, with the sea bed: what is below the sea is sea
    terrariumBelowSea, ///< the same around a place on dry land below the level of the sea
};

/// Height of a pixel in metres; nothing where the colours tell of no ground on Earth.
std::optional<double> heightOf(HeightEncoding encoding, std::uint8_t red, std::uint8_t green,
                               std::uint8_t blue);

/// The ground around a place along 360 rays, 120 points each, from 60 m to 35 km away and dense nearby. The
/// heights are taken tile by tile, so that no more than one tile need be held. One thread at a time.
class TerrainSampling {
public:
    static constexpr int zoom = 11;
    static constexpr int tilePixels = 256;
    static constexpr int rayPoints = 120;

    TerrainSampling(double lat, double lon);

    /// The tiles that are wanted, that of the place first. What lies beyond the edge of the map has none.
    const std::vector<TileKey>& tiles() const { return tiles_; }

    /// Reads the heights off a tile, given by its index: 256 rows from the north, each of 256 pixels from the
    /// west, as red, green, blue, alpha. A picture of another size is passed over.
    void take(std::size_t tile, std::span<const std::uint8_t> rgba, HeightEncoding encoding);

    /// Of the ground at the place, in metres.
    std::optional<double> observerHeight() const;

    /// The horizon, as TerrainHorizon::Result::samples. Points without a height count for nothing; a place
    /// without one counts as at the level of the sea.
    std::vector<double> profile() const;

private:
    struct Pixel {
        std::uint32_t point; ///< index into heights_
        std::uint32_t at;    ///< index of the pixel within its tile
    };

    std::vector<TileKey> tiles_;
    std::vector<std::vector<Pixel>> pixels_; ///< by tile
    std::array<double, rayPoints> distancesM_{};
    std::vector<double> heights_; ///< by ray and point, then that of the place; NaN where unknown
};

} // namespace zenka::eclipse
