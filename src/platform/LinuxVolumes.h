#pragma once

#include "platform/Descriptor.h"
#include "ports/Volumes.h"

#include <QSocketNotifier>

#include <memory>

namespace zenka::platform {

/// Volumes below the folders where Linux desktops mount them. watch() needs a QCoreApplication.
class LinuxVolumes final : public ports::Volumes {
public:
    /// Below /run/media and /media for this user, and /media and /mnt.
    LinuxVolumes();
    explicit LinuxVolumes(std::vector<std::filesystem::path> roots);

    std::vector<std::filesystem::path> mounted() override;
    void watch(std::function<void()> changed) override;

private:
    const std::vector<std::filesystem::path> roots_;
    std::function<void()> changed_;
    Descriptor mounts_; // the kernel's table
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace zenka::platform
