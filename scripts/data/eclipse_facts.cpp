// Computes the numbers in the notes of data/eclipses.csv, see data/README.md.
//     eclipse_facts                      greatest eclipse and the longest central phase of every eclipse
//     eclipse_facts eclipse_lands.csv    which places of that list see no central phase by daylight

#include "base/Text.h"
#include "eclipse/Catalog.h"
#include "eclipse/EclipsePath.h"
#include "eclipse/ShadowAxis.h"

#include <absl/strings/str_format.h>

#include <cstdio>
#include <fstream>
#include <string>

using namespace zenka;
using namespace zenka::eclipse;

namespace {

int printFacts() {
    std::puts("id,greatest_lat,greatest_lon,greatest_seconds,longest_lat,longest_lon,longest_seconds");
    for (const EclipseRecord& rec : Catalog::all()) {
        const Eclipse eclipse(rec);
        const PathPoint greatest = axisOnGround(rec, greatestEclipseHours(rec)).value_or(PathPoint{});
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
