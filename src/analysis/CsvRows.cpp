#include "analysis/CsvRows.h"

#include <algorithm>
#include <utility>

namespace zenka::analysis {

namespace {

/// A longer row is none of ours. It also bounds how far a quote that never closes is followed.
constexpr std::size_t longestRow = 65'536;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::size_t lineLength(std::string_view text) {
    const auto end = text.find('\n');
    return end == text.npos ? text.size() : end + 1;
}

/// The length of the line break at the beginning of a text; 0 for none.
std::size_t breakLength(std::string_view text) {
    return text.starts_with('\n') ? 1 : text.starts_with("\r\n") ? 2 : 0;
}

/// Reads the field at the beginning of a text. Its length with its quotes, nothing where it is none.
std::optional<std::size_t> readField(std::string_view text, std::string& field) {
    field.clear();
    if (!text.starts_with('"')) {
        const std::size_t end = std::min(text.find_first_of(",\n\""), text.size());
        if (end < text.size() && text[end] == '"')
            return std::nullopt;
        field = text.substr(0, end);
        if (end < text.size() && text[end] == '\n' && field.ends_with('\r'))
            field.pop_back();
        return field.size();
    }
    for (std::size_t at = 1;;) {
        const std::size_t quote = text.find('"', at);
        if (quote == text.npos)
            return std::nullopt;
        field += text.substr(at, quote - at);
        at = quote + 1;
        if (!text.substr(at).starts_with('"'))
            return at;
        field += '"';
        ++at;
    }
}

} // namespace

CsvRows::CsvRows(std::string_view text) : rest_(text) {
    if (rest_.starts_with(byteOrderMark))
        rest_.remove_prefix(byteOrderMark.size());
    if (const auto* header = next())
        header_ = *header;
}

std::optional<std::size_t> CsvRows::column(std::string_view name) const {
    const auto found = std::ranges::find(header_, name);
    if (found == header_.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - header_.begin());
}

const std::vector<std::string>* CsvRows::next() {
    while (skipToRow()) {
        std::size_t length = 0;
        const bool good = readRow(rest_.substr(0, longestRow), length) &&
                          (header_.empty() || row_.size() == header_.size());
        rest_.remove_prefix(good ? length : lineLength(rest_));
        if (good)
            return &row_;
    }
    return nullptr;
}

bool CsvRows::skipToRow() {
    while (const std::size_t length = rest_.starts_with("# ") ? lineLength(rest_) : breakLength(rest_))
        rest_.remove_prefix(length);
    return !rest_.empty();
}

bool CsvRows::readRow(std::string_view text, std::size_t& length) {
    std::size_t fields = 0;
    for (;; ++fields) {
        if (fields == row_.size())
            row_.emplace_back();
        const auto read = readField(text.substr(length), row_[fields]);
        if (!read)
            return false;
        length += *read;
        const std::string_view behind = text.substr(length);
        if (!behind.starts_with(',')) {
            length += breakLength(behind);
            row_.resize(fields + 1);
            // At the end of a text that is only a part of the rest the row goes on.
            return breakLength(behind) > 0 || (behind.empty() && text.size() == rest_.size());
        }
        ++length;
    }
}

} // namespace zenka::analysis
