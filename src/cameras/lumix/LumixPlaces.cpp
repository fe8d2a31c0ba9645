#include "base/Text.h"
#include "cameras/lumix/LumixMachine.h"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

namespace zenka::cameras::LumixPlaces {

namespace {

namespace fs = std::filesystem;

constexpr char helperName[] = "zenka-lumix-helper";
constexpr char scriptName[] = "lumix_helper.py";

bool isFile(const fs::path& path) {
    std::error_code fault;
    return fs::is_regular_file(path, fault);
}

/// "3.9.2" before "3.12.1".
std::vector<int> versionOf(const fs::path& folder) {
    std::vector<int> numbers;
    const std::string name = folder.filename().string();
    for (const auto part : base::split(name, '.'))
        numbers.push_back(base::readInteger(part).value_or(-1));
    return numbers;
}

/// The Pythons that pyenv keeps, newest first.
std::vector<fs::path> pyenvVersions(const fs::path& home) {
    std::vector<fs::path> folders;
    std::error_code fault;
    for (fs::directory_iterator at(home / ".pyenv/versions", fault), end; !fault && at != end;
         at.increment(fault))
        folders.push_back(at->path());
    std::ranges::sort(folders, [](const auto& a, const auto& b) { return versionOf(a) > versionOf(b); });
    for (fs::path& folder : folders)
        folder /= "bin/python3";
    return folders;
}

} // namespace

fs::path resourceFolder(const fs::path& programFolder) {
    return (programFolder / "../lib/zenka").lexically_normal();
}

fs::path standaloneHelper(const fs::path& programFolder) {
    const fs::path path = resourceFolder(programFolder) / "standalone" / helperName;
    return !programFolder.empty() && isFile(path) ? path : fs::path();
}

fs::path ownHelper(const fs::path& programFolder) {
    const fs::path path = programFolder / helperName;
    return !programFolder.empty() && isFile(path) ? path : fs::path();
}

fs::path helperPath(const LumixMachine& machine) {
    if (const auto own = machine.environment("ECLIPSE_LUMIX_DIR"); own && isFile(fs::path(*own) / scriptName))
        return fs::path(*own) / scriptName;
    const fs::path delivered = resourceFolder(machine.programFolder) / "lumix" / scriptName;
    return !machine.programFolder.empty() && isFile(delivered) ? delivered : fs::path();
}

fs::path pythonExecutable(const LumixMachine& machine) {
    std::vector<fs::path> candidates;
    if (const auto asked = machine.environment("ECLIPSE_PYTHON"))
        candidates.emplace_back(*asked);
    if (const auto home = machine.environment("HOME")) {
        std::ranges::move(pyenvVersions(*home), std::back_inserter(candidates));
        candidates.push_back(fs::path(*home) / ".pyenv/shims/python3");
    }
    candidates.insert(candidates.end(), {"/usr/local/bin/python3", "/usr/bin/python3"});
    const auto found = std::ranges::find_if(candidates, isFile);
    return found == candidates.end() ? fs::path("python3") : *found;
}

std::map<std::string, std::string> environment(const LumixMachine& machine) {
    std::map<std::string, std::string> variables;
    if (machine.programFolder.empty())
        return variables;
    const fs::path resources = resourceFolder(machine.programFolder);
    const auto prepend = [&](const char* variable, const fs::path& folder) {
        std::error_code fault;
        if (!fs::is_directory(folder, fault))
            return;
        const auto before = machine.environment(variable);
        variables[variable] = folder.string() + (before ? ":" + *before : "");
    };
    prepend("LD_LIBRARY_PATH", resources / "gphoto2/lib");
    prepend("PYTHONPATH", resources / "vendor");
    if (const fs::path library = resources / "gphoto2/lib/libusb-1.0.so.0"; isFile(library))
        variables["LIBUSB"] = library.string();
    return variables;
}

std::optional<ports::ChildStart> startOf(const LumixMachine& machine, int bus, int address) {
    ports::ChildStart start{.environment = environment(machine)};
    if (const fs::path other = standaloneHelper(machine.programFolder); !other.empty()) {
        start.program = other.string();
    } else if (const fs::path script = helperPath(machine); !script.empty()) {
        start.program = pythonExecutable(machine).string();
        start.arguments = {script.string()};
    } else if (const fs::path own = ownHelper(machine.programFolder); !own.empty()) {
        start.program = own.string();
    } else {
        return std::nullopt;
    }
    for (const std::string& word :
         {std::string("--bus"), std::to_string(bus), std::string("--address"), std::to_string(address)})
        start.arguments.push_back(word);
    return start;
}

} // namespace zenka::cameras::LumixPlaces
