#include "services/TrustBanner.h"

#include "services/ServiceAddress.h"

#include <algorithm>
#include <utility>

namespace zenka::services {

namespace {

constexpr double restSec = 604800; // a week

} // namespace

void TrustBanner::evaluateTrustBanner() {
    const bool rated = ports_.settings.text(trustRatedVersionKey) == appVersion_;
    const auto at = ports_.settings.number(trustRatedAtKey);
    const bool due = !at || ports_.clock.now().epochSec - *at > restSec;
    showTrustBanner_.set(!rated && due && !serviceAddress(ports_.settings, "").empty());
}

void TrustBanner::noteDate() {
    ports_.settings.setNumber(trustRatedAtKey, ports_.clock.now().epochSec);
    showTrustBanner_.set(false);
}

void TrustBanner::submitTrust(int score) {
    score = std::clamp(score, 1, 5);
    ports_.settings.setText(trustRatedVersionKey, appVersion_);
    noteDate();
    log_.pushLog("Trust rating " + std::to_string(score) + "/5 for v" + appVersion_ + ". Thank you.");
    posts_.postTrust(score, [&log = log_](const FeedbackPosts::Answer& answer) {
        if (!answer.sent)
            log.pushLog("⚠️ Trust rating: " + answer.words);
    });
}

void TrustBanner::dismissTrustBanner() {
    noteDate();
}

} // namespace zenka::services
