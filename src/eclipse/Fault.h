#pragma once

#include <string_view>

namespace zenka::eclipse::detail {

/// Ends the program with a sentence on standard error: the table that is built in is malformed, which is
/// a fault of the program and never of its user.
[[noreturn]] void fault(std::string_view sentence, std::string_view what);

} // namespace zenka::eclipse::detail
