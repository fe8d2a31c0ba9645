#pragma once

#include "base/Published.h"
#include "rig/shared/RigLog.h"
#include "rig/site/GroundHeight.h"
#include "rig/site/SiteDesk.h"
#include "rig/site/SiteStore.h"

#include <optional>
#include <string>
#include <vector>

namespace zenka::rig {

/// Whether one of two sites takes the place of the other one where lists are merged.
bool isSame(const SavedSite& one, const SavedSite& other);

/// The sites that the user keeps, and the ways to set the current one: from a saved site, from a point
/// whose time zone and name are looked up, from a receiver.
class SiteBook {
public:
    SiteBook(const ports::Ports& ports, RigLog& log, SiteDesk& desk);

    /// Reads the saved sites and, where the eclipse has no site of its own yet, applies the default one or
    /// the only one. Waits for the disk, for start-up.
    void restore();

    const base::Published<std::vector<SavedSite>>& savedSites() const { return savedSites_; }

    void addSite(const std::string& name, double lat, double lon, double elev, const std::string& tz);
    void saveCurrentSite(const std::string& name);
    void applySite(const SavedSite& site);
    /// Takes sites in addition, and in the place of those of the same id or name.
    void merge(const std::vector<SavedSite>& sites);
    void deleteSite(const std::string& id);
    void setDefaultSite(const std::optional<std::string>& id);
    std::optional<std::string> defaultSiteId() const;

    /// Moves the site to a point, with the zone and the name of the place that are looked up there, and its
    /// height where none is given.
    void moveTo(double lat, double lon, std::optional<double> elev, bool confirmed);
    void setLocationFromGPS(double lat, double lon, double altitude);

    /// Takes the zone of the current point; at sea one estimated from the longitude, with a warning.
    void resolveTimeZone();
    /// The zone that stands is one that was estimated.
    bool timeZoneIsEstimate() const;
    /// Takes the name of the place at the current point, if it has one.
    void refreshSitePlace();
    /// Asks the elevation service for the height of the current point. Without an answer, or when the site
    /// has changed before it comes, nothing happens.
    void lookUpElevation();
    void takeElevation(double metres);

    /// The height of the current point has come, in metres.
    sigc::signal<void(double)>& elevationFound() { return elevationFound_; }
    GroundHeight& ground() { return ground_; }

private:
    void change(std::vector<SavedSite> sites);

    const ports::Ports& ports_;
    RigLog& log_;
    SiteDesk& desk_;
    SiteStore store_;
    GroundHeight ground_;
    sigc::signal<void(double)> elevationFound_;
    base::Published<std::vector<SavedSite>> savedSites_;
};

} // namespace zenka::rig
