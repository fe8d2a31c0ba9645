#pragma once

#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace zenka::platform {

/// A program to start in a process group of its own, with the usual signals and no descriptors but these
/// three.
struct Spawning {
    std::string program;                  ///< a path, or a name that is looked for in PATH
    std::vector<std::string> arguments;   ///< without the program
    std::vector<std::string> environment; ///< entries "NAME=value"
    int input = -1;
    int output = -1;
    int errors = -1;
};

/// Zero, or why not as the system counts faults. The descriptors are above 2.
int spawn(const Spawning& spawning, pid_t& child);

/// The entries of this process's environment, but for those of the names given.
std::vector<std::string> environmentWithout(const std::vector<std::string_view>& names);

} // namespace zenka::platform
