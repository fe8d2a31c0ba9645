#include "cameras/lumix/ICCManager.h"

#include <utility>

namespace zenka::cameras {

ICCManager::~ICCManager() {
    if (browsing_)
        browser_.stop();
    for (const std::string& serial : openSessions_)
        bySerial_.at(serial)->requestCloseSession();
    for (auto& [serial, waiters] : openWaiters_) {
        for (Waiter& waiter : waiters)
            loop_.post([waiter = std::move(waiter)] { waiter(false); });
    }
}

void ICCManager::start() {
    {
        const std::lock_guard lock(lock_);
        if (std::exchange(browsing_, true))
            return;
    }
    browser_.start(lifeline_.guard([this](const Device& device) { didAdd(device); }),
                   lifeline_.guard([this](const Device& device) { didRemove(device); }));
}

bool ICCManager::browsing() const {
    const std::lock_guard lock(lock_);
    return browsing_;
}

std::string ICCManager::key(const ports::PtpLink& device) {
    const std::string serial = device.serialNumber();
    return serial.empty() ? device.uuid() : serial;
}

std::vector<std::string> ICCManager::serials() const {
    const std::lock_guard lock(lock_);
    std::vector<std::string> list;
    list.reserve(bySerial_.size());
    for (const auto& [serial, device] : bySerial_)
        list.push_back(serial);
    return list;
}

bool ICCManager::hasSession(const std::string& serial) const {
    const std::lock_guard lock(lock_);
    return openSessions_.contains(serial);
}

ICCManager::Device ICCManager::deviceOf(const std::string& serial) const {
    const std::lock_guard lock(lock_);
    const auto found = bySerial_.find(serial);
    return found == bySerial_.end() ? nullptr : found->second;
}

void ICCManager::didAdd(const Device& device) {
    if (const Device before = deviceOf(key(*device)); before && before != device)
        didRemove(before); // plugged in anew before its going was told
    const std::lock_guard lock(lock_);
    bySerial_[key(*device)] = device;
}

void ICCManager::didRemove(const Device& device) {
    std::vector<Waiter> waiters;
    {
        const std::lock_guard lock(lock_);
        const auto found = bySerial_.find(key(*device));
        if (found == bySerial_.end() || found->second != device)
            return; // another one has taken its place
        openSessions_.erase(found->first);
        if (auto waiting = openWaiters_.extract(found->first); !waiting.empty())
            waiters = std::move(waiting.mapped());
        bySerial_.erase(found);
    }
    for (const Waiter& waiter : waiters)
        waiter(false);
}

void ICCManager::ensureSession(const std::string& serial, std::function<void(bool)> then) {
    const Device device = deviceOf(serial);
    if (!device || hasSession(serial)) {
        loop_.post([then = std::move(then), open = device != nullptr] { then(open); });
        return;
    }
    bool first = false;
    {
        const std::lock_guard lock(lock_);
        auto& waiters = openWaiters_[serial];
        first = waiters.empty();
        waiters.push_back(std::move(then));
    }
    if (first)
        device->requestOpenSession(lifeline_.guard(
            [this, serial, opened = device.get()](bool ok) { didOpenSession(serial, opened, ok); }));
}

void ICCManager::didOpenSession(const std::string& serial, const ports::PtpLink* device, bool ok) {
    std::vector<Waiter> waiters;
    {
        const std::lock_guard lock(lock_);
        const auto found = bySerial_.find(serial);
        if (found == bySerial_.end() || found->second.get() != device)
            return; // its waiters were told when it went
        if (ok)
            openSessions_.insert(serial);
        if (auto waiting = openWaiters_.extract(serial); !waiting.empty())
            waiters = std::move(waiting.mapped());
    }
    for (const Waiter& waiter : waiters)
        waiter(ok);
}

void ICCManager::closeSession(const std::string& serial) {
    const Device device = deviceOf(serial);
    bool open = false;
    {
        const std::lock_guard lock(lock_);
        open = openSessions_.erase(serial) > 0;
    }
    if (open && device)
        device->requestCloseSession();
}

void ICCManager::send(const std::string& serial, const Bytes& command, const Bytes& outData,
                      std::function<void(const Bytes&, bool)> completion) {
    const Device device = deviceOf(serial);
    if (!device) {
        loop_.post([completion = std::move(completion)] { completion({}, true); });
        return;
    }
    device->requestSendCommand(command, outData,
                               [completion = std::move(completion)](const ports::PtpLink::Answer& answer) {
                                   completion(answer.response, answer.response.empty());
                               });
}

} // namespace zenka::cameras
