#pragma once

namespace zenka::cli {

/// --sony: whether Sony's SDK is there, and the bodies that it sees.
void probeSony();

} // namespace zenka::cli
