#include "services/ServiceDesk.h"

#include "base/Text.h"
#include "services/ServiceAddress.h"

#include <nlohmann/json.hpp>

#include <variant>

namespace zenka::services {

namespace {

using Json = nlohmann::json;

} // namespace

ServiceDesk::ServiceDesk(const ports::Ports& ports, ports::MachineNames& names, rig::RigModel& rig,
                         const std::string& appVersion)
    : ports_(ports), rig_(rig), telemetry_(ports, names, appVersion), posts_(ports, appVersion),
      trust_(ports, rig.log(), posts_, appVersion), allowed_(ports.settings.flag(telemetryAllowedKey)) {
    connectRig();
    followHost();
}

ServiceDesk::~ServiceDesk() {
    for (sigc::connection& connection : connections_)
        connection.disconnect();
    reports_.disconnect();
    rig_.floors().report = [](const auto&, const auto&) {};
}

void ServiceDesk::connectRig() {
    connections_.push_back(rig_.logbook().runTold().connect([this](const std::string& facts) {
        telemetry_.track("run_complete", Json::parse(facts, nullptr, false));
    }));
    connections_.push_back(
        rig_.outcomes().shutterDiverged().connect([this](const rig::FireOutcomes::ShutterDivergence& found) {
            telemetry_.track("error", {{"kind", "shutter_divergence"},
                                       {"camera", found.camera},
                                       {"asked", found.asked},
                                       {"sent", found.sent},
                                       {"stops", found.stops}});
        }));
    connections_.push_back(rig_.transport().activityChanged().connect(
        [this] { telemetry_.hold(rig_.transport().runActive()); }));
    rig_.floors().report = [this](const std::string& event, const rig::MeasuredFloors::Fields& fields) {
        Json props = Json::object();
        for (const auto& [key, field] : fields)
            std::visit([&, &name = key](const auto& value) { props[name] = value; }, field);
        telemetry_.track(event, props);
    };
}

void ServiceDesk::start() {
    telemetry_.start();
    telemetry_.track("launch", Json::object());
    trust_.evaluateTrustBanner();
}

std::string ServiceDesk::address() const {
    return ports_.settings.text(serviceHostKey).value_or("");
}

void ServiceDesk::setAddress(const std::string& address) {
    const std::string wanted(base::trimmed(address));
    if (wanted == this->address())
        return;
    ports_.settings.setText(serviceHostKey, wanted);
    followHost();
    telemetry_.followSettings();
    trust_.evaluateTrustBanner();
}

void ServiceDesk::followHost() {
    host_.set(serviceHostName(ports_.settings));
    reports_.disconnect();
    if (!host_->empty())
        reports_ = rig_.analyzer().toSend().connect(
            [this](const rig::RunAnalyzer::Outgoing& outgoing) { sendReport(outgoing); });
}

void ServiceDesk::allow(bool allowed) {
    telemetry_.allow(allowed);
    allowed_.set(allowed);
}

void ServiceDesk::report(const std::string& event, const std::map<std::string, std::string>& fields) {
    telemetry_.track(event, fields);
}

void ServiceDesk::sendReport(const rig::RunAnalyzer::Outgoing& outgoing) {
    const bool withNote = !base::trimmed(outgoing.note).empty();
    posts_.sendRunReport(
        {.result = outgoing.result, .html = outgoing.html, .email = outgoing.email, .note = outgoing.note},
        [&rig = rig_, withNote](const FeedbackPosts::Answer& answer) {
            if (answer.sent) {
                rig.log().pushLog(std::string("Analyzer: report emailed to the team") +
                                  (withNote ? " with your note" : ""));
                return;
            }
            rig.log().pushLog("⚠️ Analyzer: the report is kept on this computer. " + answer.words);
            rig.analyzer().sendFailed(answer.words);
        });
}

} // namespace zenka::services
