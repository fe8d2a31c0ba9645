#include "platform/PowerSupplies.h"

#include "base/Text.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace zenka::platform {

namespace {

struct Battery {
    std::string status;
    std::optional<double> percent;
    std::optional<double> fullEnergy; // micro-watt-hours
    std::optional<double> fullCharge; // micro-ampere-hours
};

std::string nameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

/// Drivers of worn batteries tell a little more than all.
std::optional<double> plausiblePercent(double percent) {
    constexpr double most = 110;
    if (percent < 0 || percent > most)
        return std::nullopt;
    return std::min(percent, 100.0);
}

std::optional<double> positive(std::optional<std::int64_t> number) {
    return number && *number > 0 ? std::optional(static_cast<double>(*number)) : std::nullopt;
}

/// What a battery holds of what it can hold.
std::optional<double> shareOf(std::optional<std::int64_t> held, std::optional<double> full) {
    if (!held || !full)
        return std::nullopt;
    return plausiblePercent(static_cast<double>(*held) / *full * 100);
}

Battery readBattery(const SystemTree& tree, const std::string& path, std::vector<std::string>& faults) {
    Battery battery{.status = tree.text(path + "/status").value_or(""),
                    .percent = {},
                    .fullEnergy = positive(tree.number(path + "/energy_full")),
                    .fullCharge = positive(tree.number(path + "/charge_full"))};
    const auto told = tree.text(path + "/capacity");
    if (const auto capacity = told ? wholeNumber(*told) : std::nullopt)
        battery.percent = plausiblePercent(static_cast<double>(*capacity));
    if (!battery.percent)
        battery.percent = shareOf(tree.number(path + "/energy_now"), battery.fullEnergy);
    if (!battery.percent)
        battery.percent = shareOf(tree.number(path + "/charge_now"), battery.fullCharge);
    if (!battery.percent && told)
        faults.push_back(absl::StrFormat(
            "What the battery %s tells of its charge makes no sense and is left out.", nameOf(path)));
    return battery;
}

std::optional<int> percentOf(std::vector<Battery> batteries) {
    std::erase_if(batteries, [](const Battery& battery) { return !battery.percent; });
    if (batteries.empty())
        return std::nullopt;
    const auto allTell = [&](auto member) {
        return std::ranges::all_of(batteries, [&](const Battery& battery) { return bool(battery.*member); });
    };
    const bool byEnergy = allTell(&Battery::fullEnergy);
    const bool byCharge = !byEnergy && allTell(&Battery::fullCharge);
    double sum = 0;
    double weights = 0;
    for (const Battery& battery : batteries) {
        const auto weight = byEnergy ? battery.fullEnergy : byCharge ? battery.fullCharge : std::nullopt;
        sum += weight.value_or(1) * battery.percent.value_or(0);
        weights += weight.value_or(1);
    }
    constexpr double rounding = 1e-6; // 57 / 100 * 100 lies below 57
    return static_cast<int>(std::floor(sum / weights + rounding));
}

std::optional<bool> onACOf(const std::vector<Battery>& batteries, const std::vector<bool>& supplies) {
    const auto anyIs = [&](std::string_view status) {
        return std::ranges::count(batteries, status, &Battery::status) > 0;
    };
    if (batteries.empty() || std::ranges::count(supplies, true) > 0 || anyIs("Charging"))
        return true;
    if (!supplies.empty() || anyIs("Discharging"))
        return false;
    if (anyIs("Full") || anyIs("Not charging"))
        return true;
    return std::nullopt;
}

} // namespace

PowerReading readPowerSupplies(const SystemTree& tree) {
    PowerReading reading;
    const auto paths = tree.entries("sys/class/power_supply");
    if (!paths)
        return reading;
    std::vector<Battery> batteries;
    std::vector<bool> supplies; // online or not
    for (const std::string& path : *paths) {
        const std::string type = tree.text(path + "/type").value_or("");
        if (tree.text(path + "/scope") == "Device")
            continue;
        if (type == "Battery") {
            if (tree.number(path + "/present") != 0)
                batteries.push_back(readBattery(tree, path, reading.faults));
        } else if (type == "Mains" || type == "Wireless" || type.starts_with("USB")) {
            // 2 is "online, with a voltage of its choice"
            if (const auto online = tree.number(path + "/online"))
                supplies.push_back(*online == 1 || *online == 2);
        }
    }
    reading.onAC = onACOf(batteries, supplies);
    reading.hasBattery = !batteries.empty();
    reading.percent = percentOf(std::move(batteries));
    return reading;
}

} // namespace zenka::platform
