#include "platform/LinuxUsbBus.h"

#include "base/Text.h"
#include "platform/Guarded.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <libudev.h>
#include <string_view>
#include <utility>

namespace zenka::platform {

namespace {

struct Unref {
    void operator()(udev* context) const { udev_unref(context); }
    void operator()(udev_enumerate* list) const { udev_enumerate_unref(list); }
    void operator()(udev_device* device) const { udev_device_unref(device); }
};

std::string attribute(udev_device* device, const char* name) {
    const char* value = udev_device_get_sysattr_value(device, name);
    return value ? std::string(base::trimmed(value)) : std::string();
}

std::optional<std::string> attributeIfAny(udev_device* device, const char* name) {
    std::string value = attribute(device, name);
    return value.empty() ? std::nullopt : std::optional(std::move(value));
}

std::optional<int> number(udev_device* device, const char* name, int radix) {
    const std::string text = attribute(device, name);
    int value = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value, radix);
    return fault == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

/// Nothing for a device that was pulled while it was read.
std::optional<ports::UsbDevice> usbDevice(udev_device* device) {
    const auto vid = number(device, "idVendor", 16);
    const auto pid = number(device, "idProduct", 16);
    const auto bus = number(device, "busnum", 10);
    const auto address = number(device, "devnum", 10);
    if (!vid || !pid || !bus || !address)
        return std::nullopt;
    udev_device* hub = udev_device_get_parent_with_subsystem_devtype(device, "usb", "usb_device");
    return ports::UsbDevice{.product = attribute(device, "product"),
                            .vendor = attributeIfAny(device, "manufacturer"),
                            .serial = attributeIfAny(device, "serial"),
                            .vid = *vid,
                            .pid = *pid,
                            .busNumber = *bus,
                            .address = *address,
                            .hub = hub ? udev_device_get_sysname(hub) : ""};
}

} // namespace

void LinuxUsbBus::Release::operator()(udev* context) const {
    udev_unref(context);
}

void LinuxUsbBus::Release::operator()(udev_monitor* monitor) const {
    udev_monitor_unref(monitor);
}

std::optional<std::vector<ports::UsbDevice>> LinuxUsbBus::devices() {
    // libudev's objects belong to one thread, so each call has its own
    const std::unique_ptr<udev, Unref> context(udev_new());
    const std::unique_ptr<udev_enumerate, Unref> list(context ? udev_enumerate_new(context.get()) : nullptr);
    if (!list || udev_enumerate_add_match_subsystem(list.get(), "usb") < 0 ||
        udev_enumerate_add_match_property(list.get(), "DEVTYPE", "usb_device") < 0 ||
        udev_enumerate_scan_devices(list.get()) < 0)
        return std::nullopt;
    std::vector<ports::UsbDevice> found;
    udev_list_entry* entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(list.get())) {
        const std::unique_ptr<udev_device, Unref> device(
            udev_device_new_from_syspath(context.get(), udev_list_entry_get_name(entry)));
        if (auto read = device ? usbDevice(device.get()) : std::nullopt)
            found.push_back(*std::move(read));
    }
    std::ranges::sort(found, {}, [](const ports::UsbDevice& device) {
        return std::pair(device.busNumber, device.address);
    });
    return found;
}

void LinuxUsbBus::watch(std::function<void()> changed) {
    changed_ = std::move(changed);
    if (notifier_)
        notifier_->setEnabled(false);
    if (!changed_ || (!monitor_ && !openMonitor()))
        return;
    takeEvents(); // of before
    notifier_->setEnabled(true);
}

bool LinuxUsbBus::openMonitor() {
    context_.reset(udev_new());
    std::unique_ptr<udev_monitor, Release> monitor(
        context_ ? udev_monitor_new_from_netlink(context_.get(), "udev") : nullptr);
    if (!monitor || udev_monitor_filter_add_match_subsystem_devtype(monitor.get(), "usb", "usb_device") < 0 ||
        udev_monitor_enable_receiving(monitor.get()) < 0)
        return false;
    monitor_ = std::move(monitor);
    notifier_ = std::make_unique<QSocketNotifier>(udev_monitor_get_fd(monitor_.get()), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] {
        if (!takeEvents())
            return;
        if (const auto changed = changed_) // kept here, as it may watch anew, or no more
            runGuarded("main thread", changed);
    });
    return true;
}

/// Whether any of them was a coming or a going.
bool LinuxUsbBus::takeEvents() {
    bool changed = false;
    for (;;) {
        errno = 0;
        const std::unique_ptr<udev_device, Unref> device(udev_monitor_receive_device(monitor_.get()));
        if (!device) {
            if (errno == ENOBUFS) { // some were lost
                changed = true;
                continue;
            }
            return changed;
        }
        const char* action = udev_device_get_action(device.get());
        changed |= action && (std::string_view(action) == "add" || std::string_view(action) == "remove");
    }
}

} // namespace zenka::platform
