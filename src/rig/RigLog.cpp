#include "rig/RigLog.h"

#include <utility>

namespace zenka::rig {

void RigLog::pushLog(std::string line) {
    if (!loop_.onMainThread()) {
        loop_.post(lifeline_.guard([this, line = std::move(line)] { pushLog(line); }));
        return;
    }
    lines_.push_front(line);
    if (lines_.size() > maxLines)
        lines_.pop_back();
    lineAdded_.emit(line);
}

} // namespace zenka::rig
