#include "cameras/gphoto2/GPhoto2Program.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace zenka::cameras::GPhoto2Places {

namespace {

namespace fs = std::filesystem;

bool executable(const fs::path& path) {
    std::error_code fault;
    const fs::file_status status = fs::status(path, fault);
    constexpr fs::perms any = fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
    return !fault && fs::is_regular_file(status) && (status.permissions() & any) != fs::perms::none;
}

/// What a folder holds, sorted; nothing for one that cannot be read.
std::vector<fs::path> entries(const fs::path& folder) {
    std::vector<fs::path> found;
    std::error_code fault;
    for (fs::directory_iterator at(folder, fault), end; !fault && at != end; at.increment(fault))
        found.push_back(at->path());
    std::ranges::sort(found);
    return found;
}

bool namedForVersion(const fs::path& folder) {
    const std::string name = folder.filename().string();
    return !name.empty() && name.front() >= '0' && name.front() <= '9';
}

bool holdsPlugins(const fs::path& folder) {
    return std::ranges::any_of(entries(folder),
                               [](const fs::path& file) { return file.extension() == ".so"; });
}

} // namespace

fs::path bundleRoot(const fs::path& programFolder) {
    if (programFolder.empty())
        return {};
    const fs::path root = (programFolder / "../lib/zenka/gphoto2").lexically_normal();
    std::error_code fault;
    return fs::exists(root / "bin/gphoto2", fault) ? root : fs::path();
}

std::string binary(const fs::path& bundleRoot, std::span<const fs::path> candidates) {
    if (!bundleRoot.empty())
        return bundleRoot / "bin/gphoto2";
    const auto found = std::ranges::find_if(candidates, executable);
    return found == candidates.end() ? "gphoto2" : found->string();
}

std::map<std::string, std::string> pluginEnv(const fs::path& bundleRoot) {
    std::map<std::string, std::string> environment;
    if (bundleRoot.empty())
        return environment;
    for (const auto& [variable, folder] :
         {std::pair("CAMLIBS", "lib/libgphoto2"), std::pair("IOLIBS", "lib/libgphoto2_port")}) {
        for (const fs::path& version : entries(bundleRoot / folder)) {
            if (namedForVersion(version) && holdsPlugins(version)) {
                environment[variable] = version.string();
                break;
            }
        }
    }
    return environment;
}

} // namespace zenka::cameras::GPhoto2Places
