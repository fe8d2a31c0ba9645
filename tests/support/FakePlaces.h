#pragma once

#include "ports/PlaceLookup.h"

namespace zenka::test {

/// A world with two places: east of 10° W lies Spain, west of it the sea.
class FakePlaces final : public ports::PlaceLookup {
public:
    std::optional<std::string> zoneAt(double, double lon) const override {
        return lon > -10 ? std::optional<std::string>("Europe/Madrid") : std::nullopt;
    }
    std::optional<std::string> placeAt(double lat, double lon) const override {
        return lon > -10 && lat > 40 ? std::optional<std::string>("Zaragoza, ES") : std::nullopt;
    }
    std::vector<ports::FoundPlace> search(std::string_view text, std::size_t limit) const override {
        if (text.empty() || limit == 0)
            return {};
        return {{.label = "Zaragoza, ES", .lat = 41.65, .lon = -0.88}};
    }
};

} // namespace zenka::test
