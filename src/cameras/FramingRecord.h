#pragma once

#include "cameras/SensorTable.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace zenka::cameras {

/// How a body looks at the Sun.
struct FramingRecord {
    std::optional<double> focalMm; ///< of the lens alone, 4 to 5000
    double converter = 1;          ///< 1, 1.4 or 2
    std::string sensor;            ///< a name in SensorTable; empty: that of the body's model
    std::optional<Sensor> own;     ///< typed by the operator, in the place of the above
    double rotationDeg = 0;        ///< of the camera, clockwise as seen from behind, above −180 to 180
    bool tracking = false;         ///< on a mount that follows the Sun

    friend bool operator==(const FramingRecord&, const FramingRecord&) = default;
};

bool plausibleFocal(double focalMm);

/// The focal length that the words for a lens tell, the longest of a zoom: 400 for "100-400 mm f/5.6".
std::optional<double> focalOf(std::string_view lens);

/// An object with a key for each field that is not as it was at first.
nlohmann::ordered_json toJson(const FramingRecord& framing);
std::string framingText(const FramingRecord& framing);

/// Takes each field that makes sense; the others stay as they were at first, and `whole` tells of them. Keys
/// that are not known are passed over.
FramingRecord framingFrom(const nlohmann::json& json, bool& whole);
/// The same from a text; nothing for one that is no object.
std::optional<FramingRecord> framingFrom(std::string_view text);

} // namespace zenka::cameras
