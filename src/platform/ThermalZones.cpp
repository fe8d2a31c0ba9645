#include "platform/ThermalZones.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::platform {

namespace {

using ports::ThermalState;

constexpr double lowest = 1;
constexpr double highestOfZones = 200;
constexpr double highestOfProcessors = 150;

std::optional<double> within(std::optional<double> degrees, double highest) {
    return degrees && *degrees >= lowest && *degrees <= highest ? degrees : std::nullopt;
}

std::vector<std::string> zones(const SystemTree& tree) {
    return tree.entries("sys/class/thermal", "thermal_zone").value_or(std::vector<std::string>());
}

/// The trip points of a zone, °C.
struct Trips {
    std::optional<double> highestActive;
    std::optional<double> lowestPassive;
    std::optional<double> lowestHot;
    std::optional<double> critical;

    bool any() const { return highestActive || lowestPassive || lowestHot || critical; }
};

void keep(std::optional<double>& kept, double value, bool higher) {
    if (!kept)
        kept = value;
    else
        kept = higher ? std::max(*kept, value) : std::min(*kept, value);
}

Trips tripsOf(const SystemTree& tree, const std::string& zone) {
    constexpr std::string_view typeEnding = "_type";
    Trips trips;
    const auto files = tree.entries(zone, "trip_point_");
    for (const std::string& file : files.value_or(std::vector<std::string>())) {
        if (!file.ends_with(typeEnding))
            continue;
        const std::string point = file.substr(0, file.size() - typeEnding.size());
        const auto degrees = within(tree.degrees(point + "_temp"), highestOfZones);
        const std::string type = tree.text(file).value_or("");
        if (!degrees)
            continue;
        if (type == "active")
            keep(trips.highestActive, *degrees, true);
        else if (type == "passive")
            keep(trips.lowestPassive, *degrees, false);
        else if (type == "hot")
            keep(trips.lowestHot, *degrees, false);
        else if (type == "critical")
            keep(trips.critical, *degrees, false);
    }
    return trips;
}

ThermalState stateOf(double degrees, const Trips& trips) {
    const auto reached = [&](std::optional<double> trip, double below = 0) {
        return trip && degrees >= *trip - below;
    };
    if (reached(trips.lowestHot) || reached(trips.critical, 3))
        return ThermalState::critical;
    if (reached(trips.lowestPassive) || reached(trips.critical, 8))
        return ThermalState::serious;
    if (reached(trips.highestActive) || reached(trips.critical, 15))
        return ThermalState::fair;
    return ThermalState::nominal;
}

bool isProcessorChip(std::string_view name) {
    return name == "coretemp" || name == "k10temp" || name == "k8temp" || name == "zenpower" ||
           name.starts_with("cpu") || name.starts_with("soc");
}

/// The sensors of a chip. Some of AMD tell the true temperature ("Tdie") and besides one that drives the fan
/// and lies up to 27 °C above it.
std::vector<std::string> sensorsOf(const SystemTree& tree, const std::string& chip) {
    constexpr std::string_view ending = "_input";
    std::vector<std::string> all;
    std::vector<std::string> dies;
    const auto files = tree.entries(chip, "temp");
    for (const std::string& file : files.value_or(std::vector<std::string>())) {
        if (!file.ends_with(ending))
            continue;
        all.push_back(file);
        if (tree.text(file.substr(0, file.size() - ending.size()) + "_label") == "Tdie")
            dies.push_back(file);
    }
    return dies.empty() ? all : dies;
}

} // namespace

std::optional<ThermalState> readThermalZones(const SystemTree& tree) {
    std::optional<ThermalState> worst;
    for (const std::string& zone : zones(tree)) {
        if (tree.text(zone + "/type") == "x86_pkg_temp" || tree.text(zone + "/mode") == "disabled")
            continue;
        const auto degrees = within(tree.degrees(zone + "/temp"), highestOfZones);
        const Trips trips = tripsOf(tree, zone);
        if (degrees && trips.any())
            worst = std::max(worst, std::optional(stateOf(*degrees, trips)));
    }
    return worst;
}

std::optional<double> readProcessorTemperature(const SystemTree& tree) {
    std::vector<std::string> sensors;
    const auto chips = tree.entries("sys/class/hwmon", "hwmon");
    for (const std::string& chip : chips.value_or(std::vector<std::string>()))
        if (isProcessorChip(tree.text(chip + "/name").value_or("")))
            for (std::string& sensor : sensorsOf(tree, chip))
                sensors.push_back(std::move(sensor));
    for (const std::string& zone : zones(tree))
        if (const std::string type = tree.text(zone + "/type").value_or("");
            type == "x86_pkg_temp" || isProcessorChip(type))
            sensors.push_back(zone + "/temp");

    std::optional<double> hottest;
    for (const std::string& sensor : sensors)
        hottest = std::max(hottest, within(tree.degrees(sensor), highestOfProcessors));
    return hottest;
}

} // namespace zenka::platform
