#include "ui/kit/ExposureFields.h"

#include "base/Text.h"
#include "exposure/ExposureScales.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace zenka::ui::ExposureFields {

namespace {

/// Far beyond what bodies offer; they catch a slip.
constexpr double highestIso = 10'000'000;
constexpr double smallestAperture = 0.5;
constexpr double largestAperture = 256;
constexpr double shortestSec = 1.0 / 128'000;
constexpr double longestSec = 900;

Reading readIso(std::string_view text) {
    const auto value = base::readNumber(bare(text, "iso", ""));
    if (!value || std::floor(*value) != *value)
        return {.fault = "This is no ISO value. Type a whole number, as 100, or nothing for the body's own."};
    if (*value < 1 || *value > highestIso)
        return {.fault = "An ISO value lies between 1 and 10000000. Type one in that range."};
    return {.value = *value, .fault = {}};
}

Reading readAperture(std::string_view text) {
    const auto value = base::readNumber(bareAperture(text));
    if (!value)
        return {.fault =
                    "This is no aperture. Type an f-number, as 8 or 5.6, or nothing for the body's own."};
    if (*value < smallestAperture || *value > largestAperture)
        return {.fault = "An f-number lies between 0.5 and 256. Type one in that range."};
    return {.value = *value, .fault = {}};
}

Reading readShutter(std::string_view text) {
    const std::string number = bare(text, "", "s");
    if (number.find("bulb") != number.npos)
        return {.fault = "Bulb is for scripts. Type a time for the test, as 2 or 1/500."};
    const auto seconds = exposure::readShutterChoice(number);
    if (!seconds)
        return {.fault =
                    "This is no shutter. Type seconds, as 1/500, 0.5 or 2, or nothing for the body's own."};
    if (*seconds < shortestSec || *seconds > longestSec)
        return {.fault = "A shutter lies between 1/128000 and 900 s. Type one in that range."};
    return {.value = *seconds, .fault = {}};
}

std::string shutterText(double seconds) {
    if (seconds <= 0)
        return {};
    std::string label = seconds < 1 ? exposure::shutterLabel(seconds) : absl::StrFormat("%g", seconds);
    if (label.ends_with('s'))
        label.pop_back();
    return label;
}

std::vector<std::string> scaleOf(Field field) {
    std::vector<std::string> scale;
    const auto take = [&](const auto& values) {
        for (const auto& value : values)
            scale.emplace_back(value);
    };
    switch (field) {
    case Field::iso:
        for (const int iso : exposure::standardISOs(false))
            scale.push_back(std::to_string(iso));
        break;
    case Field::aperture: take(exposure::standardApertures()); break;
    case Field::shutter: take(exposure::standardShutters()); break;
    }
    return scale;
}

std::string snapped(Field field, double value) {
    switch (field) {
    case Field::iso: return std::to_string(exposure::snapISO(value));
    case Field::aperture: return std::string(exposure::snapAperture(value));
    case Field::shutter: return std::string(exposure::snapToStandard(value));
    }
    return {};
}

} // namespace

std::string bare(std::string_view text, std::string_view before, std::string_view behind) {
    std::string number = base::lowered(base::trimmed(text));
    if (!before.empty() && number.starts_with(before))
        number.erase(0, before.size());
    if (!behind.empty() && number.ends_with(behind))
        number.erase(number.size() - behind.size());
    return base::replacedAll(base::trimmed(number), ",", ".");
}

std::string bareAperture(std::string_view text) {
    std::string number = bare(text, "f", "");
    if (number.starts_with('/'))
        number.erase(0, 1);
    return std::string(base::trimmed(number));
}

Reading read(Field field, std::string_view text) {
    const std::string_view typed = base::trimmed(text);
    if (typed.empty() || typed == "-" || base::equalIgnoringCase(typed, "auto"))
        return {};
    switch (field) {
    case Field::iso: return readIso(typed);
    case Field::aperture: return readAperture(typed);
    case Field::shutter: return readShutter(typed);
    }
    return {};
}

std::string textOf(Field field, const cameras::Shot& shot) {
    switch (field) {
    case Field::iso: return shot.iso > 0 ? std::to_string(shot.iso) : std::string();
    case Field::aperture: return shot.aperture > 0 ? absl::StrFormat("%g", shot.aperture) : std::string();
    case Field::shutter: return shutterText(shot.bulb ? 0 : shot.shutterSec);
    }
    return {};
}

std::string nudged(Field field, std::string_view text, int steps) {
    const Reading reading = read(field, text);
    std::string start = snapped(field, reading.value);
    if (reading.value <= 0 || !reading.fault.empty())
        return start; // a step from nowhere
    const std::vector<std::string> scale = scaleOf(field);
    const auto row = std::ranges::find(scale, start) - scale.begin();
    const auto last = static_cast<std::ptrdiff_t>(scale.size()) - 1;
    return scale[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(row + steps, 0, last))];
}

} // namespace zenka::ui::ExposureFields
