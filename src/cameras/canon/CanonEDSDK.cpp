#include "cameras/canon/CanonEDSDK.h"

#include "cameras/canon/canon_bridge.h"
#include "cameras/usb/USBHolders.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace zenka::cameras {

namespace {

constexpr std::int32_t mostBodies = 16;
constexpr std::int32_t nameBytes = 256;
using Names = std::array<char, static_cast<std::size_t>(mostBodies) * nameBytes>;

} // namespace

CanonEDSDK::CanonEDSDK(CanonMachine machine) : machine_(std::move(machine)) {
    zenka_canon_use(machine_.libraries);
}

std::vector<CanonEDSDK::Found> CanonEDSDK::enumerate() {
    std::vector<Found> found;
    machine_.onMain([&] {
        if (!ready_)
            ready_ = zenka_canon_init() == 1;
        Names names{};
        Names serials{};
        const std::int32_t count = zenka_canon_enumerate(names.data(), serials.data(), mostBodies, nameBytes);
        for (std::int32_t slot = 0; slot < count; ++slot) {
            if (zenka_canon_slot_in_use(slot))
                continue;
            const std::string model = &names[static_cast<std::size_t>(slot) * nameBytes];
            found.push_back({.model = model.empty() ? "Canon" : model, .serial = {}, .index = slot});
        }
    });
    return found;
}

CanonEDSDK::Session CanonEDSDK::connect(int index) const {
    Session session;
    machine_.onMain([&] { session.handle = zenka_canon_connect(index); });
    CanonSerial serial(session.handle);
    std::optional<base::Seconds> wait;
    while (machine_.onMain([&] { wait = serial.step(); }) && wait)
        machine_.driver.pause(*wait);
    session.serial = serial.text();
    return session;
}

void CanonEDSDK::close(std::int64_t handle) const {
    machine_.onMain([&] { zenka_canon_disconnect(handle); });
}

std::int64_t CanonEDSDK::reopen(std::int64_t handle) const {
    std::int64_t rebuilt = 0;
    machine_.onMain([&] { rebuilt = zenka_canon_reopen(handle); });
    return rebuilt;
}

bool CanonEDSDK::sessionDead(std::int64_t handle) const {
    bool dead = false;
    machine_.onMain([&] { dead = zenka_canon_session_dead(handle) == 1; });
    return dead;
}

void CanonEDSDK::releaseSDK() {
    machine_.onMain([&] {
        zenka_canon_release();
        ready_ = false;
    });
}

bool CanonEDSDK::ready() const {
    bool ready = false;
    machine_.onMain([&] { ready = ready_; });
    return ready;
}

std::string CanonEDSDK::diag() const {
    std::array<char, 256> text{};
    machine_.onMain([&] { zenka_canon_diag(text.data(), static_cast<std::int32_t>(text.size())); });
    return text.data();
}

bool CanonEDSDK::canonUSBPresent() const {
    const auto devices = machine_.bus.devices();
    return devices && std::ranges::count(*devices, USBHolders::canonVendorID, &ports::UsbDevice::vid) > 0;
}

} // namespace zenka::cameras
