#include "platform/ProcessorCounters.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zenka::platform {

std::optional<ports::ProcessorTicks> readProcessorTicks(const SystemTree& tree) {
    // "cpu  user nice system idle iowait irq softirq steal guest guest_nice"; old kernels end earlier
    const auto content = tree.text("proc/stat");
    if (!content)
        return std::nullopt;
    const auto words = base::splitPieces(base::split(*content, '\n').front(), ' ');
    constexpr std::size_t fewest = 5;
    if (words.size() < fewest || words.front() != "cpu")
        return std::nullopt;
    std::array<std::uint64_t, 8> ticks{};
    for (std::size_t i = 0; i < std::min(ticks.size(), words.size() - 1); ++i) {
        const auto count = wholeNumber(words[i + 1]);
        if (!count || *count < 0)
            return std::nullopt;
        ticks[i] = static_cast<std::uint64_t>(*count);
    }
    const auto [user, nice, system, idle, iowait, irq, softirq, steal] = ticks;
    return ports::ProcessorTicks{
        .user = user, .sys = system + irq + softirq + steal, .idle = idle + iowait, .nice = nice};
}

std::optional<double> ThrottleWatch::share(const SystemTree& tree, double uptimeSeconds) {
    std::vector<std::pair<std::string, std::int64_t>> now;
    const auto processors = tree.entries("sys/devices/system/cpu", "cpu");
    for (const std::string& processor : processors.value_or(std::vector<std::string>())) {
        std::string file = processor + "/thermal_throttle/package_throttle_total_time_ms";
        if (const auto milliseconds = tree.number(file))
            now.emplace_back(std::move(file), *milliseconds);
    }
    const double passedMs = (uptimeSeconds - std::exchange(readAt_, uptimeSeconds)) * 1000;
    const auto before = std::exchange(before_, now);
    if (now.empty())
        return std::nullopt;
    double most = 0;
    for (const auto& [file, milliseconds] : now) {
        const auto old = std::ranges::find(before, file, [](const auto& counter) { return counter.first; });
        // A processor that was switched off and on again may count anew.
        if (old != before.end() && milliseconds > old->second && passedMs > 0)
            most = std::max(most, static_cast<double>(milliseconds - old->second) / passedMs);
    }
    return std::min(most, 1.0);
}

} // namespace zenka::platform
