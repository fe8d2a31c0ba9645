#pragma once

#include "ports/PlaceLookup.h"

namespace zenka::platform {

/// The data built into the program.
class BundledPlaceLookup final : public ports::PlaceLookup {
public:
    std::optional<std::string> zoneAt(double lat, double lon) const override;
    std::optional<std::string> placeAt(double lat, double lon) const override;
    std::vector<ports::FoundPlace> search(std::string_view text, std::size_t limit) const override;
};

} // namespace zenka::platform
