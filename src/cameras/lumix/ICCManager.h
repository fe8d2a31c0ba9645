#pragma once

#include "base/Lifeline.h"
#include "ports/MainLoop.h"
#include "ports/PtpLink.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace zenka::cameras {

/// The PTP devices that the system holds for us, and the sessions with them, one for each. Shared by the
/// cameras that are driven so. Calls and completions are on the main thread, and completions never run
/// before the call has come back; what is known may be asked on any.
class ICCManager {
public:
    using Bytes = ports::PtpLink::Bytes;

    ICCManager(ports::PtpBrowser& browser, ports::MainLoop& loop) : browser_(browser), loop_(loop) {}
    ~ICCManager();
    ICCManager(const ICCManager&) = delete;
    ICCManager& operator=(const ICCManager&) = delete;

    void start();
    bool browsing() const;

    /// The serial number of a device, or its UUID where it has none.
    static std::string key(const ports::PtpLink& device);
    std::vector<std::string> serials() const;
    bool hasSession(const std::string& serial) const;

    /// Opens a session where none is open. A request that comes while one is being opened waits for that.
    void ensureSession(const std::string& serial, std::function<void(bool open)> then);
    void closeSession(const std::string& serial);

    /// Sends one command. noResponse when the device is not there or kept silent.
    void send(const std::string& serial, const Bytes& command, const Bytes& outData,
              std::function<void(const Bytes& response, bool noResponse)> completion);

private:
    using Device = std::shared_ptr<ports::PtpLink>;
    using Waiter = std::function<void(bool)>;

    void didAdd(const Device& device);
    void didRemove(const Device& device);
    void didOpenSession(const std::string& serial, const ports::PtpLink* device, bool ok);
    Device deviceOf(const std::string& serial) const;

    ports::PtpBrowser& browser_;
    ports::MainLoop& loop_;
    mutable std::mutex lock_;
    std::map<std::string, Device> bySerial_;
    std::set<std::string> openSessions_;
    std::map<std::string, std::vector<Waiter>> openWaiters_;
    bool browsing_ = false;
    base::Lifeline lifeline_;
};

} // namespace zenka::cameras
