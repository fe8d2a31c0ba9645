#pragma once

#include "eclipse/TerrainHorizon.h"
#include "eclipse/TerrainSampling.h"
#include "ports/Settings.h"

#include <optional>
#include <string>
#include <vector>

namespace zenka::rig {

/// Where terrain tiles and buildings are asked for, as the settings have it.
class TerrainSource {
public:
    explicit TerrainSource(const ports::Settings& settings);

    /// Why no tile can be asked for, and what to do about it, as a sentence; empty when they can.
    std::string obstacle() const;
    std::string tileAddress(const eclipse::TileKey& tile) const;
    /// How its tiles tell heights, for a place of this elevation in metres.
    eclipse::HeightEncoding encoding(double elev) const;

    /// Empty where no buildings can be asked for.
    std::string buildingsAddress(double lat, double lon) const;

    /// What the user chooses from: "mapbox", tiles and buildings that want a token, and "open", tiles
    /// without.
    static constexpr char tokenTiles[] = "mapbox";
    static constexpr char openTiles[] = "open";

private:
    bool open_ = false;
    std::string host_;
    std::string openHost_;
    std::string token_;
};

/// The buildings that an answer tells of, seen from a place; nothing when it makes no sense. A feature that
/// makes none is passed over.
std::optional<std::vector<eclipse::TerrainHorizon::Building>> buildingsIn(const std::string& answer,
                                                                          double lat, double lon);

} // namespace zenka::rig
