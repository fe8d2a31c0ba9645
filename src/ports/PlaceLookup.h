#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::ports {

/// A place that a search found; degrees, north and east positive.
struct FoundPlace {
    std::string label; ///< "Zaragoza, ES"
    double lat = 0;
    double lon = 0;

    bool operator==(const FoundPlace&) const = default;
};

/// Time zones and names of places, without a network. Each answer takes a few milliseconds at most. Any
/// thread.
class PlaceLookup {
public:
    virtual ~PlaceLookup() = default;

    /// The IANA identifier of the time zone at a point; nothing at sea.
    virtual std::optional<std::string> zoneAt(double lat, double lon) const = 0;

    /// The nearest place within a drive of a point, as a label; nothing where none is near.
    virtual std::optional<std::string> placeAt(double lat, double lon) const = 0;

    /// Places by the beginning or any part of their name, the likeliest first, at most `limit`.
    virtual std::vector<FoundPlace> search(std::string_view text, std::size_t limit) const = 0;
};

} // namespace zenka::ports
