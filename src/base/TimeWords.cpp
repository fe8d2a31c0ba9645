#include "base/TimeWords.h"

#include "base/CivilTime.h"
#include "base/Text.h"

#include <absl/strings/str_format.h>

#include <cmath>
#include <optional>

namespace zenka::base {

namespace {

/// The offset of a zone such as "Etc/GMT+6", which lies six hours west: "UTC−6".
std::optional<std::string> fixedOffset(std::string_view tz) {
    constexpr std::string_view prefix = "Etc/GMT";
    if (!tz.starts_with(prefix))
        return std::nullopt;
    const auto hours = readInteger(tz.substr(prefix.size()));
    if (!hours || *hours == 0)
        return "UTC";
    return absl::StrFormat("UTC%s%d", *hours > 0 ? minusSign : "+", std::abs(*hours));
}

} // namespace

std::string localHMS(Instant instant, std::string_view tz) {
    return formatTime("%H:%M:%S", instant, timeZoneOrUtc(tz));
}

std::string tzAbbr(std::string_view tz, Instant at) {
    if (!findTimeZone(tz))
        return "UTC";
    if (auto offset = fixedOffset(tz))
        return *std::move(offset);
    std::string name = formatTime("%Z", at, timeZoneOrUtc(tz));
    const bool noName = name.find_first_of("0123456789") != std::string::npos ||
                        (name.find("GMT") != std::string::npos && name != "GMT");
    if (!noName)
        return name;
    const auto city = tz.substr(tz.rfind('/') + 1); // npos + 1 is 0: an identifier without a slash, whole
    return replacedAll(city, "_", " ");
}

std::string durHMS(double seconds) {
    const auto whole = static_cast<long long>(std::floor(std::abs(seconds)));
    const long long days = whole / 86400;
    const std::string hms = absl::StrFormat("%02d:%02d:%02d", whole / 3600 % 24, whole / 60 % 60, whole % 60);
    return days > 0 ? absl::StrFormat("%dd %s", days, hms) : hms;
}

std::optional<TimeOfDay> readTimeOfDay(std::string_view text) {
    const auto fields = split(trimmed(text), ':');
    if (fields.size() < 2 || fields.size() > 3)
        return std::nullopt;
    int values[3] = {0, 0, 0};
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const auto value = readInteger(fields[i]);
        if (!value || fields[i].find_first_not_of("0123456789") != std::string_view::npos)
            return std::nullopt;
        values[i] = *value;
    }
    if (values[0] > 23 || values[1] > 59 || values[2] > 59)
        return std::nullopt;
    return TimeOfDay{values[0], values[1], values[2]};
}

std::string laterTimeOfDay(const TimeOfDay& time, int seconds) {
    constexpr int day = 86400;
    const int later = time.hour * 3600 + time.minute * 60 + time.second + seconds % day;
    return durHMS((later % day + day) % day);
}

} // namespace zenka::base
