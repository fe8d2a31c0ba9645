#pragma once

#include <filesystem>
#include <functional>
#include <vector>

namespace zenka::ports {

/// The volumes that the desktop mounts: memory cards, disks on a cable.
class Volumes {
public:
    virtual ~Volumes() = default;

    /// Their folders. Waits for the disk. Any thread.
    virtual std::vector<std::filesystem::path> mounted() = 0;

    /// Tells of each volume that comes or goes, on the main thread; an empty function ends it. Main thread.
    virtual void watch(std::function<void()> changed) = 0;
};

} // namespace zenka::ports
