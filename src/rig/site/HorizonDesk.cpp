#include "rig/site/HorizonDesk.h"

#include "geo/GeoPoint.h"

#include <algorithm>

namespace zenka::rig {

namespace {

constexpr double samePlaceKm = 0.05;
constexpr std::size_t mostKept = 40;

bool isOf(const KnownHorizon& horizon, double lat, double lon) {
    return geo::distanceKm({.lat = lat, .lon = lon}, {.lat = horizon.lat, .lon = horizon.lon}) <= samePlaceKm;
}

} // namespace

std::vector<ContactClearance> contactClearances(const eclipse::LocalCircumstances& circ,
                                                const std::vector<double>& samples) {
    std::vector<ContactClearance> clearances;
    if (circ.maxMagnitude <= 0)
        return clearances;
    for (const eclipse::ContactEvent& event : circ.events)
        clearances.push_back({.key = event.key,
                              .sunAltDeg = event.sunAltDeg,
                              .sunAzDeg = event.sunAzDeg,
                              .horizonDeg = eclipse::TerrainHorizon::elevationAt(samples, event.sunAzDeg)});
    return clearances;
}

HorizonDesk::HorizonDesk(const ports::Ports& ports, RigLog& log, SiteDesk& site)
    : site_(site), store_(ports, [&log](const std::string& sentence) { log.pushLog("⚠️ " + sentence); }),
      survey_({.http = ports.http,
               .loop = ports.loop,
               .queues = ports.queues,
               .settings = ports.settings,
               .pixels = ports.pixels}) {
    site.publishedSite().changed().connect([this](const Site&) { followSite(); });
}

void HorizonDesk::restore() {
    known_ = store_.load();
    followSite();
}

void HorizonDesk::followSite() {
    const KnownHorizon* horizon = at(site_.site().lat, site_.site().lon);
    here_.set(horizon ? std::optional(*horizon) : std::nullopt);
}

const KnownHorizon* HorizonDesk::at(double lat, double lon) const {
    const auto found =
        std::ranges::find_if(known_, [&](const KnownHorizon& horizon) { return isOf(horizon, lat, lon); });
    return found == known_.end() ? nullptr : &*found;
}

void HorizonDesk::find(const TerrainSurvey::Place& place, bool buildings) {
    remark_.set({});
    survey_.compute(
        place, buildings, [this](const TerrainSurvey::Progress& progress) { progress_.set(progress); },
        [this, place](const TerrainSurvey::Outcome& outcome) { take(place, outcome); });
    progress_.set(TerrainSurvey::Progress{.words = "Looking for the tiles…"});
}

void HorizonDesk::cancel() {
    survey_.cancel();
    progress_.set(std::nullopt);
}

void HorizonDesk::put(const KnownHorizon& horizon) {
    std::erase_if(known_, [&](const KnownHorizon& each) { return isOf(each, horizon.lat, horizon.lon); });
    if (known_.size() >= mostKept)
        known_.erase(known_.begin());
    known_.push_back(horizon);
}

void HorizonDesk::merge(const std::vector<KnownHorizon>& horizons) {
    if (horizons.empty())
        return;
    for (const KnownHorizon& horizon : horizons)
        put(horizon);
    store_.save(known_);
    followSite();
}

void HorizonDesk::take(const TerrainSurvey::Place& place, const TerrainSurvey::Outcome& outcome) {
    if (outcome.usable()) {
        put({.lat = place.lat, .lon = place.lon, .result = outcome.result});
        store_.save(known_);
        followSite();
    }
    remark_.set(outcome.remark);
    progress_.set(std::nullopt);
}

} // namespace zenka::rig
