#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::script {

/// Hands out the lines of a text one by one, trimmed. Each single newline character ends a line (LF, CR,
/// VT, FF, NEL, LS and PS in UTF-8), so a CR LF pair counts as two.
class LineReader {
public:
    explicit LineReader(std::string_view text) : rest_(text) {}

    /// Nothing behind the last line.
    std::optional<std::string_view> next();
    /// 1-based number of the line that next() gave last.
    int lineNo() const { return lineNo_; }

private:
    std::optional<std::string_view> rest_;
    int lineNo_ = 0;
};

using Fields = std::vector<std::string_view>;

/// The fields of a line: cut at each comma, each trimmed. At least one.
Fields splitFields(std::string_view line);

/// The fields from an index onward joined again with commas; the last field where there are none.
std::string joinedTail(const Fields& fields, std::size_t from);

} // namespace zenka::script
