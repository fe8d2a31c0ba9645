#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace zenka::cameras {

/// The part of a sensor that makes the picture.
struct Sensor {
    double widthMm = 36; ///< the longer side
    double heightMm = 24;
    int widthPx = 0; ///< 0: not known
    int heightPx = 0;

    friend bool operator==(const Sensor&, const Sensor&) = default;
};

/// Whether the sides are 1 to 200 mm and 100 to 100000 pixels, or the pixels not known at all.
bool plausible(const Sensor& sensor);

namespace SensorTable {

struct Row {
    std::string_view name; ///< of a model as in CameraCatalog, or of a format
    Sensor sensor;
};

/// Every model of the catalogue, in its order, by the figures that its maker publishes.
std::span<const Row> models();
/// The usual formats, whose pixels nobody knows: "Full frame" and so on.
std::span<const Row> formats();

/// A row by its exact name; null for none.
const Row* named(std::string_view name);

/// The row of the model that a body says it is, in whatever of its names: "Canon EOS R5m2", "NIKON Z 6_2",
/// "ILCE-7RM5"; null for a model that is not in the table.
const Row* forModel(std::string_view model);

} // namespace SensorTable

} // namespace zenka::cameras
