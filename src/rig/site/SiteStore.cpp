#include "rig/site/SiteStore.h"

#include <nlohmann/json.hpp>

namespace zenka::rig {

using Json = nlohmann::json;

namespace {

std::vector<SavedSite> seeds() {
    const auto site = [](const char* name, double lat, double lon, double elev, const char* tz) {
        return SavedSite{
            .id = base::Uuid::fresh().text(), .name = name, .lat = lat, .lon = lon, .elev = elev, .tz = tz};
    };
    return {site("Zaragoza, ES", 41.65, -0.88, 200, "Europe/Madrid"),
            site("Valencia, ES", 39.47, -0.376, 15, "Europe/Madrid"),
            site("Reykjavík, IS", 64.146, -21.94, 40, "Atlantic/Reykjavik")};
}

} // namespace

Json toJson(const SavedSite& site) {
    return {{"id", site.id},   {"name", site.name}, {"lat", site.lat},
            {"lon", site.lon}, {"elev", site.elev}, {"tz", site.tz}};
}

std::optional<SavedSite> savedSiteFrom(const Json& json) {
    const auto has = [&](const char* key, bool (Json::*isType)() const noexcept) {
        return json.is_object() && json.contains(key) && (json[key].*isType)();
    };
    if (!has("id", &Json::is_string) || !has("name", &Json::is_string) || !has("tz", &Json::is_string) ||
        !has("lat", &Json::is_number) || !has("lon", &Json::is_number) || !has("elev", &Json::is_number))
        return std::nullopt;
    return SavedSite{.id = json["id"].get<std::string>(),
                     .name = json["name"].get<std::string>(),
                     .lat = json["lat"].get<double>(),
                     .lon = json["lon"].get<double>(),
                     .elev = json["elev"].get<double>(),
                     .tz = json["tz"].get<std::string>()};
}

std::string toJson(const std::vector<SavedSite>& sites) {
    Json list = Json::array();
    for (const SavedSite& site : sites)
        list.push_back(toJson(site));
    return list.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::optional<std::vector<SavedSite>> savedSitesFromJson(std::string_view json) {
    const Json list = Json::parse(json, nullptr, false);
    if (!list.is_array())
        return std::nullopt;
    std::vector<SavedSite> sites;
    for (const Json& item : list) {
        auto site = savedSiteFrom(item);
        if (!site)
            return std::nullopt;
        sites.push_back(*std::move(site));
    }
    return sites;
}

SiteStore::SiteStore(const ports::Ports& ports, Tell tell)
    : file_({.files = ports.files, .loop = ports.loop, .queues = ports.queues, .tell = std::move(tell)},
            ports.folders.applicationSupport() / "sites.json", "The saved sites", "zenka.sites") {
}

SiteStore::Loaded SiteStore::loadOrSeed() {
    const auto text = file_.load();
    if (auto sites = text ? savedSitesFromJson(*text) : std::nullopt)
        return {.sites = *std::move(sites)};
    if (text) // what the user had is kept beside the new file, to be mended by hand
        file_.keepDamaged(*text);
    Loaded seeded{.sites = seeds(), .damaged = text.has_value()};
    save(seeded.sites);
    return seeded;
}

void SiteStore::save(const std::vector<SavedSite>& sites) {
    file_.save(toJson(sites));
}

} // namespace zenka::rig
