#include "platform/LinuxVolumes.h"

#include <algorithm>
#include <fcntl.h>
#include <pwd.h>
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

} // namespace

LinuxVolumes::LinuxVolumes() : LinuxVolumes(usualRoots()) {
}

LinuxVolumes::LinuxVolumes(std::vector<fs::path> roots) : roots_(std::move(roots)) {
}

std::vector<fs::path> LinuxVolumes::mounted() {
    std::vector<fs::path> volumes;
    for (const fs::path& root : roots_) {
        std::error_code fault;
        for (fs::directory_iterator at(root, fault), end; !fault && at != end; at.increment(fault)) {
            std::error_code unknown;
            if (at->is_directory(unknown))
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
    mounts_ = Descriptor(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
    if (!mounts_)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(mounts_.get(), QSocketNotifier::Exception);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { changed_(); });
}

} // namespace zenka::platform
