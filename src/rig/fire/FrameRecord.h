#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::rig {

/// What came of one frame, ascending in what the operator must know of it.
enum class FrameResult : std::uint8_t {
    none,     ///< not reached, jumped over, or not answered yet
    fired,    ///< delivered
    noCamera, ///< its instant came, and no body answered to the token
    skipped,  ///< given up, never sent
    dropped,  ///< sent and not delivered
};

/// The results of one run, by camera token and Capture::seq: a byte a frame.
class FrameRecord {
public:
    /// Where several bodies answer to one token the worst of their results stands. False when that
    /// changes nothing.
    bool note(std::string_view token, int seq, FrameResult result);

    FrameResult of(std::string_view token, int seq) const;
    /// All results of a token, by seq; those beyond its end are none.
    std::span<const FrameResult> ofToken(std::string_view token) const;

    /// Forgets the frames from a seq on: they are to come again.
    void forgetFrom(int seq);
    void clear() { byToken_.clear(); }

private:
    std::map<std::string, std::vector<FrameResult>, std::less<>> byToken_; // indexed by seq
};

} // namespace zenka::rig
