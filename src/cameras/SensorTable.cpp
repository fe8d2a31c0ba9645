#include "cameras/SensorTable.h"

#include "base/Text.h"
#include "cameras/usb/SonyNames.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <utility>

namespace zenka::cameras {

bool plausible(const Sensor& sensor) {
    const auto side = [](double mm) { return mm >= 1 && mm <= 200; };
    const auto pixels = [](int count) { return count >= 100 && count <= 100000; };
    return side(sensor.widthMm) && side(sensor.heightMm) &&
           ((sensor.widthPx == 0 && sensor.heightPx == 0) ||
            (pixels(sensor.widthPx) && pixels(sensor.heightPx)));
}

namespace SensorTable {

namespace {

constexpr Sensor fullFrame(int widthPx, int heightPx) {
    return {36.0, 24.0, widthPx, heightPx};
}
constexpr Sensor fourThirds(int widthPx, int heightPx) {
    return {17.3, 13.0, widthPx, heightPx};
}
constexpr Sensor apsC(int widthPx, int heightPx) {
    return {23.5, 15.6, widthPx, heightPx};
}
constexpr Sensor mediumFormat(int widthPx, int heightPx) {
    return {43.8, 32.9, widthPx, heightPx};
}

// Sides in mm and the pixels of the largest image, as the makers publish them; where a maker gives a side to
// no tenth of a millimetre, that of the format.
constexpr auto modelRows = std::to_array<Row>({
    {"DC-G9M2", fourThirds(5776, 4336)},
    {"DC-GH7", fourThirds(5776, 4336)},
    {"DC-GH6", fourThirds(5776, 4336)},
    {"DC-GH5M2", fourThirds(5184, 3888)},
    {"DC-GH5", fourThirds(5184, 3888)},
    {"DC-G9", fourThirds(5184, 3888)},
    {"DC-S1R", fullFrame(8368, 5584)},
    {"DC-S1H", {35.6, 23.8, 6000, 4000}},
    {"DC-S1", {35.6, 23.8, 6000, 4000}},
    {"DC-S5M2", {35.6, 23.8, 6000, 4000}},
    {"DC-S5", {35.6, 23.8, 6000, 4000}},
    {"DC-S9", {35.6, 23.8, 6000, 4000}},
    {"a1", {35.9, 24.0, 8640, 5760}},
    {"a9 III", {35.6, 23.8, 6000, 4000}},
    {"a7R V", {35.7, 23.8, 9504, 6336}},
    {"a7R IV", {35.7, 23.8, 9504, 6336}},
    {"a7 IV", {35.9, 23.9, 7008, 4672}},
    {"a7 III", {35.6, 23.8, 6000, 4000}},
    {"a7C II", {35.9, 23.9, 7008, 4672}},
    {"a7S III", {35.6, 23.8, 4240, 2832}},
    {"a6700", {23.3, 15.5, 6192, 4128}},
    {"a6400", {23.5, 15.6, 6000, 4000}},
    {"Z9", {35.9, 23.9, 8256, 5504}},
    {"Z8", {35.9, 23.9, 8256, 5504}},
    {"Z6 III", {35.9, 23.9, 6048, 4032}},
    {"Z7 II", {35.9, 23.9, 8256, 5504}},
    {"Z6 II", {35.9, 23.9, 6048, 4024}},
    {"Zf", {35.9, 23.9, 6048, 4032}},
    {"Zfc", {23.5, 15.7, 5568, 3712}},
    {"D850", {35.9, 23.9, 8256, 5504}},
    {"D780", {35.9, 23.9, 6048, 4024}},
    {"EOS R5 II", fullFrame(8192, 5464)},
    {"EOS R5", fullFrame(8192, 5464)},
    {"EOS R6 II", fullFrame(6000, 4000)},
    {"EOS R3", fullFrame(6000, 4000)},
    {"EOS R8", fullFrame(6000, 4000)},
    {"EOS R7", {22.3, 14.8, 6960, 4640}},
    {"EOS R10", {22.3, 14.9, 6000, 4000}},
    {"EOS 5D Mark IV", fullFrame(6720, 4480)},
    {"EOS 90D", {22.3, 14.8, 6960, 4640}},
    {"EOS Ra", fullFrame(6720, 4480)},
    {"GFX 100 II", mediumFormat(11648, 8736)},
    {"GFX 100S", mediumFormat(11648, 8736)},
    {"X-T5", apsC(7728, 5152)},
    {"X-H2", apsC(7728, 5152)},
    {"X-H2S", apsC(6240, 4160)},
    {"X-T4", apsC(6240, 4160)},
    {"X-S20", apsC(6240, 4160)},
    {"OM-1 Mark II", fourThirds(5184, 3888)},
    {"OM-1", fourThirds(5184, 3888)},
    {"OM-5", fourThirds(5184, 3888)},
    {"E-M1 Mark III", fourThirds(5184, 3888)},
    {"E-M1X", fourThirds(5184, 3888)},
});

constexpr auto formatRows = std::to_array<Row>({
    {"Full frame", {36.0, 24.0}},
    {"APS-C", {23.5, 15.6}},
    {"APS-C, Canon", {22.3, 14.9}},
    {"Micro Four Thirds", {17.3, 13.0}},
    {"1-inch", {13.2, 8.8}},
    {"Medium format", {43.8, 32.9}},
});

/// Before and after the model; what is a model by itself ("om" of the OM-1) is not among them.
constexpr std::array<std::string_view, 12> makers{"nikon corporation",
                                                  "om digital solutions",
                                                  "olympus",
                                                  "om system",
                                                  "panasonic",
                                                  "fujifilm",
                                                  "canon",
                                                  "nikon",
                                                  "lumix",
                                                  "fuji",
                                                  "dsc",
                                                  "eos"};

bool isSony(const std::string& model) {
    return model.find("sony") != model.npos || model.find("ilce") != model.npos ||
           model.find("alpha") != model.npos ||
           (model.size() > 1 && model[0] == 'a' && std::isdigit(static_cast<unsigned char>(model[1])));
}

/// A model in the form that its names have in common: "EOS R5 II" and "Canon EOS R5m2" are "r5m2".
std::string keyOf(std::string_view text) {
    std::string model = base::lowered(base::trimmed(text));
    if (isSony(model))
        return "sony " + SonyNames::sonyModelKey(model);
    for (const std::string_view maker : makers)
        model = base::replacedAll(model, maker, " ");
    model = std::string(base::trimmed(model));
    if (model.starts_with("dc-"))
        model.erase(0, 3);
    model = base::replacedAll(model, "mark", "");
    std::string key;
    for (const char c : model)
        if (std::isalnum(static_cast<unsigned char>(c)))
            key += c;
        else if (c == '_')
            key += 'm'; // "Z 6_2"
    for (const auto& [roman, generation] : std::to_array<std::pair<std::string_view, std::string_view>>(
             {{"iii", "m3"}, {"ii", "m2"}, {"iv", "m4"}}))
        if (key.size() > roman.size() && key.ends_with(roman))
            return key.substr(0, key.size() - roman.size()) + std::string(generation);
    return key;
}

} // namespace

std::span<const Row> models() {
    return modelRows;
}

std::span<const Row> formats() {
    return formatRows;
}

const Row* named(std::string_view name) {
    for (const auto rows : {models(), formats()})
        if (const auto found = std::ranges::find(rows, name, &Row::name); found != rows.end())
            return &*found;
    return nullptr;
}

const Row* forModel(std::string_view model) {
    const std::string key = keyOf(model);
    const auto found =
        std::ranges::find_if(modelRows, [&](const Row& row) { return keyOf(row.name) == key; });
    return found == modelRows.end() || key.empty() ? nullptr : &*found;
}

} // namespace SensorTable

} // namespace zenka::cameras
