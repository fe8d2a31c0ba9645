#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::cameras {

/// The settings that a body offers, in its own words and order.
struct ExposureChoices {
    std::vector<std::string> shutter;
    std::vector<std::string> iso;
    std::vector<std::string> aperture;
    std::string apertureProp = "f-number"; ///< the key that sets the aperture on this body
    std::vector<std::string> expComp;
    std::vector<std::string> shutterFraction; ///< a second shutter list in true fractions

    /// Nothing is known of shutter, ISO and aperture.
    bool empty() const;

    friend bool operator==(const ExposureChoices&, const ExposureChoices&) = default;
};

/// As a JSON object with exactly these six keys.
std::string toJson(const ExposureChoices& choices);

/// Nothing when the text is no such object or a key is missing.
std::optional<ExposureChoices> exposureChoicesFromJson(std::string_view json);

} // namespace zenka::cameras
