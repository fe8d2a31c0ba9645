#pragma once

#include "platform/SystemTree.h"
#include "ports/MachineSensors.h"

#include <optional>

namespace zenka::platform {

/// How hot the kernel's thermal zones (sys/class/thermal) are, measured by their own trip points. The worst
/// zone counts:
///
///   fair      its highest "active" trip point is reached, or it is within 15 °C of its critical one
///   serious   a "passive" trip point is reached, or it is within 8 °C of its critical one
///   critical  a "hot" trip point is reached, or it is within 3 °C of its critical one
///
/// Zones that are disabled are left out, and those of type x86_pkg_temp, whose trip points are marks at which
/// programs wish to be woken. What lies outside of 1 to 200 °C is unset or odd, temperature or trip point,
/// and does not count. Nothing where no zone has both.
std::optional<ports::ThermalState> readThermalZones(const SystemTree& tree);

/// The hottest sensor of the processor, °C: of the hwmon chips of processors (coretemp, k10temp, zenpower,
/// cpu_thermal and their like) and of the thermal zones x86_pkg_temp, cpu* and soc*. What lies outside of 1
/// to 150 °C does not count.
std::optional<double> readProcessorTemperature(const SystemTree& tree);

} // namespace zenka::platform
