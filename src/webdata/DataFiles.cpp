#include "webdata/DataFiles.h"

#include "base/CivilTime.h"
#include "base/Text.h"
#include "eclipse/Catalog.h"
#include "eclipse/ShadowAxis.h"
#include "webdata/LandRings.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace zenka::embedded {
extern const std::string_view webPage;
extern const std::string_view webCatalogueSchema;
extern const std::string_view webEclipseSchema;
} // namespace zenka::embedded

namespace zenka::webdata {

namespace {

using Json = nlohmann::ordered_json;

/// Of the layout of the files. A change that a reader must know of makes another.
constexpr int version = 1;

/// Whom the terms of the data want named where they are passed on, see data/README.md.
constexpr const char* sources[] = {
    "Eclipse predictions by Fred Espenak and Jean Meeus, NASA's GSFC",
    "Places: GeoNames, geonames.org, CC BY 4.0",
    "Time zones: contains information from OpenStreetMap, ODbL, © OpenStreetMap contributors"};

double rounded(double value, int decimals) {
    const double power = std::pow(10, decimals);
    return std::round(value * power) / power + 0.0; // no -0.0
}

double degrees(double value) {
    return rounded(value, 4);
}

/// To a tenth of a second.
std::string isoTime(base::Instant instant) {
    return base::formatTime("%Y-%m-%dT%H:%M:%E1SZ", instant + base::Seconds(0.05), absl::UTCTimeZone());
}

eclipse::Observer observerAt(const eclipse::PathPoint& point) {
    return {.lat = point.lat, .lon = point.lon, .elev = 0};
}

Json greatestOf(const eclipse::Eclipse& eclipse) {
    const double tHours = eclipse::greatestEclipseHours(eclipse.rec);
    const auto point = eclipse::axisOnGround(eclipse.rec, tHours).value_or(eclipse::PathPoint{});
    const auto circ = eclipse.localCircumstances(observerAt(point));
    const eclipse::Geom geom = eclipse.geometry(tHours, observerAt(point));
    return {{"timeUTC", isoTime(eclipse.utc(tHours))},
            {"latDeg", degrees(point.lat)},
            {"lonDeg", degrees(point.lon)},
            {"durationS", rounded(circ.totalitySeconds, 1)},
            {"magnitude", rounded((geom.L1 - geom.L2) / (geom.L1 + geom.L2), 4)}};
}

/// What the catalogue and the eclipse's own file both tell.
Json headOf(const eclipse::Eclipse& eclipse) {
    const eclipse::EclipseRecord& rec = eclipse.rec;
    const std::size_t dot = rec.shortName.find(" · ");
    return {{"id", rec.id},
            {"name", rec.name},
            {"date", rec.dateUTC},
            {"type", rec.type},
            {"region", dot == std::string::npos ? "" : rec.shortName.substr(dot + std::string(" · ").size())},
            {"greatestEclipse", greatestOf(eclipse)},
            {"deltaTS", rec.deltaT}};
}

Json lineJson(const std::vector<LinePoint>& line) {
    Json json{{"timeUTC", Json::array()},     {"latDeg", Json::array()},      {"lonDeg", Json::array()},
              {"northLatDeg", Json::array()}, {"northLonDeg", Json::array()}, {"southLatDeg", Json::array()},
              {"southLonDeg", Json::array()}, {"halfWidthKm", Json::array()}, {"durationS", Json::array()},
              {"sunAltDeg", Json::array()}};
    for (const LinePoint& point : line) {
        json["timeUTC"].push_back(isoTime(point.utc));
        json["latDeg"].push_back(degrees(point.at.lat));
        json["lonDeg"].push_back(degrees(point.at.lon));
        json["northLatDeg"].push_back(degrees(point.north.lat));
        json["northLonDeg"].push_back(degrees(point.north.lon));
        json["southLatDeg"].push_back(degrees(point.south.lat));
        json["southLonDeg"].push_back(degrees(point.south.lon));
        json["halfWidthKm"].push_back(rounded(point.halfWidthKm, 1));
        json["durationS"].push_back(rounded(point.durationSec, 1));
        json["sunAltDeg"].push_back(rounded(point.sunAltDeg, 1));
    }
    return json;
}

Json placeJson(const PlaceCircumstances& seen) {
    Json contacts = Json::object();
    for (const eclipse::ContactEvent& event : seen.circ.events)
        contacts[event.key] = {{"timeUTC", isoTime(event.utc)},
                               {"sunAltDeg", rounded(event.sunAltDeg, 1)},
                               {"sunAzDeg", rounded(event.sunAzDeg, 1)}};
    return {{"name", seen.place.name},
            {"country", seen.place.country},
            {"latDeg", degrees(seen.place.at.lat)},
            {"lonDeg", degrees(seen.place.at.lon)},
            {"timeZone", seen.timeZone},
            {"magnitude", rounded(seen.circ.maxMagnitude, 4)},
            {"obscuration", rounded(seen.obscuration, 4)},
            {"durationS", rounded(seen.circ.totalitySeconds, 1)},
            {"contacts", std::move(contacts)}};
}

/// A file of data and the script by which the page has it: a page that was opened from a disk may not read
/// files, but may load scripts.
std::vector<DataFile> bothForms(const Json& json, const std::string& path, const std::string& name,
                                const char* function) {
    const std::string text = json.dump();
    return {{path, text + "\n"}, {"page/" + name + ".js", function + ("(" + text + ");\n")}};
}

std::string eclipsePath(const eclipse::EclipseRecord& rec) {
    return "eclipses/" + rec.id + ".json";
}

} // namespace

std::vector<DataFile> fixedFiles() {
    return {{"index.html", std::string(embedded::webPage)},
            {"schema/catalogue.schema.json", std::string(embedded::webCatalogueSchema)},
            {"schema/eclipse.schema.json", std::string(embedded::webEclipseSchema)},
            {"page/land.js", "zenkaLand(" + landText() + ");\n"}};
}

std::vector<DataFile> eclipseFiles(const eclipse::Eclipse& eclipse, const BigPlaces& places) {
    const std::vector<LinePoint> line = centralLine(eclipse);
    Json json{{"$schema", "../schema/eclipse.schema.json"}, {"version", version}};
    json.update(headOf(eclipse));
    const auto longest = std::ranges::max_element(line, {}, &LinePoint::durationSec);
    if (longest != line.end())
        json["greatestDuration"] = {{"timeUTC", isoTime(longest->utc)},
                                    {"latDeg", degrees(longest->at.lat)},
                                    {"lonDeg", degrees(longest->at.lon)},
                                    {"durationS", rounded(longest->durationSec, 1)},
                                    {"sunAltDeg", rounded(longest->sunAltDeg, 1)}};
    json["centralLine"] = lineJson(line);
    json["places"] = Json::array();
    for (const PlaceCircumstances& seen : placesOf(places, eclipse, line))
        json["places"].push_back(placeJson(seen));
    return bothForms(json, eclipsePath(eclipse.rec), eclipse.rec.id, "zenkaEclipse");
}

std::vector<DataFile> catalogueFiles() {
    std::vector<eclipse::EclipseRecord> rows = eclipse::Catalog::all();
    std::ranges::sort(rows, {}, &eclipse::EclipseRecord::id);
    Json json{{"$schema", "schema/catalogue.schema.json"},
              {"version", version},
              {"sources", sources},
              {"eclipses", Json::array()}};
    for (const eclipse::EclipseRecord& rec : rows) {
        Json entry = headOf(eclipse::Eclipse(rec));
        entry["file"] = eclipsePath(rec);
        json["eclipses"].push_back(std::move(entry));
    }
    return bothForms(json, "catalogue.json", "catalogue", "zenkaCatalogue");
}

} // namespace zenka::webdata
