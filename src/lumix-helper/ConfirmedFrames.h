#pragma once

#include "lumix-helper/PtpContainer.h"

#include <cstdint>
#include <deque>
#include <optional>

namespace zenka::lumixHelper {

/// Counts the frames that a body confirms by events, each once: by the ends of captures where it tells of
/// those, else by the objects that it adds, of which a frame of RAW and JPEG has two. Never more than were
/// fired, and never fewer than before.
class ConfirmedFrames {
public:
    /// The events that the body says it sends.
    void expect(const std::vector<std::uint16_t>& events);
    void noteFired() { ++fired_; }
    void noteNotFired() { --fired_; }
    void note(const ptp::Container& event);

    /// Absent for a body that neither says that it confirms nor ever did.
    std::optional<int> total() const;

private:
    bool fresh(std::deque<std::uint32_t>& seen, std::uint32_t number);

    bool tells_ = false;
    int fired_ = 0;
    int completed_ = 0;
    int objects_ = 0;
    int total_ = 0;
    std::deque<std::uint32_t> handles_;      // of late, to know those that are told twice
    std::deque<std::uint32_t> transactions_; // of captures, likewise
};

} // namespace zenka::lumixHelper
