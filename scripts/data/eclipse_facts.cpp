// Computes the numbers in the notes of data/eclipses.csv, see data/README.md.
//     eclipse_facts                      greatest eclipse and the longest central phase of every eclipse
//     eclipse_facts eclipse_lands.csv    which places of that list see no central phase by daylight

#include "base/Text.h"
#include "eclipse/Catalog.h"
#include "eclipse/EclipsePath.h"
#include "eclipse/Search.h"
#include "eclipse/Shadow.h"

#include <absl/strings/str_format.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>

using namespace zenka;
using namespace zenka::eclipse;

namespace {

/// Where the axis meets the ellipsoid at the instant at which it passes nearest to the Earth's centre.
PathPoint greatestEclipse(const EclipseRecord& rec) {
    const double t = detail::goldenMinimum(
        [&](double at) { return std::hypot(detail::evaluate(rec.x, at), detail::evaluate(rec.y, at)); }, -2,
        2);
    const detail::ShadowInstant shadow(rec, t);
    // a point of the axis towards the equator and the pole; with the latter divided by b/a the ellipsoid is
    // a sphere, and z is where the axis comes out of it
    const double b = detail::polarRatio;
    const double fromY[2] = {-shadow.y * shadow.sinD, shadow.y * shadow.cosD / b};
    const double fromZ[2] = {shadow.cosD, shadow.sinD / b};
    const double aa = fromZ[0] * fromZ[0] + fromZ[1] * fromZ[1];
    const double bb = fromY[0] * fromZ[0] + fromY[1] * fromZ[1];
    const double cc = fromY[0] * fromY[0] + fromY[1] * fromY[1] + shadow.x * shadow.x - 1;
    const double z = (-bb + std::sqrt(bb * bb - aa * cc)) / aa;
    const double towardsNoon = fromY[0] + z * fromZ[0];
    const double pole = fromY[1] + z * fromZ[1];
    const double hourAngle = std::atan2(shadow.x, towardsNoon) / detail::degree;
    const double lon = hourAngle - shadow.mu + 0.00417807 * rec.deltaT;
    const double reduced = std::asin(pole);
    return {.lon = std::remainder(lon, 360), .lat = std::atan(std::tan(reduced) / b) / detail::degree};
}

int printFacts() {
    std::puts("id,greatest_lat,greatest_lon,greatest_seconds,longest_lat,longest_lon,longest_seconds");
    for (const EclipseRecord& rec : Catalog::all()) {
        const Eclipse eclipse(rec);
        const PathPoint greatest = greatestEclipse(rec);
        const double there =
            eclipse.localCircumstances({.lat = greatest.lat, .lon = greatest.lon}).totalitySeconds;
        const DurationPoint longest = greatestDurationPoint(eclipse).value_or(DurationPoint{});
        std::puts(absl::StrFormat("%s,%.2f,%.2f,%.1f,%.2f,%.2f,%.1f", rec.id, greatest.lat, greatest.lon,
                                  there, longest.lat, longest.lon, longest.seconds)
                      .c_str());
    }
    return 0;
}

int checkLands(const char* path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line); // the headings
    int wrong = 0;
    while (std::getline(file, line)) {
        const auto fields = base::split(line, ',');
        const auto lat = fields.size() == 4 ? base::readNumber(fields[2]) : std::nullopt;
        const auto lon = fields.size() == 4 ? base::readNumber(fields[3]) : std::nullopt;
        const bool right = lat && lon && [&] {
            const LocalCircumstances seen =
                Catalog::eclipse(fields[0]).localCircumstances({.lat = *lat, .lon = *lon});
            return seen.eclipseId == fields[0] && seen.totalitySeconds > 0 &&
                   seen.event("MAX")->sunAltDeg >= 0;
        }();
        if (!right) {
            std::puts(("not on the path: " + line).c_str());
            ++wrong;
        }
    }
    return wrong == 0 ? 0 : 1;
}

} // namespace

int main(int count, char** arguments) {
    return count > 1 ? checkLands(arguments[1]) : printFacts();
}
