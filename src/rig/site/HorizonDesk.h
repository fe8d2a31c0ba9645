#pragma once

#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/shared/RigLog.h"
#include "rig/site/HorizonStore.h"
#include "rig/site/SiteDesk.h"
#include "rig/site/TerrainSurvey.h"

#include <optional>
#include <string>
#include <vector>

namespace zenka::rig {

/// A contact and what stands below the Sun then.
struct ContactClearance {
    std::string key; ///< "C1" and so on
    double sunAltDeg = 0;
    double sunAzDeg = 0;
    double horizonDeg = 0; ///< at the Sun's azimuth

    /// The Sun is up, but behind the terrain.
    bool hidden() const { return sunAltDeg >= 0 && sunAltDeg < horizonDeg; }
};

/// Of each contact that is seen from a place, in time order.
std::vector<ContactClearance> contactClearances(const eclipse::LocalCircumstances& circ,
                                                const std::vector<double>& samples);

/// The horizons of places: found on request, kept from one session to the next. Main thread.
class HorizonDesk {
public:
    HorizonDesk(const ports::Ports& ports, RigLog& log, SiteDesk& site);

    /// Reads those that were kept. Waits for the disk, for start-up.
    void restore();

    /// The one of the site in use.
    const base::Published<std::optional<KnownHorizon>>& here() const { return here_; }
    /// The one of a place within 50 m of this one; nothing when it was never found.
    const KnownHorizon* at(double lat, double lon) const;

    /// Takes horizons in addition, and in the place of those of the same places.
    void merge(const std::vector<KnownHorizon>& horizons);

    /// Finds the one of a place, in the place of a search that is under way. What is usable is kept.
    void find(const TerrainSurvey::Place& place, bool buildings);
    void cancel();

    /// How far the search is; nothing when none is under way.
    const base::Published<std::optional<TerrainSurvey::Progress>>& progress() const { return progress_; }
    /// What the last search has to say of itself, empty when all went well.
    const base::Published<std::string>& remark() const { return remark_; }

private:
    void put(const KnownHorizon& horizon);
    void take(const TerrainSurvey::Place& place, const TerrainSurvey::Outcome& outcome);
    void followSite();

    const SiteDesk& site_;
    HorizonStore store_;
    TerrainSurvey survey_;
    std::vector<KnownHorizon> known_; ///< the latest last
    base::Published<std::optional<KnownHorizon>> here_;
    base::Published<std::optional<TerrainSurvey::Progress>> progress_;
    base::Published<std::string> remark_;
};

} // namespace zenka::rig
