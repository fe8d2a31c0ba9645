#pragma once

#include "ports/Settings.h"
#include "rig/shared/SettingsKeys.h"

#include <string>
#include <string_view>

namespace zenka::services {

/// The setting of the server that the maker of the program runs, "https://host"; a deployment gives it.
inline constexpr const char* serviceHostKey = rig::settingsKeys::serviceHost;

/// The address of a path on that server; empty when no server is set or what is set is no address.
std::string serviceAddress(const ports::Settings& settings, std::string_view path);

/// The name of that server, for people: "zenka.example"; empty when none is set.
std::string serviceHostName(const ports::Settings& settings);

} // namespace zenka::services
