#pragma once

#include "base/Instant.h"

#include <optional>
#include <string>

namespace zenka::base {

/// The instant of a date as HTTP gives it, "Wed, 12 Aug 2026 17:30:00 GMT" (RFC 7231, the form of the
/// present); nothing for any other text.
std::optional<Instant> httpDate(const std::string& text);

} // namespace zenka::base
