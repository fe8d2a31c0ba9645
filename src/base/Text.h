#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::base {

/// U+2212, the minus sign of labels and notes.
inline constexpr std::string_view minusSign = "\u2212";

/// Reads a whole text as a decimal floating number with optional exponent. No surrounding blanks, no
/// "inf" and no "nan"; a value beyond the range of a double is no number either.
std::optional<double> readNumber(std::string_view text);

/// Reads a whole text as a decimal integer with optional sign; nothing when it does not fit.
std::optional<int> readInteger(std::string_view text);

/// A number in plain text form: the shortest decimal that reads back, with at least one digit behind
/// the point ("100.0", "99.5").
std::string plainNumber(double value);

/// An array printed as text: ["CAM1", "CAM2"], an empty one [].
std::string arrayText(const std::vector<std::string>& items);

/// Lower and upper case of the ASCII letters; all other bytes stay.
std::string lowered(std::string_view text);
std::string uppered(std::string_view text);

/// Case-insensitive (ASCII) search and comparison.
bool containsIgnoringCase(std::string_view text, std::string_view part);
bool equalIgnoringCase(std::string_view left, std::string_view right);

/// The text without blanks (and tabs, returns and newlines) at either end.
std::string_view trimmed(std::string_view text);

/// The pieces between separators, empty ones kept; an empty text has one empty piece.
std::vector<std::string_view> split(std::string_view text, char separator);

/// The pieces between separators, empty ones left out.
std::vector<std::string_view> splitPieces(std::string_view text, char separator);

/// The bytes of a text file as UTF-8 text, without a byte order mark; nothing when they are no UTF-8.
std::optional<std::string> utf8Text(std::string_view bytes);

/// The items with a separator between them: "a, b".
std::string joined(const std::vector<std::string>& items, std::string_view separator = ", ");

/// "1 frame", "2 frames", "0 frames".
std::string counted(std::int64_t count, std::string_view word);

std::string replacedAll(std::string_view text, std::string_view what, std::string_view with);

/// The keys of an ordered map that begin so.
template <typename Map>
std::vector<std::string> keysBeginningWith(const Map& map, const std::string& prefix) {
    std::vector<std::string> keys;
    for (auto found = map.lower_bound(prefix); found != map.end() && found->first.starts_with(prefix);
         ++found)
        keys.push_back(found->first);
    return keys;
}

} // namespace zenka::base
