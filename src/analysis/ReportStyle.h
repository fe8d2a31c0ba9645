#pragma once

#include <string_view>

namespace zenka::analysis {

/// The report's style sheet. Its colours are variables, so that paper can have others than the screen.
extern const std::string_view reportStyle;

} // namespace zenka::analysis
