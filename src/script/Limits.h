#pragma once

#include <cstddef>
#include <cstdint>

namespace zenka::script {

/// How much a text may ask for. All far above a real shoot; they keep a slip in a loop's numbers from
/// filling the memory or the afternoon. docs/script-language.md tells them to the user.
struct Limits {
    /// Frames and cues from loops, and frames of bursts, brackets and ramps. One outermost loop, or one
    /// series, may use half of what is left, so that a slip in one leaves the others their frames.
    std::size_t frames = 1'000'000;
    /// Lines and rounds within loops, shared in the same way. A long line counts more.
    std::int64_t steps = 8'000'000;
    std::size_t diagnostics = 100'000; ///< more are not listed
    std::size_t nesting = 64;          ///< of FOR
};

/// Rounds of one FOR,(VAR) loop, after which it ends.
inline constexpr int mostVarRounds = 20'000;

/// No moment lies further from the reference instant than this, over 300 years.
inline constexpr double furthestSec = 1e10;

} // namespace zenka::script
