#pragma once

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>

namespace zenka::rig {

/// The site where one stands for one eclipse.
struct Site {
    double lat = 41.65; ///< degrees, north positive
    double lon = -0.88; ///< degrees, east positive
    double elev = 200;  ///< metres
    std::string label = "Zaragoza, ES";
    std::string tzId = "Europe/Madrid"; ///< time-zone identifier

    friend bool operator==(const Site&, const Site&) = default;
};

/// A site as it is kept, with the word of the user that it is the place.
struct SiteRecord {
    Site site;
    bool confirmed = false;

    friend bool operator==(const SiteRecord&, const SiteRecord&) = default;
};

nlohmann::json toJson(const SiteRecord& record);
/// Nothing when anything of it is missing, of another type, or nowhere on Earth.
std::optional<SiteRecord> siteRecordFrom(const nlohmann::json& json);

} // namespace zenka::rig
