#pragma once

#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/shared/RigLog.h"
#include "services/FeedbackPosts.h"

#include <string>

namespace zenka::services {

inline constexpr char trustRatedVersionKey[] = "zenka.trustRatedVersion";
inline constexpr char trustRatedAtKey[] = "zenka.trustRatedAt"; ///< seconds since the epoch

/// Asks the user now and then how far he trusts the program, from 1 to 5. Main thread.
class TrustBanner {
public:
    TrustBanner(const ports::Ports& ports, rig::RigLog& log, FeedbackPosts& posts, std::string appVersion)
        : ports_(ports), log_(log), posts_(posts), appVersion_(std::move(appVersion)) {}

    /// Shows the question where there is a service to take the answer: unless this version was rated, or a
    /// rating was given or put off in the last week.
    void evaluateTrustBanner();
    void submitTrust(int score);
    /// Puts it off: it comes back after a week.
    void dismissTrustBanner();

    const base::Published<bool>& showTrustBanner() const { return showTrustBanner_; }

private:
    void noteDate();

    const ports::Ports& ports_;
    rig::RigLog& log_;
    FeedbackPosts& posts_;
    const std::string appVersion_;
    base::Published<bool> showTrustBanner_{false};
};

} // namespace zenka::services
