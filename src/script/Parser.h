#pragma once

#include "script/Diagnostics.h"
#include "script/Limits.h"
#include "script/Tree.h"

#include <string_view>
#include <vector>

namespace zenka::script {

/// Makes the tree of a text. Views in it point into the text. Lines that are no command and loops that
/// are none become diagnostics; a loop left open is closed by the end of the text.
std::vector<Node> parse(std::string_view text, const Limits& limits, Diagnostics& diagnostics);

} // namespace zenka::script
