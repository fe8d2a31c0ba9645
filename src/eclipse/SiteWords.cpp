#include "eclipse/SiteWords.h"

#include "base/TimeWords.h"

#include <absl/strings/str_format.h>

#include <cmath>

namespace zenka::eclipse {

std::string positionText(double lat, double lon, int decimals) {
    return absl::StrFormat("%.*f° %c  %.*f° %c", decimals, std::abs(lat), lat < 0 ? 'S' : 'N', decimals,
                           std::abs(lon), lon < 0 ? 'W' : 'E');
}

std::string durationText(double seconds) {
    const int minutes = static_cast<int>(seconds / 60);
    return absl::StrFormat("%d m %04.1f s", minutes, std::floor((seconds - 60.0 * minutes) * 10) / 10);
}

std::string eclipseText(const LocalCircumstances& circ, const absl::TimeZone& zone) {
    if (circ.maxMagnitude <= 0)
        return "this eclipse is not seen here";
    const ContactEvent* moment = circ.event("C2");
    const bool central = moment && circ.totalitySeconds > 0;
    if (!central)
        moment = circ.event("MAX");
    std::string text =
        central ? (circ.maxMagnitude >= 1 ? "totality " : "ring ") + durationText(circ.totalitySeconds)
                : absl::StrFormat("partial, magnitude %.3f", circ.maxMagnitude);
    if (!moment)
        return text;
    text += (central ? " · C2 " : " · maximum ") + base::localHMS(moment->utc, zone.name()) + " " +
            base::tzAbbr(zone.name(), moment->utc);
    text += moment->sunAltDeg < 0 ? " · Sun below the horizon"
                                  : absl::StrFormat(" · Sun %.0f° up", moment->sunAltDeg);
    return text;
}

} // namespace zenka::eclipse
