#include "geo/Bundled.h"

namespace zenka::embedded {
std::string_view timeZones();
std::string_view places();
std::string_view outlines();
} // namespace zenka::embedded

namespace zenka::geo {

const TimeZoneAreas& bundledZones() {
    static const TimeZoneAreas areas(embedded::timeZones());
    return areas;
}

const Gazetteer& bundledPlaces() {
    static const Gazetteer gazetteer(embedded::places());
    return gazetteer;
}

const WorldOutlines& bundledOutlines() {
    static const WorldOutlines outlines(embedded::outlines());
    return outlines;
}

} // namespace zenka::geo
