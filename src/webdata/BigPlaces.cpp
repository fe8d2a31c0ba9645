#include "webdata/BigPlaces.h"

#include "geo/Bundled.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <set>
#include <tuple>
#include <utility>

namespace zenka::webdata {

namespace {

constexpr std::uint32_t leastPeople = 100000;
constexpr double cellDegrees = 10;
constexpr std::size_t mostOnPath = 40;

/// Where the Sun's upper edge touches the horizon, with the refraction of the almanacs.
constexpr double risingDeg = -0.833;

eclipse::Observer observerAt(const geo::Place& place) {
    return {.lat = place.at.lat, .lon = place.at.lon, .elev = 0};
}

/// Whether the path may come to a place: there is a point of the line within reach.
bool isNear(const geo::GeoPoint& place, std::span<const LinePoint> line) {
    constexpr double reachDeg = 12; // wider than half a path and half the way to the next point
    const double cosLat = std::cos(place.lat * 0.0174533);
    return std::ranges::any_of(line, [&](const LinePoint& point) {
        return std::abs(point.at.lat - place.lat) < reachDeg &&
               std::abs(std::remainder(point.at.lon - place.lon, 360)) * cosLat < 2 * reachDeg;
    });
}

} // namespace

BigPlaces::BigPlaces(const geo::Gazetteer& gazetteer) : places_(gazetteer.biggest(leastPeople)) {
    std::set<std::pair<int, int>> taken;
    inGrid_.reserve(places_.size());
    for (const geo::Place& place : places_) {
        const std::pair cell(static_cast<int>(std::floor(place.at.lat / cellDegrees)),
                             static_cast<int>(std::floor(place.at.lon / cellDegrees)));
        inGrid_.push_back(taken.insert(cell).second);
    }
}

std::vector<geo::Place> BigPlaces::grid() const {
    std::vector<geo::Place> found;
    for (std::size_t i = 0; i < places_.size(); ++i) {
        if (inGrid_[i])
            found.push_back(places_[i]);
    }
    return found;
}

std::vector<geo::Place> BigPlaces::onPath(const eclipse::Eclipse& eclipse,
                                          std::span<const LinePoint> line) const {
    std::vector<geo::Place> found;
    for (std::size_t i = 0; i < places_.size() && found.size() < mostOnPath; ++i) {
        const geo::Place& place = places_[i];
        if (inGrid_[i] || !isNear(place.at, line))
            continue;
        const eclipse::LocalCircumstances circ = eclipse.localCircumstances(observerAt(place));
        const eclipse::ContactEvent* greatest = circ.event("MAX");
        if (circ.totalitySeconds > 0 && greatest && greatest->sunAltDeg > risingDeg)
            found.push_back(place);
    }
    return found;
}

bool isSeen(const eclipse::Eclipse& eclipse, const eclipse::Observer& observer,
            const eclipse::LocalCircumstances& circ) {
    const eclipse::ContactEvent* first = circ.event("C1");
    const eclipse::ContactEvent* last = circ.event("C4");
    if (!first || !last)
        return false;
    constexpr int steps = 24; // some minutes each; the Sun is not up for less between two nights
    for (int i = 0; i <= steps; ++i) {
        const double tHours = first->tHours + (last->tHours - first->tHours) * i / steps;
        if (eclipse.geometry(tHours, observer).altDeg > risingDeg)
            return true;
    }
    return false;
}

std::vector<PlaceCircumstances> placesOf(const BigPlaces& places, const eclipse::Eclipse& eclipse,
                                         std::span<const LinePoint> line) {
    std::vector<geo::Place> candidates = places.grid();
    std::ranges::move(places.onPath(eclipse, line), std::back_inserter(candidates));
    std::vector<PlaceCircumstances> seen;
    for (geo::Place& place : candidates) {
        const eclipse::Observer observer = observerAt(place);
        eclipse::LocalCircumstances circ = eclipse.localCircumstances(observer);
        if (!isSeen(eclipse, observer, circ))
            continue;
        const eclipse::ContactEvent* greatest = circ.event("MAX");
        const eclipse::Geom geom = eclipse.geometry(greatest ? greatest->tHours : 0, observer);
        std::string zone = geo::bundledZones().zoneAt(place.at.lat, place.at.lon).value_or("UTC");
        seen.push_back({.place = std::move(place),
                        .timeZone = std::move(zone),
                        .circ = std::move(circ),
                        .obscuration = eclipse::Eclipse::obscuration(geom.m, geom.L1, -geom.L2)});
    }
    std::ranges::sort(seen, [](const PlaceCircumstances& a, const PlaceCircumstances& b) {
        return std::tie(b.circ.totalitySeconds, b.circ.maxMagnitude, a.place.name) <
               std::tie(a.circ.totalitySeconds, a.circ.maxMagnitude, b.place.name);
    });
    return seen;
}

} // namespace zenka::webdata
