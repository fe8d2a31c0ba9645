#include "script/Walker.h"

#include "script/Labels.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <variant>

namespace zenka::script {

namespace {

/// Frames of a series follow each other at their own exposure, but not closer than this.
constexpr double closestSeriesSec = 0.2;
/// Lets a (VAR) that was summed up reach its end in spite of rounding.
constexpr double varTolerance = 1e-9;
/// So much text of a line counts as one more step.
constexpr std::size_t stepLength = 64;

std::int64_t stepsOf(std::size_t length) {
    return static_cast<std::int64_t>(1 + length / stepLength);
}

bool inReach(double seconds) {
    return std::abs(seconds) <= furthestSec; // false for what is no number
}

std::string labelOf(const Moment& moment, std::optional<double> varValue) {
    return moment.hasVar ? makeLabel(moment, varValue) : moment.label;
}

std::string seriesSuffix(Series series, int frame, int count) {
    const char* name = series == Series::burst ? "burst" : series == Series::bracket ? "bkt" : "ramp";
    return absl::StrFormat(" %s %d/%d", name, frame + 1, count);
}

} // namespace

Walker::Walker(const CompileContext& context, const Limits& limits, Diagnostics& diagnostics)
    : diagnostics_(diagnostics),
      references_(context, diagnostics), budget_{.frames = limits.frames, .steps = limits.steps} {
}

void Walker::walk(const std::vector<Node>& nodes, std::optional<double> varValue) {
    run(nodes, {.varValue = varValue});
}

CompiledScript Walker::take() {
    result_.cameras.assign(cameras_.begin(), cameras_.end());
    return std::move(result_);
}

bool Walker::run(const std::vector<Node>& nodes, const Place& place) {
    for (const Node& node : nodes)
        if (!std::visit([&](const auto& line) { return visit(line, place); }, node.what))
            return false;
    return true;
}

bool Walker::visit(const Loop& loop, const Place& place) {
    if (place.inLoop)
        return runRounds(loop, place);
    // The outermost loop pays for what is in it, and the script goes on behind it.
    const Budget share = budget_.half();
    const Budget reserve{.frames = budget_.frames - share.frames, .steps = budget_.steps - share.steps};
    budget_ = share;
    if (!runRounds(loop, place))
        diagnostics_.error(
            loop.lineNo,
            shortOfSteps_
                ? absl::StrFormat("FOR asks for more than %d steps, the rest of the loop is left out",
                                  share.steps)
                : absl::StrFormat(
                      "FOR asks for more than %d frames and cues, the rest of the loop is left out",
                      share.frames));
    budget_.frames += reserve.frames;
    budget_.steps = std::max<std::int64_t>(budget_.steps, 0) + reserve.steps;
    return true;
}

bool Walker::runRounds(const Loop& loop, const Place& place) {
    Place inner = place;
    inner.inLoop = true;
    if (loop.interval) {
        for (int round = 0; round < std::max(loop.count, 1); ++round) {
            inner.extraOffset = place.extraOffset + loop.start + loop.step * round;
            if (!spend(0) || !run(loop.body, inner))
                return false;
        }
        return true;
    }
    if (loop.step == 0)
        return true;
    double value = loop.start;
    for (int round = 0; round < mostVarRounds; ++round) {
        if (loop.step > 0 ? !(value <= loop.end + varTolerance) : !(value >= loop.end - varTolerance))
            break;
        inner.varValue = value;
        if (!spend(0) || !run(loop.body, inner))
            return false;
        value += loop.step;
    }
    return true;
}

bool Walker::visit(const TakeLine& line, const Place& place) {
    const std::size_t saidBefore = diagnostics_.textLength();
    const auto cost = [&] { return line.length + diagnostics_.textLength() - saidBefore; };
    if (!line.complete) {
        diagnostics_.error(line.lineNo, line.command + " has too few fields");
        return !place.inLoop || spend(cost());
    }
    const std::optional<double> offset = offsetOf(line, line.moment, place);
    if (place.inLoop && !spend(cost()))
        return false;
    if (!offset)
        return true;
    if (line.series != Series::none) {
        // A line by itself may always have its one frame; what it multiplies is limited.
        const int count = frameCount(line);
        if (place.inLoop) {
            if (!spendFrames(budget_, static_cast<std::size_t>(count), line.length))
                return false;
        } else if (!spendFrames(budget_.half(), static_cast<std::size_t>(count - 1), line.length)) {
            diagnostics_.error(line.lineNo, absl::StrFormat("%s asks for too many frames (%d), line skipped",
                                                            line.command, count));
            return true;
        }
        if (!emitFrames(line, *offset, labelOf(line.moment, place.varValue)))
            return true;
    }
    if (!cameras_.contains(line.camera))
        cameras_.emplace(line.camera);
    last_ = offset;
    return true;
}

bool Walker::visit(const CueLine& line, const Place& place) {
    const std::size_t saidBefore = diagnostics_.textLength();
    const std::optional<double> offset = offsetOf(line, line.moment, place);
    if (place.inLoop && !spend(line.length + diagnostics_.textLength() - saidBefore))
        return false;
    if (!offset || line.silent)
        return true;
    if (place.inLoop && !spendFrames(budget_, 1, line.length))
        return false;
    result_.audioCues.push_back({.id = base::Uuid::fresh(),
                                 .offsetSec = *offset,
                                 .refLabel = labelOf(line.moment, place.varValue),
                                 .text = line.text,
                                 .soundFile = std::string(line.soundFile),
                                 .lineNo = line.lineNo,
                                 .shell = line.shell});
    return true;
}

bool Walker::visit(const BracketLine& line, const Place& place) {
    if (!line.fault.empty()) {
        diagnostics_.error(line.lineNo, line.fault);
    } else {
        bracketFrames_ = line.frames;
        bracketStep_ = line.step;
    }
    return !place.inLoop || spend(line.length);
}

bool Walker::visit(const CamsetLine& line, const Place& place) {
    for (const std::string& warning : line.warnings)
        diagnostics_.warning(line.lineNo, warning);
    if (!line.pairs.empty()) {
        auto& settings = result_.cameraSettings[std::string(line.camera)];
        for (const auto& [key, value] : line.pairs)
            settings.insert_or_assign(key, value);
    }
    return !place.inLoop || spend(line.length);
}

bool Walker::spend(std::size_t length) {
    budget_.steps -= stepsOf(length);
    shortOfSteps_ = budget_.steps < 0;
    return !shortOfSteps_;
}

bool Walker::spendFrames(const Budget& most, std::size_t count, std::size_t length) {
    const std::int64_t steps = static_cast<std::int64_t>(count) * stepsOf(length);
    shortOfSteps_ = steps > most.steps;
    if (shortOfSteps_ || count > most.frames)
        return false;
    budget_.frames -= count;
    budget_.steps -= steps;
    return true;
}

std::optional<double> Walker::offsetOf(const Line& line, const Moment& moment, const Place& place) {
    const std::optional<double> anchor = references_.resolve(moment, line.lineNo, place.varValue, last_);
    if (!anchor)
        return std::nullopt;
    if (!line.fault.empty()) {
        diagnostics_.error(line.lineNo, line.fault);
        return std::nullopt;
    }
    const double offset = place.extraOffset + *anchor + moment.signedSec();
    if (inReach(offset))
        return offset;
    diagnostics_.error(line.lineNo, "moment lies more than 300 years from the eclipse, line skipped");
    return std::nullopt;
}

int Walker::frameCount(const TakeLine& line) const {
    return line.series == Series::bracket ? bracketFrames_ : line.count;
}

double Walker::frameShutter(const TakeLine& line, int frame) const {
    double stops = 0;
    switch (line.series) {
    case Series::bracket: stops = bracketStep_ * (frame - (bracketFrames_ - 1) / 2.0); break;
    case Series::rampUp: stops = line.rampStep * frame; break;
    case Series::rampDown: stops = -line.rampStep * frame; break;
    case Series::rampUpDown: {
        const int half = line.count / 2;
        stops = line.rampStep * (frame <= half ? frame : 2 * half - frame);
        break;
    }
    case Series::single:
    case Series::burst:
    case Series::none: break;
    }
    return line.shutter.seconds == 0 ? 0 : line.shutter.seconds * std::exp2(stops);
}

bool Walker::emitFrames(const TakeLine& line, double offset, const std::string& label) {
    std::vector<Capture>& captures = result_.captures;
    const std::size_t before = captures.size();
    const int count = frameCount(line);
    for (int frame = 0; frame < count; ++frame) {
        const double shutter = frameShutter(line, frame);
        if (!inReach(shutter) || !inReach(offset)) {
            captures.resize(before);
            diagnostics_.error(line.lineNo,
                               line.command + " reaches exposures that are out of range, line skipped");
            return false;
        }
        captures.push_back({.id = base::Uuid::fresh(),
                            .offsetSec = offset,
                            .refLabel = label,
                            .camera = std::string(line.camera),
                            .shutterSec = shutter,
                            .bulb = line.shutter.bulb,
                            .aperture = line.aperture,
                            .iso = line.iso,
                            .expComp = line.expComp,
                            .format = std::string(line.format),
                            .forceFullExposure = line.forceFullExposure,
                            .comment = line.series == Series::single
                                           ? line.note
                                           : line.note + seriesSuffix(line.series, frame, count),
                            .lineNo = line.lineNo});
        offset += std::max(shutter, closestSeriesSec);
    }
    return true;
}

} // namespace zenka::script
