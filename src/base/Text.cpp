#include "base/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace zenka::base {

namespace {

char lowerChar(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

char upperChar(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

constexpr std::string_view whiteSpace = " \t\r\n\v\f";

/// Length of the well-formed UTF-8 sequence at the beginning of a text that is not empty; 0 for none.
/// Overlong forms, surrogates and what lies beyond U+10FFFF are none (Unicode, table 3-7).
std::size_t utf8Length(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = byte(0);
    if (lead < 0x80)
        return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length)
        return 0;
    const unsigned lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (byte(1) < lowest || byte(1) > highest)
        return 0;
    for (std::size_t i = 2; i < length; ++i) {
        if (byte(i) < 0x80 || byte(i) > 0xBF)
            return 0;
    }
    return length;
}

} // namespace

std::optional<double> readNumber(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-') || text.starts_with('+'))
            return std::nullopt;
    }
    double value = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<int> readInteger(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-'))
            return std::nullopt;
    }
    int value = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return value;
}

std::string plainNumber(double value) {
    char buffer[400]; // the longest fixed form of a double has 309 digits before the point
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
    std::string text(buffer, result.ptr);
    if (std::isfinite(value) && text.find('.') == std::string::npos)
        text += ".0";
    return text;
}

std::string arrayText(const std::vector<std::string>& items) {
    std::string text = "[";
    for (const std::string& item : items) {
        if (text.size() > 1)
            text += ", ";
        text += '"';
        for (char c : item) {
            if (c == '"' || c == '\\')
                text += '\\';
            text += c;
        }
        text += '"';
    }
    return text + "]";
}

std::string lowered(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), lowerChar);
    return result;
}

std::string uppered(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), upperChar);
    return result;
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
    return lowered(text).find(lowered(part)) != std::string::npos;
}

bool equalIgnoringCase(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right, {}, lowerChar, lowerChar);
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(whiteSpace);
    if (first == text.npos)
        return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    while (true) {
        const auto end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        if (end == text.npos)
            return pieces;
        text.remove_prefix(end + 1);
    }
}

std::vector<std::string_view> splitPieces(std::string_view text, char separator) {
    std::vector<std::string_view> pieces = split(text, separator);
    std::erase_if(pieces, [](std::string_view piece) { return piece.empty(); });
    return pieces;
}

std::optional<std::string> utf8Text(std::string_view bytes) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (bytes.starts_with(byteOrderMark))
        bytes.remove_prefix(byteOrderMark.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t length = utf8Length(bytes.substr(i));
        if (length == 0)
            return std::nullopt;
        i += length;
    }
    return std::string(bytes);
}

std::string joined(const std::vector<std::string>& items, std::string_view separator) {
    std::string text;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0)
            text += separator;
        text += items[i];
    }
    return text;
}

std::string counted(std::int64_t count, std::string_view word) {
    std::string text = std::to_string(count) + ' ';
    text += word;
    return count == 1 ? text : text + 's';
}

std::string replacedAll(std::string_view text, std::string_view what, std::string_view with) {
    std::string result;
    while (true) {
        const auto at = what.empty() ? text.npos : text.find(what);
        result += text.substr(0, at);
        if (at == text.npos)
            return result;
        result += with;
        text.remove_prefix(at + what.size());
    }
}

} // namespace zenka::base
