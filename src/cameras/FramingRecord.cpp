#include "cameras/FramingRecord.h"

#include "base/Text.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace zenka::cameras {

namespace {

using FramingJson = nlohmann::json;

/// The number under a key if it is one and passes; a key that is there and does not pass is told.
template <typename Passes>
std::optional<double> numberOf(const FramingJson& json, const char* key, bool& whole, Passes passes) {
    const auto found = json.find(key);
    if (found == json.end())
        return std::nullopt;
    if (found->is_number() && passes(found->get<double>()))
        return found->get<double>();
    whole = false;
    return std::nullopt;
}

std::optional<Sensor> sensorOf(const FramingJson& json, bool& whole) {
    const auto found = json.find("ownSensor");
    if (found == json.end())
        return std::nullopt;
    bool read = found->is_object();
    const auto number = [&](const char* key) {
        const auto value =
            numberOf(*found, key, read, [](double given) { return given >= 0 && given <= 1e6; });
        return value.value_or(0);
    };
    if (read) {
        const Sensor sensor{.widthMm = number("widthMm"),
                            .heightMm = number("heightMm"),
                            .widthPx = static_cast<int>(number("widthPx")),
                            .heightPx = static_cast<int>(number("heightPx"))};
        if (read && plausible(sensor))
            return sensor;
    }
    whole = false;
    return std::nullopt;
}

} // namespace

bool plausibleFocal(double focalMm) {
    return focalMm >= 4 && focalMm <= 5000;
}

std::optional<double> focalOf(std::string_view lens) {
    const std::string text = base::lowered(lens);
    const auto unit = text.find("mm");
    if (unit == text.npos)
        return std::nullopt;
    const std::string_view before = base::trimmed(std::string_view(text).substr(0, unit));
    const auto begin = before.find_last_not_of("0123456789.");
    const auto focal = base::readNumber(begin == before.npos ? before : before.substr(begin + 1));
    return focal && plausibleFocal(*focal) ? focal : std::nullopt;
}

nlohmann::ordered_json toJson(const FramingRecord& framing) {
    auto json = nlohmann::ordered_json::object();
    if (framing.focalMm)
        json["focalMm"] = *framing.focalMm;
    if (framing.converter != 1)
        json["converter"] = framing.converter;
    if (!framing.sensor.empty())
        json["sensor"] = framing.sensor;
    if (framing.own)
        json["ownSensor"] = {{"widthMm", framing.own->widthMm},
                             {"heightMm", framing.own->heightMm},
                             {"widthPx", framing.own->widthPx},
                             {"heightPx", framing.own->heightPx}};
    if (framing.rotationDeg != 0)
        json["rotationDeg"] = framing.rotationDeg;
    if (framing.tracking)
        json["tracking"] = true;
    return json;
}

std::string framingText(const FramingRecord& framing) {
    return toJson(framing).dump(-1, ' ', false, FramingJson::error_handler_t::replace);
}

FramingRecord framingFrom(const FramingJson& json, bool& whole) {
    FramingRecord framing;
    if (!json.is_object()) {
        whole = false;
        return framing;
    }
    framing.focalMm = numberOf(json, "focalMm", whole, plausibleFocal);
    framing.converter = numberOf(json, "converter", whole, [](double factor) {
                            return factor == 1 || factor == 1.4 || factor == 2;
                        }).value_or(1);
    framing.rotationDeg = numberOf(json, "rotationDeg", whole, [](double turn) {
                              return turn > -180 && turn <= 180;
                          }).value_or(0);
    framing.own = sensorOf(json, whole);
    if (const auto sensor = json.find("sensor"); sensor != json.end()) {
        if (sensor->is_string())
            framing.sensor = sensor->get<std::string>();
        else
            whole = false;
    }
    if (const auto tracking = json.find("tracking"); tracking != json.end()) {
        if (tracking->is_boolean())
            framing.tracking = tracking->get<bool>();
        else
            whole = false;
    }
    return framing;
}

std::optional<FramingRecord> framingFrom(std::string_view text) {
    const FramingJson json = FramingJson::parse(text, nullptr, false);
    bool whole = true;
    return json.is_object() ? std::optional(framingFrom(json, whole)) : std::nullopt;
}

} // namespace zenka::cameras
