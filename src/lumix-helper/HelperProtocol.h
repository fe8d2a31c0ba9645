#pragma once

#include "lumix-helper/LumixBody.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace zenka::lumixHelper {

/// Cuts what comes into lines. A line that is too long to be kept is one without words.
class RequestLines {
public:
    static constexpr std::size_t longest = 16384;

    /// No more than a few kilobytes at once; the lines are to be taken before the next.
    void feed(std::string_view bytes);
    std::optional<std::string> next();

private:
    std::string kept_;
    bool tooLong_ = false;
};

/// Answers requests, one JSON object a line each way:
///
///   {"cmd":"fire","iso":200,"aperture":8,"shutter_s":0.002,"bulb_s":0}   "iso" a number or "auto", the
///   others
///       where they are above 0; "full":true sends each setting, whatever the body was told before
///     {"fired":true,"bulb":false,"set_ok":true,"latency_ms":61.5,"confirmed":12}
///   {"cmd":"status"}        {"confirmed":12,"battery":84,"drive_burst":false,"pc_mode":true}
///   {"cmd":"manual_check"}  {"status":"ok","is_manual":true,"mode_guess":"M","manual_lens":false,
///                            "auto_iso":false} and what "status" gives
///   {"cmd":"quit"}          {"quit":true}, and the helper ends
///
/// What the body does not tell is left out. "responded":false means that the body kept silent, "gone":true
/// that it has left the bus, "error" what is wrong with the request. Each line gets one answer, in order.
class HelperProtocol {
public:
    explicit HelperProtocol(LumixBody& body) : body_(body) {}

    /// The answer to a line, without its newline.
    std::string answer(const std::string& line);

    bool quitAsked() const { return quitAsked_; }
    /// The body has left the bus, or the helper was asked to end: there is no going on.
    bool ended() const { return ended_; }

private:
    using Json = nlohmann::json;

    Json perform(const Json& request);
    Json fire(const Json& request);
    Json status();
    Json manualCheck();
    void noteLink(Json& answer, LumixBody::Link link);
    Json statusAnswer(const LumixBody::Status& status);

    LumixBody& body_;
    bool quitAsked_ = false;
    bool ended_ = false;
};

} // namespace zenka::lumixHelper
