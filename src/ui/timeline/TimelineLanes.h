#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::rig {
class CameraRoster;
class FrameRecord;
class ScriptDesk;
} // namespace zenka::rig

namespace zenka::ui {

/// What a mark on the timeline tells, ascending: where frames share a pixel the highest is shown.
enum class FrameState : std::uint8_t {
    past,     ///< behind the clock, and nothing is known of it
    coming,   ///< ahead of the clock
    fired,    ///< delivered
    noCamera, ///< its instant came, and no body answered
    skipped,  ///< given up
    dropped,  ///< sent and not delivered
};

const char* word(FrameState state);

/// One row of the timeline.
struct TimelineLane {
    enum class Kind {
        script,  ///< a token of the script that a body answers to
        missing, ///< a token that no body answers to
        unused,  ///< a body that no token means
        cues,
    };

    Kind kind = Kind::script;
    std::string token; ///< empty for an unused body and for the cues
    std::string label;
    std::vector<double> offsets;     ///< clock seconds, ascending
    std::vector<std::size_t> rows;   ///< of each offset among all captures (seq − 1), or cues; ascending
    std::vector<FrameState> results; ///< of each offset; coming where there is no result

    /// How many offsets are at or behind a clock value.
    std::size_t pastCount(double clock) const;
    FrameState stateAt(std::size_t frame, double clock) const;
    /// The frame nearest to a clock value; the lane has at least one.
    std::size_t nearest(double clock) const;
};

/// The script's cameras in order of their tokens, then bodies without shots, then the cues if there are any.
std::vector<TimelineLane> timelineLanes(const rig::ScriptDesk& script, const rig::CameraRoster& roster);

/// Takes over every result of a record.
void takeResults(std::vector<TimelineLane>& lanes, const rig::FrameRecord& record);
/// Takes over one result; false when no lane has the frame.
bool takeResult(std::vector<TimelineLane>& lanes, const rig::FrameRecord& record, std::string_view token,
                int seq);

} // namespace zenka::ui
