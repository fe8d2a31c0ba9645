#pragma once

#include "cameras/DriverMachine.h"
#include "ports/ChildProcess.h"

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zenka::cameras {

/// What the Lumix drivers stand on. All of it outlives them and their queues.
struct LumixMachine {
    DriverMachine drivers;
    ports::ChildProcesses& children;

    std::filesystem::path programFolder; ///< of this executable; the helper lies beside it

    /// A variable of the environment; nothing for one that is not set or empty.
    std::function<std::optional<std::string>(const std::string& name)> environment =
        [](const std::string& name) -> std::optional<std::string> {
        const char* value = std::getenv(name.c_str());
        return value && *value ? std::optional<std::string>(value) : std::nullopt;
    };
};

/// Where the helper is and what it is started with.
namespace LumixPlaces {

/// The folder of what is delivered with the program and is no program itself.
std::filesystem::path resourceFolder(const std::filesystem::path& programFolder);

/// A program in the resource folder that stands in for our own; empty when there is none.
std::filesystem::path standaloneHelper(const std::filesystem::path& programFolder);

/// Our own, beside the executable; empty when there is none.
std::filesystem::path ownHelper(const std::filesystem::path& programFolder);

/// A script of the user's own: in ECLIPSE_LUMIX_DIR, else in the resource folder; empty when there is none.
std::filesystem::path helperPath(const LumixMachine& machine);

/// What runs such a script: ECLIPSE_PYTHON, else the newest of pyenv's, else pyenv's choice, else the
/// system's.
std::filesystem::path pythonExecutable(const LumixMachine& machine);

/// The library paths of what is delivered with the program, as far as the folders are there.
std::map<std::string, std::string> environment(const LumixMachine& machine);

/// The helper for the body at an address of a bus, in the order of the above: our own only where nobody has
/// put another in its place. Nothing when there is none.
std::optional<ports::ChildStart> startOf(const LumixMachine& machine, int bus, int address);

} // namespace LumixPlaces

} // namespace zenka::cameras
