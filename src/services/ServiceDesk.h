#pragma once

#include "base/Published.h"
#include "ports/MachineNames.h"
#include "ports/Ports.h"
#include "rig/RigModel.h"
#include "services/FeedbackPosts.h"
#include "services/Telemetry.h"
#include "services/TrustBanner.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zenka::services {

/// All that goes to the service, tied to the rig. Nothing comes back into a run. Main thread.
class ServiceDesk {
public:
    /// All of these outlive it.
    ServiceDesk(const ports::Ports& ports, ports::MachineNames& names, rig::RigModel& rig,
                const std::string& appVersion);
    ServiceDesk(const ServiceDesk&) = delete;
    ServiceDesk& operator=(const ServiceDesk&) = delete;
    ~ServiceDesk();

    /// Once the rig is up.
    void start();

    /// The address of the service as it was typed, and its name for people: empty when none is set.
    std::string address() const;
    void setAddress(const std::string& address);
    const base::Published<std::string>& host() const { return host_; }

    /// The user's word on usage reports; nothing as long as nobody has asked.
    const base::Published<std::optional<bool>>& allowed() const { return allowed_; }
    void allow(bool allowed);
    /// There is a service, and the user was never asked.
    bool mayAsk() const { return !host_->empty() && !allowed_.get(); }

    /// An event that a driver or a measurement reports.
    void report(const std::string& event, const std::map<std::string, std::string>& fields);

    Telemetry& telemetry() { return telemetry_; }
    FeedbackPosts& posts() { return posts_; }
    TrustBanner& trust() { return trust_; }

private:
    void connectRig();
    void followHost();
    void sendReport(const rig::RunAnalyzer::Outgoing& outgoing);

    const ports::Ports& ports_;
    rig::RigModel& rig_;
    Telemetry telemetry_;
    FeedbackPosts posts_;
    TrustBanner trust_;
    base::Published<std::string> host_;
    base::Published<std::optional<bool>> allowed_;
    std::vector<sigc::connection> connections_;
    sigc::connection reports_; ///< there only while a report has somewhere to go
};

} // namespace zenka::services
