#include "ui/site/SiteDraft.h"

#include "base/CivilTime.h"
#include "base/Text.h"
#include "eclipse/Coord.h"
#include "geo/GeoPoint.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace zenka::ui {

namespace {

/// Below the lowest land; above where eclipse flights go.
constexpr double lowestMetres = -500;
constexpr double highestMetres = 20000;

/// To a metre on the ground.
std::string degreesText(double degrees) {
    return absl::StrFormat("%.9g", std::round(degrees * 1e5) / 1e5 + 0.0); // + 0.0 makes no "-0"
}

/// The signs of pasted text as the readers know them.
std::string plainSigns(const std::string& text) {
    std::string plain = base::replacedAll(text, base::minusSign, "-");
    for (const char* mark : {"′", "’", "″", "”"})
        plain = base::replacedAll(plain, mark, " ");
    return std::string(base::trimmed(plain));
}

bool beginsOrEndsWith(const std::string& text, std::string_view letters) {
    const auto among = [&](char c) { return letters.find(c) != std::string_view::npos; };
    return !text.empty() && (among(text.front()) || among(text.back()));
}

} // namespace

void SiteDraft::take(rig::Site site) {
    site_ = std::move(site);
    fields_ = {};
    labelTyped_ = zoneTyped_ = false;
    setElevation(site_.elev);
    at(Field::label).text = site_.label;
    at(Field::zone).text = site_.tzId;
    showPoint();
}

void SiteDraft::setElevation(double metres) {
    site_.elev = metres;
    at(Field::elev) = {.text = absl::StrFormat("%.9g", metres), .fault = {}};
}

void SiteDraft::nudge(Field field, int steps) {
    constexpr double degreeStep = 0.001;
    if (field == Field::lat)
        moveTo(std::clamp(site_.lat + steps * degreeStep, -90.0, 90.0), site_.lon);
    else if (field == Field::lon)
        moveTo(site_.lat, site_.lon + steps * degreeStep);
    else if (field == Field::elev)
        setElevation(std::clamp(site_.elev + steps, lowestMetres, highestMetres));
}

void SiteDraft::moveTo(double lat, double lon) {
    site_.lat = lat;
    site_.lon = geo::wrappedLongitude(lon);
    showPoint();
    lookUp();
}

void SiteDraft::showPoint() {
    at(Field::lat) = {.text = degreesText(site_.lat), .fault = {}};
    at(Field::lon) = {.text = degreesText(site_.lon), .fault = {}};
}

void SiteDraft::lookUp() {
    if (!labelTyped_)
        lookUpLabel();
    if (!zoneTyped_)
        lookUpZone();
}

void SiteDraft::lookUpLabel() {
    site_.label =
        places_.placeAt(site_.lat, site_.lon).value_or(absl::StrFormat("%.4f, %.4f", site_.lat, site_.lon));
    at(Field::label).text = site_.label;
}

void SiteDraft::lookUpZone() {
    site_.tzId = places_.zoneAt(site_.lat, site_.lon).value_or(std::string());
    at(Field::zone) = {.text = site_.tzId, .fault = {}};
}

void SiteDraft::type(Field field, const std::string& text) {
    switch (field) {
    case Field::lat:
    case Field::lon:
        if (typePair(text))
            return;
        [[fallthrough]];
    case Field::elev: typeNumber(field, text, false); return;
    case Field::label:
        at(field).text = text;
        site_.label = base::trimmed(text);
        labelTyped_ = !site_.label.empty();
        return;
    case Field::zone:
        at(field).text = text;
        zoneTyped_ = !base::trimmed(text).empty();
        readZone(false);
        return;
    }
}

/// Both at once, as maps give them to be copied: "41.65, -0.88".
bool SiteDraft::typePair(const std::string& text) {
    for (const char* comma : {", ", "; ", ";"}) {
        const std::size_t cut = text.find(comma);
        if (cut == std::string::npos)
            continue;
        const Reading lat = readAngle(text.substr(0, cut), true);
        const Reading lon = readAngle(text.substr(cut + 1), false);
        if (lat.value && lon.value) {
            moveTo(*lat.value, *lon.value);
            return true;
        }
    }
    return false;
}

