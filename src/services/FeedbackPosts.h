#pragma once

#include "analysis/AnalysisResult.h"
#include "base/Lifeline.h"
#include "ports/Ports.h"
#include "rig/shots/CameraProfiler.h"

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <string>
#include <utility>

namespace zenka::services {

/// What the user sends to the service by his own act. Each post goes once and is not tried again by itself.
/// Main thread; it never waits.
class FeedbackPosts {
public:
    /// What came of a post, in one sentence. It comes once, never from within the call.
    struct Answer {
        bool sent = false;
        std::string words;
    };
    using Done = std::function<void(const Answer&)>;

    FeedbackPosts(const ports::Ports& ports, std::string appVersion)
        : ports_(ports), appVersion_(std::move(appVersion)) {}

    /// A rating, 1 to 5.
    void postTrust(int score, Done done);

    /// The report on a card, with the page as it was written and what the user has to say of it.
    struct RunReport {
        analysis::AnalysisResult result;
        std::string html;
        std::string email;
        std::string note;
    };
    void sendRunReport(const RunReport& report, Done done);

    /// What a body was found to offer.
    void submitCameraProfile(const rig::CameraProfileResult& result, const std::string& email,
                             const std::string& lens, Done done);

    /// A message; `kind` is "bug", "wish" or "question". What is empty is left out.
    struct Message {
        std::string kind;
        std::string text;
        std::string email;
        std::string facts; ///< on the program and its log
    };
    void postContact(const Message& message, Done done);

private:
    void post(const char* path, nlohmann::json body, base::Seconds limit, const char* what, Done done);

    const ports::Ports& ports_;
    const std::string appVersion_;
    base::Lifeline lifeline_;
};

} // namespace zenka::services
