#include "rig/shared/RigLog.h"

#include <utility>

namespace zenka::rig {

void RigLog::pushLog(std::string line) {
    if (!loop_.onMainThread())
        return teller()(std::move(line));
    lines_.push_front(line);
    if (lines_.size() > maxLines)
        lines_.pop_back();
    lineAdded_.emit(line);
}

std::function<void(std::string)> RigLog::teller() {
    return [&loop = loop_, arrive = lifeline_.guard([this](std::string line) { pushLog(std::move(line)); })](
               std::string line) { loop.post([arrive, line = std::move(line)] { arrive(line); }); };
}

} // namespace zenka::rig
