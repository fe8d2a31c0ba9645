#pragma once

#include "platform/Descriptor.h"
#include "ports/Volumes.h"

#include <QSocketNotifier>

#include <memory>

namespace zenka::platform {

/// Volumes below the folders where Linux desktops mount them. Network drives are left out: one whose server
/// is gone would hold up who looks at it for ever. watch() needs a QCoreApplication.
class LinuxVolumes final : public ports::Volumes {
public:
    /// Below /run/media and /media for this user, and /media and /mnt.
    LinuxVolumes();
    /// The table has the form of /proc/self/mountinfo.
    explicit LinuxVolumes(std::vector<std::filesystem::path> roots,
                          std::filesystem::path table = "/proc/self/mountinfo");

    std::vector<std::filesystem::path> mounted() override;
    void watch(std::function<void()> changed) override;

private:
    const std::vector<std::filesystem::path> roots_;
    const std::filesystem::path table_;
    std::function<void()> changed_;
    Descriptor mounts_; // the kernel's table
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace zenka::platform
