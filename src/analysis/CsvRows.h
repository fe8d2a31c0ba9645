#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::analysis {

/// Reads the rows of a CSV: fields between commas, in double quotes where they hold a comma, a quote
/// (doubled) or a line break; lines that begin "# " between the rows are comments, empty lines are nothing.
/// The first row is the header, and every other one has as many fields.
///
/// A row that breaks these rules, for it was cut off or its quote never closes, costs that row only: the
/// reader goes on at the next line. The text outlives it.
class CsvRows {
public:
    explicit CsvRows(std::string_view text);

    /// The place of a column in the rows; nothing for a name that the header does not have.
    std::optional<std::size_t> column(std::string_view name) const;

    /// The next row, valid until the one after it is asked for; null behind the last.
    const std::vector<std::string>* next();

private:
    bool skipToRow();
    bool readRow(std::string_view text, std::size_t& length);

    std::string_view rest_;
    std::vector<std::string> header_;
    std::vector<std::string> row_;
};

} // namespace zenka::analysis
