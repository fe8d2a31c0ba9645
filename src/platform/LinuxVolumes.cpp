#include "platform/LinuxVolumes.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <fstream>
#include <pwd.h>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace zenka::platform {

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> usualRoots() {
    std::vector<fs::path> roots;
    // The name, and not $USER, which a session need not have.
    if (const passwd* user = ::getpwuid(::getuid())) {
        roots.push_back(fs::path("/run/media") / user->pw_name);
        roots.push_back(fs::path("/media") / user->pw_name);
    }
    roots.emplace_back("/media");
    roots.emplace_back("/mnt");
    return roots;
}

bool isNetwork(std::string_view fileSystem) {
    constexpr std::array<std::string_view, 12> kinds{"nfs",    "nfs4",   "cifs",       "smb3",
                                                     "smbfs",  "9p",     "ceph",       "glusterfs",
                                                     "davfs2", "autofs", "fuse.sshfs", "afs"};
    return std::ranges::count(kinds, fileSystem) > 0;
}

/// The path of a field of the table, in which blanks and their like are written as "\040".
std::string withoutOctal(std::string_view field) {
    std::string path;
    for (std::size_t at = 0; at < field.size(); ++at) {
        if (field[at] != '\\' || field.size() - at < 4) {
            path += field[at];
            continue;
        }
        const auto digit = [&](std::size_t place) { return (field[at + place] - '0') & 7; };
        path += static_cast<char>(digit(1) << 6 | digit(2) << 3 | digit(3));
        at += 3;
    }
    return path;
}

/// Where network drives are mounted. The kernel's table knows without asking a server.
std::set<std::string> networkMounts(const fs::path& table) {
    std::set<std::string> places;
    std::ifstream stream(table);
    for (std::string line; std::getline(stream, line);) {
        const auto fields = base::splitPieces(line, ' ');
        const auto dash = std::ranges::find(fields, "-");
        if (fields.size() > 4 && dash != fields.end() && dash + 1 != fields.end() && isNetwork(dash[1]))
            places.insert(withoutOctal(fields[4]));
    }
    return places;
}

} // namespace

LinuxVolumes::LinuxVolumes() : LinuxVolumes(usualRoots()) {
}

LinuxVolumes::LinuxVolumes(std::vector<fs::path> roots, fs::path table)
    : roots_(std::move(roots)), table_(std::move(table)) {
}

std::vector<fs::path> LinuxVolumes::mounted() {
    const std::set<std::string> elsewhere = networkMounts(table_);
    std::vector<fs::path> volumes;
    for (const fs::path& root : roots_) {
        std::error_code fault;
        for (fs::directory_iterator at(root, fault), end; !fault && at != end; at.increment(fault)) {
            // The directory knows what is a folder without a look at it.
            std::error_code unknown;
            if (!elsewhere.contains(at->path()) && at->is_directory(unknown))
                volumes.push_back(at->path());
        }
    }
    return volumes;
}

void LinuxVolumes::watch(std::function<void()> changed) {
    changed_ = std::move(changed);
    notifier_.reset();
    if (!changed_)
        return;
    // The kernel marks the table as exceptional when a mount comes or goes, and once more is as good as once.
    mounts_ = Descriptor(::open(table_.c_str(), O_RDONLY | O_CLOEXEC));
    if (!mounts_)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(mounts_.get(), QSocketNotifier::Exception);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { changed_(); });
}

} // namespace zenka::platform
