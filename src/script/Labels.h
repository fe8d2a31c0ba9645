#pragma once

#include "script/Tree.h"

#include <optional>
#include <string>
#include <string_view>

namespace zenka::script {

/// Stands in a reference for the value of the loop around it.
inline constexpr std::string_view varMark = "(VAR)";

/// A moment for people: "C2 −8s", "C3 +1:30", "Pre 12.5%", "after last", "18:32 UTC".
std::string makeLabel(const Moment& moment, std::optional<double> varValue);

} // namespace zenka::script