void SiteDraft::typeNumber(Field field, const std::string& text, bool tellFault) {
    Typed& typed = at(field);
    typed.text = text;
    const Reading reading = read(field);
    if (tellFault || reading.value || !typed.fault.empty())
        typed.fault = reading.fault;
    if (!reading.value)
        return;
    double& value = field == Field::lat ? site_.lat : field == Field::lon ? site_.lon : site_.elev;
    value = *reading.value;
    if (field != Field::elev)
        lookUp();
}

void SiteDraft::readZone(bool tellFault) {
    Typed& typed = at(Field::zone);
    const std::string id(base::trimmed(typed.text));
    if (id.empty() || base::findTimeZone(id)) {
        site_.tzId = id;
        typed.fault.clear();
    } else if (tellFault || !typed.fault.empty()) {
        typed.fault = "There is no time zone of this name. Type area and city, as Europe/Madrid, or UTC.";
    }
}

SiteDraft::Reading SiteDraft::read(Field field) const {
    const std::string& text = at(field).text;
    return field == Field::elev ? readElevation(text) : readAngle(text, field == Field::lat);
}

SiteDraft::Reading SiteDraft::readAngle(const std::string& text, bool latitude) {
    const std::string plain = plainSigns(text);
    const std::string upper = base::uppered(plain);
    if (plain.find(", ") != std::string::npos || plain.find(';') != std::string::npos)
        return {.value = {}, .fault = "This looks like two numbers. Type one here, or both as 41.65, -0.88."};
    if (beginsOrEndsWith(upper, latitude ? "EW" : "NS"))
        return {.value = {},
                .fault = latitude
                             ? "East and west belong to a longitude. Type a latitude with N, S or a sign."
                             : "North and south belong to a latitude. Type a longitude with E, W or a sign."};
    const auto value = eclipse::Coord::parse(plain);
    if (!value || !std::isfinite(*value))
        return {.value = {},
                .fault = latitude ? "This is no latitude. Type it as 41.65, 41 39 0 N or 41°39'0\"N."
                                  : "This is no longitude. Type it as -0.88, 0 52 48 W or 0°52'48\"W."};
    const double limit = latitude ? 90 : 180;
    if (std::abs(*value) > limit)
        return {.value = {},
                .fault = latitude ? "A latitude lies between -90 and 90 degrees. Type one in that range."
                                  : "A longitude lies between -180 and 180 degrees. Type one in that range."};
    return {.value = value, .fault = {}};
}

SiteDraft::Reading SiteDraft::readElevation(const std::string& text) {
    std::string plain = base::replacedAll(plainSigns(text), ",", ".");
    if (plain.ends_with('m'))
        plain.pop_back();
    const auto value = base::readNumber(base::trimmed(plain));
    if (!value)
        return {.value = {}, .fault = "This is no elevation. Type metres above the sea, as 200."};
    if (*value < lowestMetres || *value > highestMetres)
        return {.value = {}, .fault = "An elevation lies between -500 and 20000 m. Type one in that range."};
    return {.value = value, .fault = {}};
}

bool SiteDraft::check() {
    for (const Field field : {Field::lat, Field::lon, Field::elev})
        at(field).fault = read(field).fault;
    readZone(true);
    if (site_.label.empty()) // what was emptied is looked up
        lookUpLabel();
    if (site_.tzId.empty() && at(Field::zone).fault.empty()) // else what was typed stays to be mended
        lookUpZone();
    for (const Typed& typed : fields_) {
        if (!typed.fault.empty())
            return false;
    }
    return true;
}

std::string SiteDraft::zoneNote() const {
    const auto ofPlace = places_.zoneAt(site_.lat, site_.lon);
    if (!site_.tzId.empty() && ofPlace && *ofPlace != site_.tzId)
        return "The zone of this place is " + *ofPlace + ".";
    if (!site_.tzId.empty())
        return ofPlace ? "As looked up for this place."
                       : "No zone is known here, so this one is not checked.";
    return ofPlace ? "Left empty it becomes " + *ofPlace + "."
                   : "No zone is known at sea. Type one; left empty it is estimated from the longitude, "
                     "without daylight saving.";
}

} // namespace zenka::ui
