#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "eclipse/Besselian.h"
#include "eclipse/EclipsePath.h"
#include "eclipse/SkyCurve.h"
#include "ports/Ports.h"
#include "rig/shared/RigLog.h"
#include "rig/site/SiteRecord.h"
#include "script/ZenkaScript.h"

#include <absl/time/time.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zenka::rig {

/// What scripts are compiled for here. A value, so that any thread may work with it.
struct CompileSite {
    std::shared_ptr<const eclipse::Eclipse> eclipse;
    eclipse::Observer observer;
    std::map<std::string, double> contactTHours;
    std::string tzId;

    /// Lives no longer than this.
    script::CompileContext context() const {
        return {.eclipse = *eclipse, .observer = observer, .contactTHours = contactTHours, .tzId = tzId};
    }
};

/// The selected eclipse and site, and what the eclipse is there. The site is remembered per eclipse.
class SiteDesk {
public:
    SiteDesk(const ports::Ports& ports, RigLog& log);

    const std::string& eclipseId() const { return eclipseId_.get(); }
    const eclipse::Eclipse& eclipse() const { return *eclipse_; }
    /// The same for work off the main thread, which may outlast the selection.
    std::shared_ptr<const eclipse::Eclipse> sharedEclipse() const { return eclipse_; }
    const Site& site() const { return site_.get(); }
    eclipse::Observer observer() const;

    const base::Published<std::string>& publishedEclipseId() const { return eclipseId_; }
    const base::Published<Site>& publishedSite() const { return site_; }
    const base::Published<bool>& locationConfirmed() const { return locationConfirmed_; }
    bool restoredSiteForCurrentEclipse() const { return restoredSite_; }

    /// What the last recompute found.
    const std::optional<eclipse::LocalCircumstances>& circ() const { return circ_; }
    const std::vector<eclipse::ViewSample>& curve() const { return curve_; }
    const std::map<std::string, double>& contactTHours() const { return contactTHours_; }
    std::optional<eclipse::ViewSample> sampleAt(double clock) const;
    CompileSite compileSite() const { return {eclipse_, observer(), contactTHours_, site().tzId}; }

    /// Clock values of first and last contact; ∓7200 at a site that does not see the eclipse.
    double tC1() const { return tC1_; }
    double tC4() const { return tC4_; }

    /// The wall instant of a clock value and back.
    base::Instant wallAt(double clock) const;
    double clockAt(base::Instant wall) const;

    /// A clock value as the time of day at the site, "20:29:03".
    std::string fmtClock(double clock) const;

    /// The site's zone, UTC if its identifier is unknown.
    absl::TimeZone timeZone() const;

    /// Takes selection, confirmation and remembered site from the settings.
    void restore();

    /// Replaces the site; recompute() follows up.
    void setSite(Site site);

    /// The user has said that this is the place for this eclipse, or no longer says so.
    void confirmLocation(bool confirmed);

    /// Takes an eclipse of the catalogue together with a site; recompute() follows up.
    void choose(const std::string& eclipseId, Site site);
    /// The same for the user, who finds the eclipse selected at the next start.
    void take(const std::string& eclipseId, SiteRecord record);

    /// Changes the eclipse: with the site remembered for it, or the one that stands if it sees the
    /// eclipse, or the point of greatest duration. An unknown id changes nothing.
    void selectEclipse(const std::string& id);

    /// The site was moved by the search for the greatest duration, and its zone is not known yet.
    sigc::signal<void()>& movedAway() { return movedAway_; }

    /// Moves the site to the point of greatest duration, which is searched off the main thread.
    void jumpToGreatestDuration(const std::optional<std::string>& reason);

    /// Computes circumstances and curve anew and raises recomputed().
    void recompute();

    sigc::signal<void()>& recomputed() { return recomputed_; }

private:
    void useEclipse(const std::string& id);
    void moveToGreatestDuration(const eclipse::DurationPoint& point,
                                const std::optional<std::string>& reason);
    void rememberSite();
    bool restoreSite();

    const ports::Ports& ports_;
    RigLog& log_;
    base::Published<std::string> eclipseId_;
    std::shared_ptr<const eclipse::Eclipse> eclipse_;
    base::Published<Site> site_;
    base::Published<bool> locationConfirmed_{false};
    bool restoredSite_ = false;
    std::optional<eclipse::LocalCircumstances> circ_;
    std::vector<eclipse::ViewSample> curve_;
    std::map<std::string, double> contactTHours_;
    double tC1_ = -7200;
    double tC4_ = 7200;
    sigc::signal<void()> recomputed_;
    sigc::signal<void()> movedAway_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
