#pragma once

#include "script/Limits.h"
#include "script/ZenkaScript.h"

#include <optional>
#include <string_view>

namespace zenka::script {

/// ZenkaScript::compile with limits of the caller's.
CompiledScript compileWithin(const Limits& limits, std::string_view text, const CompileContext& context,
                             std::optional<double> varValue = std::nullopt);

} // namespace zenka::script
