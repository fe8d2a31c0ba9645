#pragma once

#include <array>
#include <optional>
#include <string>

namespace zenka::ui {

/// What of the framing simulator belongs to no body, as it was left.
struct FramingChoice {
    std::optional<std::string> label; ///< of the body that was looked at, empty for none; nothing: never yet
    std::string serial;
    std::string moment = "MAX"; ///< key of the contact that Sun and Moon are shown at
    bool aimsAtMax = false;     ///< the camera is aimed at the maximum, else at each burst's begin
    int radii = 2;              ///< row of coronaRadii
    int trail = 1;              ///< row of trailLengths

    /// Solar radii that the frame is to hold.
    static constexpr std::array<double, 6> coronaRadii{2, 3, 4, 5, 6, 8};
    /// Pixels that a shutter may trail.
    static constexpr std::array<double, 5> trailLengths{0.5, 1, 2, 3, 5};

    double wantedRadii() const { return coronaRadii[static_cast<std::size_t>(radii)]; }
    double trailPx() const { return trailLengths[static_cast<std::size_t>(trail)]; }
};

/// As it is kept: a JSON object. What cannot be read of it is as at first.
FramingChoice framingChoiceFrom(const std::string& text);
std::string framingChoiceText(const FramingChoice& choice);

} // namespace zenka::ui
