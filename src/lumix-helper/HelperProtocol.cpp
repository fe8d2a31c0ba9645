#include "lumix-helper/HelperProtocol.h"

#include <cmath>
#include <utility>

namespace zenka::lumixHelper {

namespace {

using Json = nlohmann::json;

constexpr double longestBulb = 3600; // seconds
constexpr int highestIso = 100'000'000;

/// A number of a request, 0 where there is none; nothing for what is no number, or below 0.
std::optional<double> numberOr0(const Json& request, const char* key) {
    const auto found = request.find(key);
    if (found == request.end())
        return 0;
    if (!found->is_number())
        return std::nullopt;
    const double value = found->get<double>();
    return std::isfinite(value) && value >= 0 ? std::optional(value) : std::nullopt;
}

std::optional<int> isoOf(const Json& request) {
    const auto found = request.find("iso");
    if (found == request.end() || *found == "auto")
        return 0;
    const auto value = numberOr0(request, "iso");
    return value && *value <= highestIso ? std::optional(static_cast<int>(*value)) : std::nullopt;
}

std::optional<LumixBody::Order> orderOf(const Json& request) {
    const auto iso = isoOf(request);
    const auto aperture = numberOr0(request, "aperture");
    const auto shutter = numberOr0(request, "shutter_s");
    const auto bulb = numberOr0(request, "bulb_s");
    if (!iso || !aperture || !shutter || !bulb || *bulb > longestBulb)
        return std::nullopt;
    const auto full = request.find("full");
    return LumixBody::Order{.iso = *iso,
                            .aperture = *aperture,
                            .shutterSec = *shutter,
                            .bulbSec = *bulb,
                            .full = full != request.end() && *full == true};
}

} // namespace

void RequestLines::feed(std::string_view bytes) {
    kept_ += bytes;
    if (kept_.size() <= longest || kept_.find('\n') != kept_.npos)
        return;
    kept_.clear();
    tooLong_ = true; // up to the next newline
}

std::optional<std::string> RequestLines::next() {
    const std::size_t newline = kept_.find('\n');
    if (newline == kept_.npos)
        return std::nullopt;
    std::string line = kept_.substr(0, newline);
    kept_.erase(0, newline + 1);
    return std::exchange(tooLong_, false) || line.size() > longest ? std::string() : line;
}

std::string HelperProtocol::answer(const std::string& line) {
    const Json request = Json::parse(line, nullptr, false);
    const Json answer =
        request.is_object() ? perform(request) : Json{{"error", "no JSON object in one line"}};
    return answer.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json HelperProtocol::perform(const Json& request) {
    const auto command = request.find("cmd");
    if (command == request.end())
        return {{"error", "no cmd"}};
    if (*command == "fire")
        return fire(request);
    if (*command == "status")
        return status();
    if (*command == "manual_check")
        return manualCheck();
    if (*command != "quit")
        return {{"error", "an unknown cmd"}};
    quitAsked_ = true;
    return {{"quit", true}};
}

void HelperProtocol::noteLink(Json& answer, LumixBody::Link link) {
    if (const auto confirmed = body_.confirmed())
        answer["confirmed"] = *confirmed;
    if (link != LumixBody::Link::answered)
        answer["responded"] = false;
    if (link == LumixBody::Link::gone)
        answer["gone"] = true;
    ended_ = ended_ || link == LumixBody::Link::gone || link == LumixBody::Link::stopped;
}

Json HelperProtocol::fire(const Json& request) {
    const auto order = orderOf(request);
    if (!order)
        return {{"fired", false}, {"error", "iso, aperture, shutter_s and bulb_s are numbers of 0 or more"}};
    const LumixBody::Fired fired = body_.fire(*order);
    Json answer{{"fired", fired.fired},
                {"bulb", fired.bulb},
                {"set_ok", fired.setOk},
                {"latency_ms", fired.latencyMs}};
    noteLink(answer, fired.link);
    return answer;
}

Json HelperProtocol::statusAnswer(const LumixBody::Status& status) {
    Json answer = Json::object();
    if (status.link == LumixBody::Link::answered)
        answer["pc_mode"] = status.pcMode;
    if (status.battery)
        answer["battery"] = *status.battery;
    if (status.driveBurst)
        answer["drive_burst"] = *status.driveBurst;
    noteLink(answer, status.link);
    return answer;
}

Json HelperProtocol::status() {
    return statusAnswer(body_.status());
}

Json HelperProtocol::manualCheck() {
    const LumixBody::Dials dials = body_.dials();
    Json answer = statusAnswer(dials.status);
    if (!dials.isManual) {
        answer["status"] = "unknown";
    } else {
        answer["status"] = *dials.isManual && !dials.apertureKnown ? "aperture_unconfirmed" : "ok";
        answer["is_manual"] = *dials.isManual;
        answer["mode_guess"] = dials.modeGuess;
        answer["manual_lens"] = dials.manualLens;
    }
    if (dials.autoIso)
        answer["auto_iso"] = *dials.autoIso;
    return answer;
}

} // namespace zenka::lumixHelper
