#include "script/FieldReader.h"

#include "base/Text.h"
#include "script/Limits.h"

#include <absl/strings/charconv.h>
#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <system_error>
#include <utility>

namespace zenka::script {

using Kind = FieldNumber::Kind;

FieldNumber readFieldNumber(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-'))
            return {};
    }
    // Not the standard library's reader: it does not tell overflow from underflow.
    double value = 0;
    const char* end = text.data() + text.size();
    const absl::from_chars_result result = absl::from_chars(text.data(), end, value);
    if (result.ptr != end || result.ec == std::errc::invalid_argument)
        return {};
    if (result.ec == std::errc::result_out_of_range && std::abs(value) < 1)
        return {.kind = Kind::value, .value = 0};
    if (result.ec != std::errc() || !std::isfinite(value))
        return {.kind = Kind::outOfRange};
    return {.kind = Kind::value, .value = value};
}

FieldNumber readTime(std::string_view text) {
    const std::vector<std::string_view> pieces = base::splitPieces(text, ':');
    if (pieces.empty())
        return {};
    double value[3]{};
    const std::size_t count = std::min<std::size_t>(pieces.size(), 3);
    for (std::size_t i = 0; i < count; ++i) {
        const FieldNumber piece = readFieldNumber(pieces[i]);
        if (piece.kind == Kind::outOfRange)
            return piece;
        value[i] = piece.value;
    }
    const double seconds = count == 1   ? value[0]
                           : count == 2 ? 60 * value[0] + value[1]
                                        : 3600 * value[0] + 60 * value[1] + value[2];
    if (!(std::abs(seconds) <= furthestSec))
        return {.kind = Kind::outOfRange};
    return {.kind = Kind::value, .value = seconds};
}

std::optional<ZenkaScript::Shutter> readShutter(std::string_view text) {
    const std::string upper = base::uppered(base::trimmed(text));
    if (upper == "BULB")
        return ZenkaScript::Shutter{.seconds = 0, .bulb = true};
    // "-" and "AUTO" read as no number, which is 0 as well.
    FieldNumber number = readFieldNumber(upper);
    const std::vector<std::string_view> parts = base::splitPieces(upper, '/');
    if (upper.find('/') != upper.npos && parts.size() == 2) {
        const FieldNumber numerator = readFieldNumber(parts[0]);
        const FieldNumber denominator = readFieldNumber(parts[1]);
        if (numerator.kind == Kind::outOfRange || denominator.kind == Kind::outOfRange)
            return std::nullopt;
        if (numerator.kind == Kind::value && denominator.kind == Kind::value && denominator.value != 0)
            number = {.kind = Kind::value, .value = numerator.value / denominator.value};
    }
    if (number.kind == Kind::outOfRange || !(std::abs(number.value) <= furthestSec))
        return std::nullopt;
    return ZenkaScript::Shutter{.seconds = number.value};
}

std::string_view FieldReader::text(std::size_t index, std::string_view otherwise) const {
    return index < fields_.size() ? fields_[index] : otherwise;
}

double FieldReader::number(std::size_t index, std::string_view name, double otherwise) {
    return numberIn(text(index, ""), text(index, ""), name, otherwise);
}

double FieldReader::numberIn(std::string_view text, std::string_view field, std::string_view name,
                             double otherwise) {
    const FieldNumber number = readFieldNumber(text);
    if (number.kind == Kind::outOfRange)
        outOfRange(name, field);
    return number.kind == Kind::value ? number.value : otherwise;
}

int FieldReader::whole(std::size_t index, std::string_view name, int otherwise) {
    return cut(index, name, number(index, name, otherwise));
}

double FieldReader::numberOrAuto(std::size_t index, std::string_view name, double otherwise) {
    return isAuto(index) ? 0 : number(index, name, otherwise);
}

int FieldReader::wholeOrAuto(std::size_t index, std::string_view name, int otherwise) {
    return cut(index, name, numberOrAuto(index, name, otherwise));
}

double FieldReader::time(std::size_t index) {
    const std::string_view field = text(index, "00:00.0");
    const FieldNumber seconds = readTime(field);
    if (seconds.kind == Kind::none)
        fail("offset is blank");
    if (seconds.kind == Kind::outOfRange)
        outOfRange("offset", field);
    return seconds.value;
}

ZenkaScript::Shutter FieldReader::shutter(std::size_t index, std::string_view otherwise) {
    const std::string_view field = text(index, otherwise);
    const auto shutter = readShutter(field);
    if (!shutter)
        outOfRange("shutter", field);
    return shutter.value_or(ZenkaScript::Shutter{});
}

bool FieldReader::isAuto(std::size_t index) const {
    if (index >= fields_.size())
        return false;
    const std::string_view field = fields_[index];
    return field.empty() || field == "-" || base::equalIgnoringCase(field, "AUTO");
}

int FieldReader::cut(std::size_t index, std::string_view name, double value) {
    const double whole = std::trunc(value);
    if (whole < std::numeric_limits<int>::min() || whole > std::numeric_limits<int>::max()) {
        outOfRange(name, text(index, ""));
        return 0;
    }
    return static_cast<int>(whole);
}

void FieldReader::outOfRange(std::string_view name, std::string_view value) {
    fail(absl::StrFormat("%s '%s' is out of range", name, value));
}

void FieldReader::fail(std::string sentence) {
    if (fault_.empty())
        fault_ = std::move(sentence) + ", " + std::string(consequence_);
}

} // namespace zenka::script
