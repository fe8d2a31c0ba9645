#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::script {

/// A line of a script that runs a command on this computer.
struct CommandLine {
    int lineNo = 0;    ///< 1-based
    std::string shell; ///< what the shell gets

    friend bool operator==(const CommandLine&, const CommandLine&) = default;
};

/// More than these nobody can be asked to look through.
inline constexpr std::size_t mostCommandsToRead = 100;
inline constexpr std::size_t mostCommandBytesToRead = 16 << 10;
bool canBeRead(std::span<const CommandLine> commands);

/// Every COMMAND line of a text that the compiler would take, whatever the site, in the text's order. Those
/// that speak are none. Pure.
std::vector<CommandLine> commandLines(std::string_view text);

} // namespace zenka::script
