#include "rig/site/SiteDesk.h"

#include "base/CivilTime.h"
#include "base/TimeWords.h"
#include "eclipse/Catalog.h"
#include "rig/shared/SettingsKeys.h"
#include "script/ZenkaScript.h"

#include <absl/strings/str_format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

constexpr char defaultEclipseId[] = "2026-08-12";

std::string labelOr(const Site& site, const char* unnamed) {
    return site.label.empty() ? unnamed : site.label;
}

} // namespace

SiteDesk::SiteDesk(const ports::Ports& ports, RigLog& log)
    : ports_(ports), log_(log), eclipseId_(defaultEclipseId),
      eclipse_(std::make_shared<const eclipse::Eclipse>(eclipse::Catalog::eclipse(defaultEclipseId))),
      site_(Site{}) {
}

eclipse::Observer SiteDesk::observer() const {
    return {.lat = site_->lat, .lon = site_->lon, .elev = site_->elev};
}

std::optional<eclipse::ViewSample> SiteDesk::sampleAt(double clock) const {
    return eclipse::sampleAt(curve_, clock);
}

base::Instant SiteDesk::wallAt(double clock) const {
    return eclipse_->baseTDT() + base::Seconds{clock} - base::Seconds{eclipse_->rec.deltaT};
}

double SiteDesk::clockAt(base::Instant wall) const {
    return (wall - (eclipse_->baseTDT() - base::Seconds{eclipse_->rec.deltaT})).count();
}

std::string SiteDesk::fmtClock(double clock) const {
    return base::localHMS(wallAt(clock), site_->tzId);
}

absl::TimeZone SiteDesk::timeZone() const {
    return base::timeZoneOrUtc(site_->tzId);
}

void SiteDesk::restore() {
    const auto id = ports_.settings.text(settingsKeys::selectedEclipse);
    if (id && eclipse::Catalog::has(*id))
        useEclipse(*id);
    else if (id)
        log_.pushLog("⚠️ The settings name an eclipse that is not in the catalogue: \"" + *id +
                     "\". Choose one in the bar at the top.");
    locationConfirmed_.set(
        ports_.settings.flag(settingsKeys::locationConfirmedPrefix + eclipseId()).value_or(false));
    restoredSite_ = restoreSite();
}

void SiteDesk::setSite(Site site) {
    site_.set(std::move(site));
    rememberSite();
}

void SiteDesk::confirmLocation(bool confirmed) {
    locationConfirmed_.set(confirmed);
    rememberSite();
}

void SiteDesk::choose(const std::string& eclipseId, Site site) {
    if (!eclipse::Catalog::has(eclipseId))
        return;
    useEclipse(eclipseId);
    setSite(std::move(site));
}

void SiteDesk::take(const std::string& eclipseId, SiteRecord record) {
    if (!eclipse::Catalog::has(eclipseId))
        return;
    rememberSite();
    useEclipse(eclipseId);
    ports_.settings.setText(settingsKeys::selectedEclipse, eclipseId);
    locationConfirmed_.set(record.confirmed);
    setSite(std::move(record.site));
}

void SiteDesk::useEclipse(const std::string& id) {
    eclipseId_.set(id);
    eclipse_ = std::make_shared<const eclipse::Eclipse>(eclipse::Catalog::eclipse(id));
}

void SiteDesk::selectEclipse(const std::string& id) {
    if (id == eclipseId() || !eclipse::Catalog::has(id))
        return;
    rememberSite();
    useEclipse(id);
    ports_.settings.setText(settingsKeys::selectedEclipse, id);
    locationConfirmed_.set(ports_.settings.flag(settingsKeys::locationConfirmedPrefix + id).value_or(false));

    restoredSite_ = restoreSite();
    if (restoredSite_) {
        log_.pushLog("Site restored for this eclipse: " + labelOr(site(), "your last location") + ".");
        recompute();
        return;
    }
    const bool seen = eclipse_->localCircumstances(observer()).maxObscuration > 0;
    if (seen) {
        log_.pushLog("Site kept: " + labelOr(site(), "your current location") + " sees this eclipse.");
        recompute();
        return;
    }
    log_.pushLog("This eclipse is not visible from " + labelOr(site(), "your current site") +
                 ". Finding the point of greatest duration…");
    recompute();
    jumpToGreatestDuration("not visible from your previous site");
}

void SiteDesk::jumpToGreatestDuration(const std::optional<std::string>& reason) {
    const auto arrive = lifeline_.guard(
        [this, reason, wanted = eclipse_](const std::optional<eclipse::DurationPoint>& point) {
            if (!point)
                log_.pushLog(
                    "This eclipse has no central path, so there is no greatest-duration point to jump to.");
            else if (wanted == eclipse_) // else another eclipse was chosen meanwhile
                moveToGreatestDuration(*point, reason);
        });
    ports_.queues.background([arrive, eclipse = eclipse_, &loop = ports_.loop] {
        loop.post([arrive, point = eclipse::greatestDurationPoint(*eclipse)] { arrive(point); });
    });
}

void SiteDesk::moveToGreatestDuration(const eclipse::DurationPoint& point,
                                      const std::optional<std::string>& reason) {
    Site site = site_.get();
    site.lat = point.lat;
    site.lon = point.lon;
    site.elev = 0;
    site.label = "Greatest duration";
    locationConfirmed_.set(false);
    setSite(std::move(site));
    const int seconds = static_cast<int>(point.seconds);
    log_.pushLog(absl::StrFormat(
        "Site set to greatest duration%s: %.4f, %.4f — %dm%02ds. Set your real location before arming.",
        reason ? " (" + *reason + ")" : std::string(), point.lat, point.lon, seconds / 60, seconds % 60));
    movedAway_.emit();
    recompute();
}

void SiteDesk::recompute() {
    circ_ = eclipse_->localCircumstances(observer());
    contactTHours_ = script::contactTHours(*circ_);
    const auto hoursOf = [this](const char* key, double otherwise) {
        const auto found = contactTHours_.find(key);
        return found == contactTHours_.end() ? otherwise : found->second;
    };
    const double start = hoursOf("C1", -2);
    const double end = hoursOf("C4", 2);
    tC1_ = start * 3600;
    tC4_ = end * 3600;
    curve_ = eclipse::sampleCurve(*eclipse_, observer(), start, end);
    recomputed_.emit();
}

void SiteDesk::rememberSite() {
    const auto record = toJson(SiteRecord{.site = site(), .confirmed = locationConfirmed_.get()});
    ports_.settings.setText(settingsKeys::sitePrefix + eclipseId(),
                            record.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
    ports_.settings.setFlag(settingsKeys::locationConfirmedPrefix + eclipseId(), locationConfirmed_.get());
}

bool SiteDesk::restoreSite() {
    const auto text = ports_.settings.text(settingsKeys::sitePrefix + eclipseId());
    if (!text)
        return false;
    const auto remembered = siteRecordFrom(nlohmann::json::parse(*text, nullptr, false));
    if (!remembered) {
        log_.pushLog(
            "⚠️ The site remembered for this eclipse could not be read. Set your site in Location.");
        return false;
    }
    site_.set(remembered->site);
    locationConfirmed_.set(remembered->confirmed);
    if (!base::findTimeZone(site_->tzId))
        log_.pushLog("⚠️ The site's time zone \"" + site_->tzId +
                     "\" is not known, so times of day are in UTC. Set it in Location.");
    return true;
}

} // namespace zenka::rig
