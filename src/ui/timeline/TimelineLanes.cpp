#include "ui/timeline/TimelineLanes.h"

#include "rig/bodies/CameraRoster.h"
#include "rig/fire/FrameRecord.h"
#include "rig/script/ScriptDesk.h"

#include <algorithm>
#include <map>
#include <set>

namespace zenka::ui {

namespace {

FrameState stateOf(rig::FrameResult result) {
    switch (result) {
    case rig::FrameResult::none: return FrameState::coming;
    case rig::FrameResult::fired: return FrameState::fired;
    case rig::FrameResult::noCamera: return FrameState::noCamera;
    case rig::FrameResult::skipped: return FrameState::skipped;
    case rig::FrameResult::dropped: return FrameState::dropped;
    }
    return FrameState::coming;
}

} // namespace

const char* word(FrameState state) {
    switch (state) {
    case FrameState::past: return "past";
    case FrameState::coming: return "coming";
    case FrameState::fired: return "● fired";
    case FrameState::noCamera: return "○ no camera answered";
    case FrameState::skipped: return "⏭ skipped";
    case FrameState::dropped: return "▲ dropped";
    }
    return "";
}

std::size_t TimelineLane::pastCount(double clock) const {
    return static_cast<std::size_t>(std::ranges::upper_bound(offsets, clock) - offsets.begin());
}

FrameState TimelineLane::stateAt(std::size_t frame, double clock) const {
    if (results[frame] != FrameState::coming)
        return results[frame];
    return offsets[frame] <= clock ? FrameState::past : FrameState::coming;
}

std::size_t TimelineLane::nearest(double clock) const {
    const std::size_t after = pastCount(clock);
    if (after == 0)
        return 0;
    if (after == offsets.size())
        return after - 1;
    return offsets[after] - clock < clock - offsets[after - 1] ? after : after - 1;
}

std::vector<TimelineLane> timelineLanes(const rig::ScriptDesk& script, const rig::CameraRoster& roster) {
    std::vector<TimelineLane> lanes;
    std::set<std::string> tokens(script.cameraTokens().begin(), script.cameraTokens().end());
    for (const auto& [token, captures] : script.capturesByToken())
        tokens.insert(token);
    std::set<std::string> used; // body ids
    std::map<std::string_view, std::size_t> laneOf;
    for (const std::string& token : tokens) {
        const auto bodies = roster.camerasFor(token);
        for (const auto& body : bodies)
            used.insert(body->id());
        lanes.push_back({.kind = bodies.empty() ? TimelineLane::Kind::missing : TimelineLane::Kind::script,
                         .token = token,
                         .label = token});
        laneOf[token] = lanes.size() - 1;
    }
    const auto add = [](TimelineLane& lane, double offset, std::size_t row) {
        lane.offsets.push_back(offset);
        lane.rows.push_back(row);
        lane.results.push_back(FrameState::coming);
    };
    for (std::size_t row = 0; row < script.captures().size(); ++row)
        add(lanes[laneOf.at(script.captures()[row].camera)], script.captures()[row].offsetSec, row);
    for (const auto& body : roster.cameras()) {
        if (!used.contains(body->id()))
            lanes.push_back({.kind = TimelineLane::Kind::unused, .label = roster.labelFor(*body)});
    }
    if (!script.audioCues().empty()) {
        lanes.push_back({.kind = TimelineLane::Kind::cues, .label = "cues"});
        for (std::size_t row = 0; row < script.audioCues().size(); ++row)
            add(lanes.back(), script.audioCues()[row].offsetSec, row);
    }
    return lanes;
}

void takeResults(std::vector<TimelineLane>& lanes, const rig::FrameRecord& record) {
    for (TimelineLane& lane : lanes) {
        const auto results = record.ofToken(lane.token);
        for (std::size_t frame = 0; frame < lane.rows.size(); ++frame) {
            const std::size_t seq = lane.rows[frame] + 1;
            lane.results[frame] = seq < results.size() ? stateOf(results[seq]) : FrameState::coming;
        }
    }
}

bool takeResult(std::vector<TimelineLane>& lanes, const rig::FrameRecord& record, std::string_view token,
                int seq) {
    const auto lane = std::ranges::find(lanes, token, &TimelineLane::token);
    if (token.empty() || lane == lanes.end() || seq < 1)
        return false;
    const auto row = static_cast<std::size_t>(seq) - 1;
    const auto found = std::ranges::lower_bound(lane->rows, row);
    if (found == lane->rows.end() || *found != row)
        return false;
    lane->results[static_cast<std::size_t>(found - lane->rows.begin())] = stateOf(record.of(token, seq));
    return true;
}

} // namespace zenka::ui
