#pragma once

#include <optional>
#include <string_view>

namespace zenka::eclipse {

namespace Coord {

/// Reads a latitude or longitude as people type it, in signed decimal degrees: "41.65", "41,65", "W 0.88",
/// "41°39'0\"N", "41 39 0 N", "-0:52:48". Nothing for a text without a number. The range is not checked.
std::optional<double> parse(std::string_view text);

} // namespace Coord

} // namespace zenka::eclipse
