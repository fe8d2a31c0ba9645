#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zenka::ports {

/// One PTP device that the system holds for its clients: it keeps the transactions, counts them and gives
/// each command its number. Main thread; every completion runs on it, exactly once, within a limit of the
/// system's own, also when the device goes, and never before the call has come back.
class PtpLink {
public:
    using Bytes = std::vector<std::uint8_t>;

    struct Answer {
        Bytes response; ///< its container; empty when the device did not answer
        Bytes data;     ///< what came before it, without a container
    };

    virtual ~PtpLink() = default;

    virtual std::string serialNumber() const = 0; ///< may be empty
    virtual std::string uuid() const = 0;         ///< of the device while it is plugged in

    virtual void requestOpenSession(std::function<void(bool ok)> done) = 0;
    virtual void requestCloseSession() = 0;

    /// Sends a command container, and data behind it unless that is empty.
    virtual void requestSendCommand(const Bytes& command, const Bytes& outData,
                                    std::function<void(const Answer&)> done) = 0;
};

/// Tells of PTP devices that come and go. Main thread.
class PtpBrowser {
public:
    using Told = std::function<void(const std::shared_ptr<PtpLink>& device)>;

    virtual ~PtpBrowser() = default;

    /// Tells of those that are there, and of changes from then on, until stop().
    virtual void start(Told added, Told removed) = 0;
    virtual void stop() = 0;
};

} // namespace zenka::ports
