#pragma once

#include "eclipse/Besselian.h"
#include "geo/Gazetteer.h"
#include "webdata/CentralLine.h"

#include <span>
#include <string>
#include <vector>

namespace zenka::webdata {

/// The places that a data set tells the contacts for.
class BigPlaces {
public:
    explicit BigPlaces(const geo::Gazetteer& gazetteer);

    /// A grid over the inhabited world: the biggest place of each cell of 10 by 10 degrees that has one of
    /// 100,000 people.
    std::vector<geo::Place> grid() const;

    /// The biggest places on the path of an eclipse that the grid leaves out, 40 at most.
    std::vector<geo::Place> onPath(const eclipse::Eclipse& eclipse, std::span<const LinePoint> line) const;

private:
    std::vector<geo::Place> places_; ///< the biggest first
    std::vector<bool> inGrid_;
};

/// What is seen of an eclipse at a place, at height 0.
struct PlaceCircumstances {
    geo::Place place;
    std::string timeZone; ///< IANA identifier, "UTC" where no zone is known
    eclipse::LocalCircumstances circ;
    /// The part of the Sun's disc that is covered at most, below 1 where a ring is seen; circ.maxObscuration
    /// is 1 there.
    double obscuration = 0;
};

/// Whether the Sun is up at any time from the first contact to the last.
bool isSeen(const eclipse::Eclipse& eclipse, const eclipse::Observer& observer,
            const eclipse::LocalCircumstances& circ);

/// The places of the grid and of the path from where an eclipse is seen, at least as a partial one: those
/// with the longest central phase first, then by magnitude.
std::vector<PlaceCircumstances> placesOf(const BigPlaces& places, const eclipse::Eclipse& eclipse,
                                         std::span<const LinePoint> line);

} // namespace zenka::webdata
