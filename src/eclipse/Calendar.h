#pragma once

#include <absl/time/civil_time.h>

#include <string_view>

namespace zenka::eclipse::detail {

/// The date of a catalogue row, "2024-04-08". A text that is no date is a fault of the table.
absl::CivilDay dateOf(std::string_view dateUTC);

} // namespace zenka::eclipse::detail
