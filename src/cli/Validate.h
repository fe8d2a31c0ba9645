#pragma once

namespace zenka::cli {

/// --validate: the engine at three cities beside reference times, and a compile of a fixed script.
void runValidation();

} // namespace zenka::cli
