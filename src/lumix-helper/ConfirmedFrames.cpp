#include "lumix-helper/ConfirmedFrames.h"

#include <algorithm>

namespace zenka::lumixHelper {

namespace {

constexpr std::size_t remembered = 256;
constexpr std::uint32_t anyTransaction = 0xFFFFFFFF;

} // namespace

void ConfirmedFrames::expect(const std::vector<std::uint16_t>& events) {
    tells_ = tells_ || std::ranges::count(events, ptp::captureComplete) > 0 ||
             std::ranges::count(events, ptp::objectAdded) > 0;
}

bool ConfirmedFrames::fresh(std::deque<std::uint32_t>& seen, std::uint32_t number) {
    if (std::ranges::count(seen, number) > 0)
        return false;
    seen.push_back(number);
    if (seen.size() > remembered)
        seen.pop_front();
    return true;
}

void ConfirmedFrames::note(const ptp::Container& event) {
    const std::uint32_t transaction = event.transaction;
    if (event.code == ptp::captureComplete) {
        // a body that does not say which capture it speaks of is believed
        const bool named = transaction != 0 && transaction != anyTransaction;
        if (!named || fresh(transactions_, transaction))
            completed_ = std::min(completed_ + 1, fired_); // what is beyond was no frame of ours
    } else if (event.code == ptp::objectAdded) {
        const auto params = event.params();
        if (params.empty() || fresh(handles_, params.front()))
            objects_ = std::min(objects_ + 1, fired_);
    } else {
        return;
    }
    tells_ = true;
    total_ = std::max(total_, completed_ > 0 ? completed_ : objects_);
}

std::optional<int> ConfirmedFrames::total() const {
    return tells_ ? std::optional(total_) : std::nullopt;
}

} // namespace zenka::lumixHelper
