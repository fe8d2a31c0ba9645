#pragma once

#include "base/Instant.h"
#include "base/Lifeline.h"
#include "base/Published.h"
#include "gps/GPSReceiver.h"
#include "ports/Ports.h"
#include "rig/shared/RigLog.h"

#include <optional>
#include <string>

namespace zenka::rig {

/// What the computer's clock is worth: holds it against a satellite receiver and a server. Nothing here sets
/// a clock; arming corrects for the receiver's time, the server's is only shown. Main thread.
class TimeSources {
public:
    enum class ClockSource { systemOnly, network, gps };

    TimeSources(const ports::Ports& ports, RigLog& log);

    void startGPS();

    /// Asks the server once. Without an answer that makes sense, what was known before stands.
    void checkClockSkew();
    /// The server that is asked; empty when none is to be.
    std::string timeServer() const;
    void setTimeServer(const std::string& address);
    const base::Published<bool>& checking() const { return checking_; }
    /// Why the last check came to nothing, a sentence; empty when it did not.
    const std::string& checkFault() const { return checkFault_; }

    ClockSource activeClockSource() const;

    /// Seconds that the computer's clock is ahead of the server's; good to one or two.
    const base::Published<std::optional<double>>& clockSkewSeconds() const { return clockSkewSeconds_; }
    /// Seconds that it is ahead of satellite time; there only while a lock is streaming.
    const base::Published<std::optional<double>>& gpsOffsetSeconds() const { return gpsOffsetSeconds_; }
    const base::Published<bool>& gpsConnected() const { return gpsConnected_; }
    /// At most every two seconds, but at once when a lock comes or goes.
    const base::Published<std::optional<gps::GPSFix>>& gpsFix() const { return gpsFix_; }
    /// Since when a receiver streams without a lock, wall time.
    const std::optional<base::Instant>& gpsAcquiringSince() const { return gpsAcquiringSince_; }
    const std::optional<base::Instant>& lastGPSStamp() const { return lastGPSStamp_; }

    /// Whether the system's own time service says that it keeps the clock right.
    std::optional<bool> systemSynchronised() const { return ports_.clock.synchronised(); }

    /// By the computer's clock.
    base::Instant now() const { return ports_.clock.now(); }

    /// Any of it has changed.
    sigc::signal<void()>& changed() { return changed_; }

private:
    void connectionChanged(bool connected);
    void update(const gps::GPSFix& fix, std::optional<base::Instant> wall);
    void takeReply(const ports::HttpReply& reply, base::Instant asked);

    const ports::Ports& ports_;
    RigLog& log_;
    gps::GPSReceiver gps_;
    base::Published<std::optional<double>> clockSkewSeconds_;
    base::Published<std::optional<double>> gpsOffsetSeconds_;
    base::Published<bool> gpsConnected_{false};
    base::Published<std::optional<gps::GPSFix>> gpsFix_;
    base::Published<bool> checking_{false};
    std::string checkFault_;
    std::optional<base::Instant> gpsAcquiringSince_;
    std::optional<base::Instant> lastGPSStamp_;
    std::optional<double> lastGPSPublish_; // uptime seconds
    sigc::signal<void()> changed_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
