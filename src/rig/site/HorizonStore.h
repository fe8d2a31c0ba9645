#pragma once

#include "eclipse/TerrainHorizon.h"
#include "ports/KeptFile.h"
#include "ports/Ports.h"

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::rig {

/// The horizon of a place as it was found.
struct KnownHorizon {
    double lat = 0; ///< degrees, north positive
    double lon = 0; ///< degrees, east positive
    eclipse::TerrainHorizon::Result result;

    friend bool operator==(const KnownHorizon&, const KnownHorizon&) = default;
};

/// Elevations are rounded to a thousandth of a degree.
nlohmann::json toJson(const KnownHorizon& horizon);
/// Nothing for what is none.
std::optional<KnownHorizon> horizonFrom(const nlohmann::json& json);

std::string toJson(const std::vector<KnownHorizon>& horizons);
/// One that cannot be read is left out; nothing when none of the text can.
std::optional<std::vector<KnownHorizon>> horizonsFromJson(std::string_view json);

/// The horizons that were found, in "horizons.json", so that they are there where no network is.
class HorizonStore {
public:
    /// Hears of the disk's trouble, main thread.
    using Tell = std::function<void(const std::string& sentence)>;

    HorizonStore(const ports::Ports& ports, Tell tell);

    /// Waits for the disk, for start-up. A missing file is an empty list; one that cannot be read is kept
    /// beside as "horizons.json.damaged".
    std::vector<KnownHorizon> load();
    void save(const std::vector<KnownHorizon>& horizons);

private:
    ports::KeptFile file_;
};

} // namespace zenka::rig
