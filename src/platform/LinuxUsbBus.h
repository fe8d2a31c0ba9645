#pragma once

#include "ports/UsbBus.h"

#include <QSocketNotifier>

#include <memory>

struct udev;
struct udev_monitor;

namespace zenka::platform {

/// The bus by libudev over sysfs. Destroyed on the main thread; watch() needs a QCoreApplication there,
/// devices() none.
class LinuxUsbBus final : public ports::UsbBus {
public:
    /// Root hubs are devices as well. The hub of a device is the kernel's name of it, such as "1-2".
    std::optional<std::vector<ports::UsbDevice>> devices() override;

    /// Several devices that come or go together may be told once. Told when udev has done with a device,
    /// so that its node is there with its rights.
    void watch(std::function<void()> changed) override;

private:
    bool openMonitor();
    bool takeEvents();

    struct Release {
        void operator()(udev* context) const;
        void operator()(udev_monitor* monitor) const;
    };
    std::function<void()> changed_;
    std::unique_ptr<udev, Release> context_;
    std::unique_ptr<udev_monitor, Release> monitor_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace zenka::platform
