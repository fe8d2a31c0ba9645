#pragma once

#include "base/Uuid.h"
#include "ports/KeptFile.h"
#include "ports/Ports.h"

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::rig {

/// A site that the user keeps: degrees, metres, time-zone identifier.
struct SavedSite {
    std::string id; ///< a UUID as text
    std::string name;
    double lat = 0;
    double lon = 0;
    double elev = 0;
    std::string tz;

    friend bool operator==(const SavedSite&, const SavedSite&) = default;
};

nlohmann::json toJson(const SavedSite& site);
/// Nothing for what is no saved site.
std::optional<SavedSite> savedSiteFrom(const nlohmann::json& json);

std::string toJson(const std::vector<SavedSite>& sites);
/// Nothing for a text that is no such list.
std::optional<std::vector<SavedSite>> savedSitesFromJson(std::string_view json);

/// The file "sites.json".
class SiteStore {
public:
    /// Hears of the disk's trouble, main thread.
    using Tell = std::function<void(const std::string& sentence)>;

    SiteStore(const ports::Ports& ports, Tell tell);

    /// The sites of the file; where there is none, or it cannot be read, three to begin with, which are
    /// saved. Waits for the disk, for start-up. `damaged` tells of a file that was there.
    struct Loaded {
        std::vector<SavedSite> sites;
        bool damaged = false;
    };
    Loaded loadOrSeed();

    /// Does not wait for the disk.
    void save(const std::vector<SavedSite>& sites);

private:
    ports::KeptFile file_;
};

} // namespace zenka::rig
