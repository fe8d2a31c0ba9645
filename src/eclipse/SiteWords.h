#pragma once

#include "eclipse/Besselian.h"

#include <absl/time/time.h>

#include <string>

namespace zenka::eclipse {

/// "41.6500° N  0.8800° W", with so many decimals.
std::string positionText(double lat, double lon, int decimals);

/// "1 m 23.5 s", cut.
std::string durationText(double seconds);

/// What an eclipse is at a place: "totality 1 m 23.5 s · C2 20:29:03 CEST · Sun 7° up".
std::string eclipseText(const LocalCircumstances& circ, const absl::TimeZone& zone);

} // namespace zenka::eclipse
