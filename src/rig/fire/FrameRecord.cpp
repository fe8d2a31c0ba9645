#include "rig/fire/FrameRecord.h"

namespace zenka::rig {

bool FrameRecord::note(std::string_view token, int seq, FrameResult result) {
    if (seq < 0)
        return false;
    auto found = byToken_.find(token);
    if (found == byToken_.end())
        found = byToken_.emplace(token, std::vector<FrameResult>()).first;
    const auto index = static_cast<std::size_t>(seq);
    if (found->second.size() <= index)
        found->second.resize(index + 1, FrameResult::none);
    FrameResult& entry = found->second[index];
    if (result <= entry)
        return false;
    entry = result;
    return true;
}

FrameResult FrameRecord::of(std::string_view token, int seq) const {
    const auto results = ofToken(token);
    const auto index = static_cast<std::size_t>(seq);
    return seq < 0 || index >= results.size() ? FrameResult::none : results[index];
}

std::span<const FrameResult> FrameRecord::ofToken(std::string_view token) const {
    const auto found = byToken_.find(token);
    return found == byToken_.end() ? std::span<const FrameResult>() : std::span(found->second);
}

void FrameRecord::forgetFrom(int seq) {
    const auto size = static_cast<std::size_t>(seq < 0 ? 0 : seq);
    for (auto& [token, results] : byToken_) {
        if (results.size() > size)
            results.resize(size);
    }
}

} // namespace zenka::rig
