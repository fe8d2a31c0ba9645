#pragma once

#include <cstdint>
#include <string_view>

namespace zenka::cameras {

/// What a result of EDSDK means, in the operator's words; "EdsError" for one that has none.
std::string_view canonErrorName(std::uint32_t code);

} // namespace zenka::cameras
