#include "rig/site/GroundHeight.h"

#include "base/Text.h"
#include "rig/shared/SettingsKeys.h"

#include <absl/strings/str_format.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <utility>

namespace zenka::rig {

namespace {

constexpr char defaultHost[] = "https://api.open-meteo.com";
constexpr base::Seconds timeout{8};
constexpr std::size_t mostBytes = 64 << 10;

/// Between the floor of the deepest dry land and the top of the highest mountain, with room.
constexpr double lowestMetres = -500;
constexpr double highestMetres = 9000;

std::optional<double> heightIn(const ports::HttpReply& reply) {
    if (!reply.ok())
        return std::nullopt;
    const auto answer = nlohmann::json::parse(reply.body, nullptr, false);
    if (!answer.is_object() || !answer.contains("elevation"))
        return std::nullopt;
    const auto& heights = answer["elevation"];
    if (!heights.is_array() || heights.empty() || !heights[0].is_number())
        return std::nullopt;
    const double metres = heights[0].get<double>();
    if (!std::isfinite(metres) || metres < lowestMetres || metres > highestMetres)
        return std::nullopt;
    return metres;
}

} // namespace

std::string GroundHeight::host() const {
    return ports_.settings.text(settingsKeys::elevationHost).value_or(defaultHost);
}

void GroundHeight::setHost(const std::string& address) {
    ports_.settings.setText(settingsKeys::elevationHost, std::string(base::trimmed(address)));
}

void GroundHeight::ask(double lat, double lon, Then then) {
    std::string address = host();
    while (address.ends_with('/'))
        address.pop_back();
    if (address.empty()) {
        then(std::nullopt);
        return;
    }
    ports::HttpRequest request;
    request.url = absl::StrFormat("%s/v1/elevation?latitude=%.5f&longitude=%.5f", address, lat, lon);
    request.timeout = timeout;
    request.mostBytes = mostBytes;
    ports_.http.send(std::move(request),
                     lifeline_.guard([then = std::move(then)](const auto& reply) { then(heightIn(reply)); }));
}

} // namespace zenka::rig
