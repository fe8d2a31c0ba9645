#include "cli/HorizonTest.h"

#include "base/Text.h"
#include "cli/Print.h"
#include "platform/HeadlessNetwork.h"
#include "rig/shared/SettingsKeys.h"
#include "rig/site/TerrainSurvey.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cstdio>

namespace zenka::cli {

namespace {

void print(const rig::TerrainSurvey::Outcome& outcome) {
    constexpr std::size_t stepDeg = 30;
    if (!outcome.remark.empty())
        std::fputs((outcome.remark + "\n").c_str(), stderr);
    const auto& samples = outcome.result.samples;
    const auto peak = std::ranges::max_element(samples);
    printLine(absl::StrFormat("source=%s  observer h0=%.0fm  peak=%.1f° @ az %d", outcome.result.source,
                              outcome.result.observerHeightM.value_or(0), *peak, peak - samples.begin()));
    std::string line = "samples: ";
    for (std::size_t az = 0; az < samples.size(); az += stepDeg)
        line += absl::StrFormat("%s%d:%.1f", az == 0 ? "" : "  ", az, samples[az]);
    printLine(line);
}

} // namespace

std::optional<HorizonPlace> placeIn(std::span<const std::string> values) {
    const auto lat = base::readNumber(values[0]);
    const auto lon = base::readNumber(values[1]);
    if (!lat || !lon)
        return std::nullopt;
    return HorizonPlace{.lat = *lat, .lon = *lon};
}

void printHorizon(const HorizonPlace& place) {
    platform::HeadlessNetwork machine;
    for (const char* key : rig::settingsKeys::deployment)
        machine.settings.letEnvironmentRule(key);
    rig::TerrainSurvey survey({.http = machine.http,
                               .loop = machine.loop,
                               .queues = machine.queues,
                               .settings = machine.settings,
                               .pixels = machine.pixels});
    survey.compute({.lat = place.lat, .lon = place.lon}, true, {},
                   [&machine](const rig::TerrainSurvey::Outcome& outcome) {
                       print(outcome);
                       machine.stop();
                   });
    machine.serve();
}

} // namespace zenka::cli
