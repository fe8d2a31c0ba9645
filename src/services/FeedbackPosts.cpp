#include "services/FeedbackPosts.h"

#include "exposure/ExposureScales.h"
#include "services/ServiceAddress.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <optional>
#include <utility>

namespace zenka::services {

namespace {

using Json = nlohmann::json;

constexpr base::Seconds shortTimeout{30};
constexpr base::Seconds longTimeout{60};
constexpr double sameShutterStops = 0.2; // the scale has three steps a stop

/// The fraction of a shutter: the body's own where it has a list of them, else the standard one.
Json fractionOf(const std::string& shutter, const std::vector<std::string>& fractions) {
    const auto seconds = exposure::readShutterChoice(shutter);
    if (!seconds || *seconds <= 0)
        return nullptr; // bulb, and the like
    const std::string* nearest = nullptr;
    double stopsOff = sameShutterStops;
    for (const std::string& fraction : fractions) {
        const auto candidate = exposure::readShutterChoice(fraction);
        if (!candidate || *candidate <= 0)
            continue;
        if (const double stops = std::abs(std::log2(*candidate / *seconds)); stops < stopsOff) {
            stopsOff = stops;
            nearest = &fraction;
        }
    }
    return nearest ? *nearest : std::string(exposure::snapToStandard(*seconds));
}

std::string failure(const ports::HttpReply& reply) {
    if (!reply.fault.empty())
        return "Could not be sent: " + reply.fault + ". Try again when there is a network.";
    return "Could not be sent: the service answered with status " + std::to_string(reply.status) +
           ". Try again later.";
}

} // namespace

void FeedbackPosts::post(const char* path, Json body, base::Seconds limit, const char* what, Done done) {
    ports::HttpRequest request;
    request.method = "POST";
    request.url = serviceAddress(ports_.settings, path);
    request.headers = {{"Content-Type", "application/json"}};
    body["app_version"] = appVersion_;
    request.body = body.dump(-1, ' ', false, Json::error_handler_t::replace);
    request.timeout = limit;
    if (request.url.empty()) {
        ports_.loop.post(lifeline_.guard([done = std::move(done)] {
            done({.sent = false,
                  .words = "Could not be sent: no service is set. Set its address in Settings."});
        }));
        return;
    }
    ports_.http.send(std::move(request),
                     lifeline_.guard([what, done = std::move(done)](const ports::HttpReply& reply) {
                         done({.sent = reply.ok(), .words = reply.ok() ? what : failure(reply)});
                     }));
}

void FeedbackPosts::postTrust(int score, Done done) {
    post("/api/trust", {{"score", score}}, shortTimeout, "The rating was sent. Thank you.", std::move(done));
}

void FeedbackPosts::sendRunReport(const RunReport& report, Done done) {
    const analysis::AnalysisResult& result = report.result;
    Json body{{"email", report.email},
              {"camera", result.camera},
              {"pass", result.pass()},
              {"expected", result.expectedTotal},
              {"actual", result.actualTotal},
              {"iso_ok", result.isoOK},
              {"ap_ok", result.apOK},
              {"sh_ok", result.shOK},
              {"matched", result.matched},
              {"jitter_mean_ms", result.jitterMeanMs},
              {"jitter_max_ms", result.jitterMaxMs},
              {"duration", result.durationStr()},
              {"mismatches", result.mismatches.size()},
              {"mismatch_list", result.mismatches}};
    if (!report.note.empty())
        body["note"] = report.note;
    if (!report.html.empty())
        body["html"] = report.html;
    post("/api/run-report", std::move(body), longTimeout, "The report was sent. Thank you.", std::move(done));
}

void FeedbackPosts::submitCameraProfile(const rig::CameraProfileResult& result, const std::string& email,
                                        const std::string& lens, Done done) {
    const cameras::ExposureChoices& choices = result.choices;
    Json shutters = Json::array();
    // A body may have the one list only.
    for (const std::string& value : choices.shutter.empty() ? choices.shutterFraction : choices.shutter)
        shutters.push_back(
            {{"value", value}, {"shutter_fraction", fractionOf(value, choices.shutterFraction)}});
    post("/api/camera-profile",
         {{"email", email},
          {"model", result.model},
          {"serial", result.serial},
          {"lens", lens},
          {"shutter", std::move(shutters)},
          {"iso", choices.iso},
          {"aperture", choices.aperture},
          {"exp_comp", choices.expComp}},
         longTimeout, "The profile was sent. Thank you.", std::move(done));
}

void FeedbackPosts::postContact(const Message& message, Done done) {
    Json body{{"kind", message.kind}, {"message", message.text}};
    if (!message.email.empty())
        body["email"] = message.email;
    if (!message.facts.empty())
        body["facts"] = message.facts;
    post("/api/contact", std::move(body), shortTimeout, "The message was sent. Thank you.", std::move(done));
}

} // namespace zenka::services
