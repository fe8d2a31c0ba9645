#pragma once

#include "rig/bodies/MeasuredFloors.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <optional>
#include <string_view>

/// What the fields of a rig's file may hold, which comes from anywhere.
namespace zenka::rig::RigFields {

/// Of one list; no rig comes near it.
inline constexpr std::size_t mostItems = 1000;

/// Discarded for a text that is no JSON, or holds more values than any rig. What is nested deeper than in a
/// rig is left out.
nlohmann::json parse(std::string_view text);

/// Words on one line, not overly long. Empty ones are.
bool isLine(std::string_view text);

/// Degrees and metres that a place on Earth can have.
bool isPlace(double lat, double lon, double elev);

/// The floors of a model, in seconds.
nlohmann::json floorsJson(const MeasuredFloors::OfModel& floors);
/// Nothing for what is no object, or holds no measurement. One that makes no sense costs the whole.
std::optional<MeasuredFloors::OfModel> floorsFrom(const nlohmann::json& json);

} // namespace zenka::rig::RigFields
