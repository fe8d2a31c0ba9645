#include "rig/site/SiteBook.h"

#include "base/Text.h"
#include "rig/shared/SettingsKeys.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace zenka::rig {

namespace {

/// A fixed offset of whole hours, as the zone files name them: there "west" has the plus.
std::string estimatedZone(double lon) {
    const int hours = static_cast<int>(std::lround(lon / 15));
    return hours == 0 ? "Etc/GMT" : absl::StrFormat("Etc/GMT%+d", -hours);
}

} // namespace

bool isSame(const SavedSite& one, const SavedSite& other) {
    return one.id == other.id || base::equalIgnoringCase(one.name, other.name);
}

SiteBook::SiteBook(const ports::Ports& ports, RigLog& log, SiteDesk& desk)
    : ports_(ports), log_(log), desk_(desk),
      store_(ports, [&log](const std::string& sentence) { log.pushLog("⚠️ " + sentence); }),
      ground_(ports) {
}

void SiteBook::restore() {
    SiteStore::Loaded loaded = store_.loadOrSeed();
    if (loaded.damaged)
        log_.pushLog(
            "⚠️ The saved sites could not be read. They are kept as sites.json.damaged in the program's "
            "folder; the list begins anew.");
    savedSites_.set(std::move(loaded.sites));
    if (desk_.restoredSiteForCurrentEclipse())
        return;
    const auto& sites = savedSites_.get();
    const auto wanted = defaultSiteId();
    const auto found = std::ranges::find_if(sites, [&](const SavedSite& site) { return site.id == wanted; });
    if (found != sites.end())
        applySite(*found);
    else if (sites.size() == 1)
        applySite(sites.front());
}

void SiteBook::addSite(const std::string& name, double lat, double lon, double elev, const std::string& tz) {
    std::vector<SavedSite> sites = savedSites_.get();
    sites.push_back(
        {.id = base::Uuid::fresh().text(), .name = name, .lat = lat, .lon = lon, .elev = elev, .tz = tz});
    change(std::move(sites));
}

void SiteBook::saveCurrentSite(const std::string& name) {
    const Site& site = desk_.site();
    addSite(name, site.lat, site.lon, site.elev, site.tzId);
}

void SiteBook::applySite(const SavedSite& site) {
    desk_.setSite({.lat = site.lat, .lon = site.lon, .elev = site.elev, .label = site.name, .tzId = site.tz});
    desk_.confirmLocation(true);
    desk_.recompute();
}

void SiteBook::merge(const std::vector<SavedSite>& sites) {
    std::vector<SavedSite> merged = savedSites_.get();
    for (const SavedSite& site : sites) {
        const auto same =
            std::ranges::find_if(merged, [&](const SavedSite& each) { return isSame(each, site); });
        if (same == merged.end()) {
            merged.push_back(site);
            continue;
        }
        if (defaultSiteId() == same->id)
            setDefaultSite(site.id);
        *same = site;
    }
    if (merged != savedSites_.get())
        change(std::move(merged));
}

void SiteBook::deleteSite(const std::string& id) {
    std::vector<SavedSite> sites = savedSites_.get();
    std::erase_if(sites, [&](const SavedSite& site) { return site.id == id; });
    if (defaultSiteId() == id)
        setDefaultSite(std::nullopt);
    change(std::move(sites));
}

void SiteBook::setDefaultSite(const std::optional<std::string>& id) {
    if (id)
        ports_.settings.setText(settingsKeys::defaultSite, *id);
    else
        ports_.settings.remove(settingsKeys::defaultSite);
}

std::optional<std::string> SiteBook::defaultSiteId() const {
    return ports_.settings.text(settingsKeys::defaultSite);
}

void SiteBook::moveTo(double lat, double lon, std::optional<double> elev, bool confirmed) {
    Site site = desk_.site();
    site.lat = lat;
    site.lon = lon;
    site.elev = elev.value_or(site.elev);
    site.label = ports_.places.placeAt(lat, lon).value_or(absl::StrFormat("%.4f, %.4f", lat, lon));
    desk_.setSite(std::move(site));
    desk_.confirmLocation(confirmed);
    resolveTimeZone();
    if (!elev)
        lookUpElevation();
}

void SiteBook::setLocationFromGPS(double lat, double lon, double altitude) {
    log_.pushLog(absl::StrFormat("Location set from GPS: %.5f, %.5f, %.0f m", lat, lon, altitude));
    moveTo(lat, lon, altitude, true);
}

void SiteBook::resolveTimeZone() {
    Site site = desk_.site();
    if (const auto zone = ports_.places.zoneAt(site.lat, site.lon)) {
        if (*zone != site.tzId)
            log_.pushLog("Time zone set from the new location: " + *zone);
        site.tzId = *zone;
    } else {
        site.tzId = estimatedZone(site.lon);
        log_.pushLog("⚠️ Time zone ESTIMATED from longitude as " + site.tzId +
                     ". No lookup was available, so this carries no daylight-saving rule. Set it by hand in "
                     "Location before you arm.");
    }
    desk_.setSite(std::move(site));
    desk_.recompute();
}

bool SiteBook::timeZoneIsEstimate() const {
    const Site& site = desk_.site();
    return site.tzId == estimatedZone(site.lon);
}

void SiteBook::refreshSitePlace() {
    Site site = desk_.site();
    if (auto place = ports_.places.placeAt(site.lat, site.lon)) {
        site.label = *std::move(place);
        desk_.setSite(std::move(site));
    }
}

void SiteBook::lookUpElevation() {
    const Site asked = desk_.site();
    ground_.ask(asked.lat, asked.lon, [this, asked](std::optional<double> metres) {
        const Site& site = desk_.site();
        const bool unmoved = site.lat == asked.lat && site.lon == asked.lon && site.elev == asked.elev;
        if (metres && unmoved && *metres != site.elev)
            elevationFound_.emit(*metres);
    });
}

void SiteBook::takeElevation(double metres) {
    Site site = desk_.site();
    site.elev = metres;
    desk_.setSite(std::move(site));
    log_.pushLog(absl::StrFormat("Elevation set to %.0f m, from the elevation service.", metres));
    desk_.recompute();
}

void SiteBook::change(std::vector<SavedSite> sites) {
    store_.save(sites);
    savedSites_.set(std::move(sites));
}

} // namespace zenka::rig
