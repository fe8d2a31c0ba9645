#include "rig/site/SiteRecord.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace zenka::rig {

nlohmann::json toJson(const SiteRecord& record) {
    return {{"lat", record.site.lat},     {"lon", record.site.lon}, {"elev", record.site.elev},
            {"label", record.site.label}, {"tz", record.site.tzId}, {"confirmed", record.confirmed}};
}

std::optional<SiteRecord> siteRecordFrom(const nlohmann::json& json) {
    if (!json.is_object())
        return std::nullopt;
    const auto number = [&](const char* key) {
        const auto found = json.find(key);
        return found != json.end() && found->is_number() ? std::optional(found->get<double>()) : std::nullopt;
    };
    const auto textOf = [&](const char* key) {
        const auto found = json.find(key);
        return found != json.end() && found->is_string() ? std::optional(found->get<std::string>())
                                                         : std::nullopt;
    };
    const auto lat = number("lat");
    const auto lon = number("lon");
    const auto elev = number("elev");
    const auto label = textOf("label");
    const auto tz = textOf("tz");
    if (!lat || !lon || !elev || !label || !tz || !(std::abs(*lat) <= 90) || !(std::abs(*lon) <= 180))
        return std::nullopt;
    const auto confirmed = json.find("confirmed");
    return SiteRecord{.site = {.lat = *lat, .lon = *lon, .elev = *elev, .label = *label, .tzId = *tz},
                      .confirmed =
                          confirmed != json.end() && confirmed->is_boolean() && confirmed->get<bool>()};
}

} // namespace zenka::rig
