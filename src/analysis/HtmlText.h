#pragma once

#include <string>
#include <string_view>

namespace zenka::analysis {

/// A text from outside as text of a page, also within an attribute's quotes. Bytes that are no UTF-8 and
/// control characters become U+FFFD.
std::string escaped(std::string_view text);

} // namespace zenka::analysis
