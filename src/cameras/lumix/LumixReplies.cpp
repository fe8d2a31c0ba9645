#include "cameras/lumix/LumixEncode.h"
#include "cameras/lumix/LumixPTPCamera.h"

#include <algorithm>
#include <utility>

namespace zenka::cameras::LumixReplies {

namespace {

std::optional<bool> flag(const Json& reply, const char* key) {
    const auto found = reply.find(key);
    return found != reply.end() && found->is_boolean() ? std::optional(found->get<bool>()) : std::nullopt;
}

std::optional<double> number(const Json& reply, const char* key) {
    const auto found = reply.find(key);
    return found != reply.end() && found->is_number() ? std::optional(found->get<double>()) : std::nullopt;
}

std::string text(const Json& reply, const char* key) {
    const auto found = reply.find(key);
    return found != reply.end() && found->is_string() ? found->get<std::string>() : std::string();
}

} // namespace

Json fireRequest(const Shot& shot, bool full) {
    Json request{{"cmd", "fire"}, {"bulb_s", shot.bulb ? std::max(shot.shutterSec, 0.0) : 0.0}};
    if (shot.aperture > 0)
        request["aperture"] = shot.aperture;
    if (shot.iso > 0)
        request["iso"] = shot.iso;
    else
        request["iso"] = "auto";
    if (shot.shutterSec > 0)
        request["shutter_s"] = shot.shutterSec;
    if (full)
        request["full"] = true;
    return request;
}

bool bodyAnswered(const Json& reply) {
    return flag(reply, "responded").value_or(true);
}

CaptureOutcome outcomeOf(const std::optional<Json>& reply, const Shot& shot, double elapsedMs) {
    if (!reply)
        return {.latencyMs = elapsedMs, .note = "no response"};
    CaptureOutcome outcome{.ok = flag(*reply, "fired").value_or(false),
                           .latencyMs = number(*reply, "latency_ms").value_or(elapsedMs)};
    outcome.responded = outcome.ok || bodyAnswered(*reply);
    const bool set = flag(*reply, "set_ok").value_or(true);
    if (outcome.ok && set)
        outcome.sentShutter = shot.bulb ? "bulb" : LumixEncode::shutterText(shot.shutterSec);
    if (outcome.ok && !set)
        outcome.note = "settings rejected (mode?)";
    else if (!outcome.responded)
        outcome.note = "no response";
    else if (!outcome.ok)
        outcome.note = "dropped (couldn't keep up)";
    outcome.deviceGone = !outcome.ok && flag(*reply, "gone").value_or(false);
    return outcome;
}

CameraStatus statusOf(const Json& reply) {
    CameraStatus status;
    const std::string word = text(reply, "status");
    const auto manual = flag(reply, "is_manual");
    const auto battery = number(reply, "battery");
    if (battery && *battery >= 0 && *battery <= 100)
        status.batteryPercent = static_cast<int>(*battery);
    if (!manual)
        return status; // the helper cannot tell either
    const bool unconfirmed = word == "aperture_unconfirmed";
    status.isManual = *manual && (word == "ok" || unconfirmed);
    if (!*status.isManual)
        status.modeName = text(reply, "mode_guess");
    else if (unconfirmed)
        status.modeName = "M · aperture unconfirmed";
    else
        status.modeName = flag(reply, "manual_lens").value_or(false) ? "M · manual lens" : "M";
    return status;
}

AutoIsoStatus autoIsoOf(const Json& reply) {
    const auto on = flag(reply, "auto_iso");
    if (!on)
        return {};
    return {.isAuto = on, .detail = *on ? "Auto-ISO on" : "Auto-ISO off"};
}

PollReply pollReplyOf(const Json& reply) {
    return {.answered = true, .battery = number(reply, "battery")};
}

} // namespace zenka::cameras::LumixReplies
